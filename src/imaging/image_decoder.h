#pragma once

#include "imaging/resample.h"

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <QString>

class SourceFile;

// The picture types the image control reads, told apart by their content
// where they have a signature and by the file's extension where they have none.
enum class ImageType {
    Unknown,
    Jpeg,
    Png,
    Gif,
    Bmp,
    Tiff,
    Tga,
    Pcx,
    SunRaster,
    Art,
    Cut,
    Hrz,
    MacPaint,
    UtahRle,
    Wpg,
    Wmf,
    Emf,
    Iff,
    Gem,
    Msp,
};

// What a control learns of a picture when a file is loaded, before any pixel
// is decoded.
struct ImageHeader {
    ImageType type = ImageType::Unknown;
    QSize stored;                // the size as stored in the file
    bool sides_swapped = false;  // shown upright, the picture is turned a quarter
    bool deep = false;           // read with 16-bit channels (eight bytes a pixel)
    QSize upright() const { return sides_swapped ? stored.transposed() : stored; }
};

// No single decoded picture may hold more pixels than this (400 MB of RGBA);
// a file whose picture would need more is refused before its pixels are read.
constexpr qint64 kMaxDecodePixels = 100'000'000;

// The type of a file from its first bytes, and its name where the content has
// no signature.
ImageType detect_image_type(const QByteArray& head, const QString& path);

// Reads the type, size and orientation of the picture. Throws RunError with a
// text that names the file and the reason when it is no picture that can be read.
ImageHeader read_image_header(const SourceFile& file);

// Decodes the picture upright. Where the type can reduce while decoding (JPEG),
// the result is the smallest reduction at least `at_least` in size (upright
// pixels); otherwise it is the full picture. Throws RunError.
QImage decode_image(const SourceFile& file, const ImageHeader& header, QSize at_least,
                    Resampling quality);

// The size (upright) of the picture decode_image gives for `at_least`.
QSize decoded_size(const ImageHeader& header, QSize at_least);

// How many pictures decode_image has decoded in this process, for checks
// that a batch decodes each file once.
quint64 decoded_picture_count();

// "Cannot read <path>: <reason>", the text of every decoding failure.
[[noreturn]] void fail_to_read(const QString& path, const QString& reason);

// Refuses a picture with no pixels or with a side over 65535.
void check_picture_size(const QString& path, QSize size);
// Refuses, besides, a picture too large to decode into memory.
void check_allocation(const QString& path, QSize size);
