#pragma once

#include "imaging/image_decoder.h"

class SourceFile;

// The older raster and metafile types (PCX, Sun raster, PFS ART, Dr Halo CUT,
// slow-scan HRZ, MacPaint, Utah RLE, WordPerfect WPG, Windows WMF) through
// GraphicsMagick, read from memory with the type named, and under its
// resource limits so that no file can make it allocate without bound.
// GraphicsMagick is used by one thread at a time.
ImageHeader read_magick_header(const SourceFile& file, ImageType type);
QImage decode_magick(const SourceFile& file, ImageType type);
