#include "imaging/magick_reader.h"

#include "imaging/magick_library.h"
#include "imaging/source_file.h"

namespace {

const char* magick_of(ImageType type) {
    switch (type) {
        case ImageType::Pcx:
            return "PCX";
        case ImageType::SunRaster:
            return "SUN";
        case ImageType::Art:
            return "ART";
        case ImageType::Cut:
            return "CUT";
        case ImageType::Hrz:
            return "HRZ";
        case ImageType::MacPaint:
            return "MAC";
        case ImageType::UtahRle:
            return "RLE";
        case ImageType::Wpg:
            return "WPG";
        case ImageType::Wmf:
            return "WMF";
        case ImageType::Tga:
            return "TGA";
        case ImageType::Gif:
            return "GIF";
        default:
            return "";
    }
}

}  // namespace

ImageHeader read_magick_header(const SourceFile& file, ImageType type) {
    ImageHeader h;
    h.type = type;
    const QString why =
        magick_read(file.read_all(), magick_of(type), h.stored, {}, kMaxDecodePixels);
    if (!why.isEmpty()) {
        fail_to_read(file.path(), why);
    }
    return h;
}

QImage decode_magick(const SourceFile& file, ImageType type) {
    QImage out;
    QSize size;
    const QString why = magick_read(
        file.read_all(), magick_of(type), size,
        [&](QSize s) {
            check_allocation(file.path(), s);
            out = QImage(s, QImage::Format_ARGB32);
            if (out.isNull()) {
                fail_to_read(file.path(),
                             QStringLiteral("there is not enough memory for the picture."));
            }
            return out.bits();
        },
        kMaxDecodePixels);
    if (!why.isEmpty()) {
        fail_to_read(file.path(), why);
    }
    return out;
}
