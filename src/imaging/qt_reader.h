#pragma once

#include "imaging/image_decoder.h"

class SourceFile;

// PNG, GIF, BMP/DIB, TIFF and TGA through Qt's image readers (TIFF and TGA
// from the image formats plugins), the format named from the content, never
// guessed from the file name. The picture comes upright (TIFF orientation).
ImageHeader read_qt_header(const SourceFile& file, ImageType type);
QImage decode_qt(const SourceFile& file, ImageType type);
