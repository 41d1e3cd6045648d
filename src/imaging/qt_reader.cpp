#include "imaging/qt_reader.h"

#include "imaging/image_log.h"
#include "imaging/source_file.h"

#include <QImageReader>

#include <mutex>

namespace {

QByteArray format_of(ImageType type) {
    switch (type) {
        case ImageType::Png:
            return "png";
        case ImageType::Gif:
            return "gif";
        case ImageType::Bmp:
            return "bmp";
        case ImageType::Tiff:
            return "tiff";
        case ImageType::Tga:
            return "tga";
        default:
            return QByteArray();
    }
}

struct Reader {
    std::unique_ptr<QIODevice> device;
    std::unique_ptr<QImageReader> reader;
};

Reader open_reader(const SourceFile& file, ImageType type) {
    if (type == ImageType::Tiff) {
        route_tiff_warnings();
    }
    Reader r;
    r.device = file.device();
    if (!r.device) {
        fail_to_read(file.path(), QStringLiteral("the file cannot be opened."));
    }
    r.reader = std::make_unique<QImageReader>(r.device.get(), format_of(type));
    r.reader->setDecideFormatFromContent(false);
    r.reader->setAutoTransform(true);
    if (!r.reader->canRead()) {
        fail_to_read(file.path(), QStringLiteral("the file is damaged or incomplete."));
    }
    return r;
}

// Qt's PNG reader hands back what it could decode of a file that was cut
// short; a picture is only taken whole, so the closing chunk must be there.
void check_complete(const SourceFile& file, ImageType type) {
    if (type != ImageType::Png) {
        return;
    }
    const QByteArray tail = file.read(std::max<qint64>(0, file.size() - 1024), 1024);
    if (!tail.contains(QByteArray("IEND\xAE\x42\x60\x82", 8))) {
        fail_to_read(file.path(), QStringLiteral("the file is damaged or incomplete."));
    }
}

}  // namespace

ImageHeader read_qt_header(const SourceFile& file, ImageType type) {
    Reader r = open_reader(file, type);
    ImageHeader h;
    h.type = type;
    h.stored = r.reader->size();
    h.sides_swapped = (r.reader->transformation() & QImageIOHandler::TransformationRotate90) != 0;
    h.deep = QImage::toPixelFormat(r.reader->imageFormat()).bitsPerPixel() > 32;
    if (!h.stored.isValid()) {
        // A reader that cannot tell the size without the pixels.
        const QImage image = decode_qt(file, type);
        h.stored = h.sides_swapped ? image.size().transposed() : image.size();
    }
    return h;
}

QImage decode_qt(const SourceFile& file, ImageType type) {
    check_complete(file, type);
    Reader r = open_reader(file, type);
    static std::once_flag limit_set;
    std::call_once(limit_set, [] {
        // 16-bit channels take eight bytes a pixel while they are read.
        QImageReader::setAllocationLimit(static_cast<int>(kMaxDecodePixels * 8 / (1024 * 1024)) +
                                         1);
    });
    QImage image;
    if (!r.reader->read(&image) || image.isNull()) {
        const QString why = r.reader->errorString();
        fail_to_read(file.path(), why.isEmpty()
                                      ? QStringLiteral("the file is damaged or incomplete.")
                                      : why + u'.');
    }
    if (image.depth() > 32) {
        // Nothing downstream needs more than 8 bits a channel; the 16-bit
        // picture is let go at once, so it is held no longer than the read.
        image.convertTo(image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied
                                                : QImage::Format_RGB32);
    }
    return image;
}
