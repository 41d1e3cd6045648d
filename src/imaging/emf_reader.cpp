#include "imaging/emf_reader.h"

#include "imaging/image_decoder.h"

#include <QLibrary>
#include <QPainter>
#include <QSvgRenderer>
#include <QtEndian>

#include <cstdlib>
#include <mutex>

namespace {

// The library's options and entry, as its header declares them.
struct GeneratorOptions {
    char* name_space;
    bool verbose;
    bool emfplus;
    bool svg_delimiter;
    double height;
    double width;
};
using Emf2Svg = int (*)(char* contents, size_t length, char** out, size_t* out_length,
                        GeneratorOptions* options);

Emf2Svg converter() {
    static const Emf2Svg f = [] {
        static QLibrary so(QStringLiteral("emf2svg"), 1);
        return so.load() ? reinterpret_cast<Emf2Svg>(so.resolve("emf2svg")) : nullptr;
    }();
    return f;
}

qint32 le32(const QByteArray& h, int at) {
    return qFromLittleEndian<qint32>(h.constData() + at);
}

}  // namespace

QSize emf_size(const QByteArray& head, const QString& path) {
    if (head.size() < 88 || le32(head, 0) != 1 || head.mid(40, 4) != " EMF") {
        fail_to_read(path, QStringLiteral("the file is not an enhanced metafile."));
    }
    // The bounds are inclusive, in device pixels; where a writer left them
    // empty, the frame (hundredths of a millimetre) at the reference device's
    // resolution.
    qint64 w = qint64(le32(head, 16)) - le32(head, 8) + 1;
    qint64 h = qint64(le32(head, 20)) - le32(head, 12) + 1;
    if (w <= 1 || h <= 1) {
        const double px_per_mm_x = double(le32(head, 72)) / std::max(1, le32(head, 80));
        const double px_per_mm_y = double(le32(head, 76)) / std::max(1, le32(head, 84));
        w = qint64((qint64(le32(head, 32)) - le32(head, 24)) / 100.0 * px_per_mm_x);
        h = qint64((qint64(le32(head, 36)) - le32(head, 28)) / 100.0 * px_per_mm_y);
    }
    if (w <= 0 || h <= 0 || w > 65535 || h > 65535) {
        fail_to_read(path, QStringLiteral("the metafile's header gives no size."));
    }
    return QSize(int(w), int(h));
}

QImage decode_emf(const QByteArray& data, const QString& path, QSize size) {
    const Emf2Svg emf2svg = converter();
    if (!emf2svg) {
        fail_to_read(path,
                     QStringLiteral("the decoder for this type (libemf2svg) is not installed."));
    }
    QByteArray svg;
    {
        // The library keeps no state between calls that we know of, but it
        // is not promised to be thread-safe.
        static std::mutex mutex;
        const std::lock_guard<std::mutex> lock(mutex);
        QByteArray contents = data;
        char name_space[] = "";
        GeneratorOptions options{name_space,          false, true, true, double(size.height()),
                                 double(size.width())};
        char* out = nullptr;
        size_t length = 0;
        const int ok = emf2svg(contents.data(), size_t(contents.size()), &out, &length, &options);
        if (out) {
            svg = QByteArray(out, qsizetype(length));
            std::free(out);
        }
        if (!ok || svg.isEmpty()) {
            fail_to_read(path, QStringLiteral("the file is damaged or incomplete."));
        }
    }
    QSvgRenderer renderer(svg);
    if (!renderer.isValid()) {
        fail_to_read(path, QStringLiteral("the file is damaged or incomplete."));
    }
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) {
        fail_to_read(path, QStringLiteral("there is not enough memory for the picture."));
    }
    image.fill(Qt::transparent);
    QPainter p(&image);
    renderer.setAspectRatioMode(Qt::KeepAspectRatio);
    renderer.render(&p, QRectF(QPointF(0, 0), QSizeF(size)));
    return image;
}
