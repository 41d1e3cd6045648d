#include "imaging/image_decoder.h"
#include "imaging/raster_readers.h"

#include <vector>

// Microsoft Paint: a 32-byte header of little-endian words ("DanM" for the
// first version, "LinS" for the second, then width and height). Version 1
// stores the rows as they are; version 2 has a map of the packed length of
// each row, then rows packed in runs: a 0 followed by a count and a byte
// repeats the byte, any other n copies the n bytes that follow. One bit a
// pixel, a set bit white.

namespace {

struct MspHeader {
    bool packed = false;
    int width = 0;
    int height = 0;
};

MspHeader parse(const QByteArray& data, const QString& path) {
    if (data.size() < 32) {
        fail_to_read(path, QStringLiteral("the file is damaged or incomplete."));
    }
    MspHeader h;
    h.packed = data.startsWith("LinS");
    ByteCursor c(data, 4);
    h.width = c.le16();
    h.height = c.le16();
    return h;
}

}  // namespace

QSize msp_size(const QByteArray& head, const QString& path) {
    const MspHeader h = parse(head, path);
    return QSize(h.width, h.height);
}

QImage decode_msp(const QByteArray& data, const QString& path) {
    const MspHeader h = parse(data, path);
    check_allocation(path, QSize(h.width, h.height));
    const qsizetype row_bytes = (h.width + 7) / 8;
    QImage image(h.width, h.height, QImage::Format_Mono);
    if (image.isNull()) {
        fail_to_read(path, QStringLiteral("there is not enough memory for the picture."));
    }
    image.setColorTable({qRgb(0, 0, 0), qRgb(255, 255, 255)});
    auto damaged = [&] {
        fail_to_read(path, QStringLiteral("the file is damaged or incomplete."));
    };
    if (!h.packed) {
        ByteCursor c(data, 32);
        for (int y = 0; y < h.height; ++y) {
            uchar* out = image.scanLine(y);
            for (qsizetype i = 0; i < row_bytes; ++i) {
                out[i] = c.next();
            }
        }
        if (!c.ok()) {
            damaged();
        }
        return image.convertToFormat(QImage::Format_RGB32);
    }
    ByteCursor map(data, 32);
    std::vector<int> lengths(static_cast<size_t>(h.height));
    for (int& n : lengths) {
        n = map.le16();
    }
    if (!map.ok()) {
        damaged();
    }
    qsizetype at = map.pos();
    for (int y = 0; y < h.height; ++y) {
        uchar* out = image.scanLine(y);
        const int length = lengths[static_cast<size_t>(y)];
        if (length == 0) {
            // An empty entry is a white row.
            std::fill(out, out + row_bytes, uchar(0xFF));
            continue;
        }
        ByteCursor c(data, at, at + length);
        qsizetype x = 0;
        while (x < row_bytes && !c.at_end()) {
            const uchar kind = c.next();
            if (kind == 0) {
                const int count = c.next();
                const uchar value = c.next();
                for (int k = 0; k < count && x < row_bytes; ++k) {
                    out[x++] = value;
                }
            } else {
                for (int k = 0; k < kind; ++k) {
                    const uchar b = c.next();
                    if (x < row_bytes) {
                        out[x++] = b;
                    }
                }
            }
        }
        if (!c.ok() || x < row_bytes || at + length > data.size()) {
            damaged();
        }
        at += length;
    }
    return image.convertToFormat(QImage::Format_RGB32);
}
