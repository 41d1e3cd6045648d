#include "imaging/magick_reader.h"

#include "imaging/source_file.h"

#include <Magick++.h>
#include <magick/resource.h>

#include <mutex>

namespace {

std::mutex& magick_mutex() {
    static std::mutex m;
    return m;
}

void initialise() {
    static std::once_flag once;
    std::call_once(once, [] {
        Magick::InitializeMagick(nullptr);
        MagickLib::SetMagickResourceLimit(MagickLib::PixelsResource, kMaxDecodePixels);
        MagickLib::SetMagickResourceLimit(MagickLib::WidthResource, 65535);
        MagickLib::SetMagickResourceLimit(MagickLib::HeightResource, 65535);
        MagickLib::SetMagickResourceLimit(MagickLib::MemoryResource, kMaxDecodePixels * 8);
        MagickLib::SetMagickResourceLimit(MagickLib::MapResource, kMaxDecodePixels * 8);
        // Never spill a pixel cache to disk.
        MagickLib::SetMagickResourceLimit(MagickLib::DiskResource, 0);
    });
}

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
        default:
            return "";
    }
}

QString reason_of(const Magick::Exception& e) {
    QString text = QString::fromLocal8Bit(e.what());
    // "gm: reason (file)" reads better as the reason alone.
    const int colon = text.indexOf(QLatin1String(": "));
    if (colon >= 0 && colon < 40) {
        text = text.mid(colon + 2);
    }
    return text.isEmpty() ? QStringLiteral("the file is damaged or incomplete.") : text;
}

// Reads (or only pings) the file into `image`. A warning leaves a usable
// picture only when the whole picture was read.
void load(const SourceFile& file, ImageType type, Magick::Image& image, bool ping) {
    const QByteArray data = file.read_all();
    Magick::Blob blob(data.constData(), static_cast<size_t>(data.size()));
    image.magick(magick_of(type));
    image.quiet(false);
    try {
        if (ping) {
            image.ping(blob);
        } else {
            image.read(blob);
        }
    } catch (const Magick::Warning& w) {
        fail_to_read(file.path(), reason_of(w));
    } catch (const Magick::Exception& e) {
        fail_to_read(file.path(), reason_of(e));
    }
}

}  // namespace

ImageHeader read_magick_header(const SourceFile& file, ImageType type) {
    initialise();
    const std::lock_guard<std::mutex> lock(magick_mutex());
    Magick::Image image;
    load(file, type, image, true);
    ImageHeader h;
    h.type = type;
    h.stored = QSize(static_cast<int>(image.columns()), static_cast<int>(image.rows()));
    return h;
}

QImage decode_magick(const SourceFile& file, ImageType type) {
    initialise();
    const std::lock_guard<std::mutex> lock(magick_mutex());
    Magick::Image image;
    load(file, type, image, false);
    const QSize size(static_cast<int>(image.columns()), static_cast<int>(image.rows()));
    check_allocation(file.path(), size);
    QImage out(size, QImage::Format_ARGB32);
    if (out.isNull()) {
        fail_to_read(file.path(), QStringLiteral("there is not enough memory for the picture."));
    }
    // 32-bit rows have no padding, so the picture goes over in one call.
    try {
#if Q_BYTE_ORDER == Q_LITTLE_ENDIAN
        image.write(0, 0, static_cast<unsigned>(size.width()), static_cast<unsigned>(size.height()),
                    "BGRA", Magick::CharPixel, out.bits());
#else
        image.write(0, 0, static_cast<unsigned>(size.width()), static_cast<unsigned>(size.height()),
                    "ARGB", Magick::CharPixel, out.bits());
#endif
    } catch (const Magick::Exception& e) {
        fail_to_read(file.path(), reason_of(e));
    }
    return out;
}
