#include "imaging/image_decoder.h"
#include "imaging/raster_readers.h"

#include <vector>

// GEM raster: a header of big-endian words (version, header length in words,
// planes, pattern length, pixel width and height in microns, line width, line
// count), optionally the "XIMG" palette, then each scan line plane by plane,
// packed with four kinds of run: 00 00 FF n repeats the next line n times,
// 00 n + pattern repeats a pattern of the header's length n times, 80 n +
// bytes copies n bytes, and any other byte b is a solid run of b & 7F bytes
// of 00 or FF after its top bit. A set bit is ink: black on a one-plane picture.

namespace {

struct GemHeader {
    int header_words = 0;
    int planes = 0;
    int pattern = 0;
    int width = 0;
    int height = 0;
};

GemHeader parse(const QByteArray& data, const QString& path) {
    ByteCursor c(data);
    GemHeader h;
    c.be16();
    h.header_words = c.be16();
    h.planes = c.be16();
    h.pattern = c.be16();
    c.be16();
    c.be16();
    h.width = c.be16();
    h.height = c.be16();
    if (!c.ok() || h.header_words < 8 || h.planes < 1 || h.planes > 8 || h.pattern < 1 ||
        h.pattern > 8) {
        fail_to_read(path, QStringLiteral("the file is damaged or incomplete."));
    }
    return h;
}

// The desktop's sixteen pen colours, for pictures that bring no palette.
const QRgb kPens[16] = {
    qRgb(255, 255, 255), qRgb(0, 0, 0),       qRgb(255, 0, 0),   qRgb(0, 255, 0),
    qRgb(0, 0, 255),     qRgb(0, 255, 255),   qRgb(255, 255, 0), qRgb(255, 0, 255),
    qRgb(192, 192, 192), qRgb(128, 128, 128), qRgb(128, 0, 0),   qRgb(0, 128, 0),
    qRgb(0, 0, 128),     qRgb(0, 128, 128),   qRgb(128, 128, 0), qRgb(128, 0, 128),
};

std::vector<QRgb> palette_of(const QByteArray& data, const GemHeader& h) {
    const int colours = 1 << h.planes;
    std::vector<QRgb> palette;
    if (h.planes > 1 && h.header_words >= 11 + 3 * colours && data.mid(16, 4) == "XIMG") {
        ByteCursor c(data, 22);
        for (int i = 0; i < colours; ++i) {
            const int r = std::min(c.be16(), 1000);
            const int g = std::min(c.be16(), 1000);
            const int b = std::min(c.be16(), 1000);
            palette.push_back(qRgb(r * 255 / 1000, g * 255 / 1000, b * 255 / 1000));
        }
        return palette;
    }
    if (h.planes == 1) {
        return {qRgb(255, 255, 255), qRgb(0, 0, 0)};
    }
    for (int i = 0; i < colours; ++i) {
        if (colours <= 16) {
            palette.push_back(kPens[i]);
        } else {
            const int v = 255 - i * 255 / (colours - 1);
            palette.push_back(qRgb(v, v, v));
        }
    }
    return palette;
}

}  // namespace

QSize gem_size(const QByteArray& head, const QString& path) {
    const GemHeader h = parse(head, path);
    return QSize(h.width, h.height);
}

QImage decode_gem(const QByteArray& data, const QString& path) {
    const GemHeader h = parse(data, path);
    check_allocation(path, QSize(h.width, h.height));
    const std::vector<QRgb> palette = palette_of(data, h);
    const qsizetype plane_bytes = (h.width + 7) / 8;
    const qsizetype line_bytes = plane_bytes * h.planes;
    std::vector<uchar> line(static_cast<size_t>(line_bytes));
    QImage image(h.width, h.height, QImage::Format_RGB32);
    if (image.isNull()) {
        fail_to_read(path, QStringLiteral("there is not enough memory for the picture."));
    }
    ByteCursor c(data, qsizetype(h.header_words) * 2);
    int y = 0;
    while (y < h.height) {
        int repeat = 1;
        std::fill(line.begin(), line.end(), uchar(0));
        for (int p = 0; p < h.planes; ++p) {
            uchar* out = line.data() + p * plane_bytes;
            qsizetype x = 0;
            auto put = [&](uchar b) {
                if (x < plane_bytes) {
                    out[x] = b;
                }
                ++x;
            };
            while (x < plane_bytes) {
                const uchar b = c.next();
                if (!c.ok()) {
                    fail_to_read(path, QStringLiteral("the file is damaged or incomplete."));
                }
                if (b == 0x00) {
                    const uchar n = c.next();
                    if (n == 0x00) {
                        // Vertical repeat, before the line's first plane only.
                        if (c.next() != 0xFF) {
                            fail_to_read(path,
                                         QStringLiteral("the file is damaged or incomplete."));
                        }
                        repeat = c.next();
                        continue;
                    }
                    uchar pattern[8];
                    for (int i = 0; i < h.pattern; ++i) {
                        pattern[i] = c.next();
                    }
                    for (int k = 0; k < n; ++k) {
                        for (int i = 0; i < h.pattern; ++i) {
                            put(pattern[i]);
                        }
                    }
                } else if (b == 0x80) {
                    const uchar n = c.next();
                    for (int k = 0; k < n; ++k) {
                        put(c.next());
                    }
                } else {
                    const uchar fill = (b & 0x80) ? 0xFF : 0x00;
                    for (int k = 0; k < (b & 0x7F); ++k) {
                        put(fill);
                    }
                }
            }
        }
        if (!c.ok()) {
            fail_to_read(path, QStringLiteral("the file is damaged or incomplete."));
        }
        for (int r = 0; r < std::max(repeat, 1) && y < h.height; ++r, ++y) {
            auto* px = reinterpret_cast<QRgb*>(image.scanLine(y));
            for (int x = 0; x < h.width; ++x) {
                int value = 0;
                for (int p = 0; p < h.planes; ++p) {
                    value |=
                        ((line[static_cast<size_t>(p * plane_bytes + x / 8)] >> (7 - x % 8)) & 1)
                        << p;
                }
                px[x] = palette[static_cast<size_t>(value)];
            }
        }
    }
    return image;
}
