#pragma once

#include "imaging/image_decoder.h"

#include <QImage>
#include <QSize>

class SourceFile;

// JPEG through libjpeg directly: the header without the pixels, and the pixels
// reduced while decoding (libjpeg's scaled inverse transform, 1/8 to 8/8), so
// that a thumbnail of a large photo never decodes it at full size. The EXIF
// orientation is read from the header and applied to the pixels.
ImageHeader read_jpeg_header(const SourceFile& file);
QImage decode_jpeg(const SourceFile& file, QSize at_least_stored, Resampling quality);

// The smallest reduction n/8 of a JPEG of `stored` pixels that still gives at
// least `at_least_stored`: the n that decode_jpeg decodes at.
int jpeg_scale_num(QSize stored, QSize at_least_stored);

// The orientation (1 to 8, 1 when absent or unreadable) in the TIFF structure
// of an EXIF block (the bytes after "Exif\0\0").
int exif_orientation(const uchar* data, qsizetype length);

// A picture turned upright from EXIF orientation `orientation`.
QImage apply_orientation(const QImage& image, int orientation);
