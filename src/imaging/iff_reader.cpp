#include "imaging/image_decoder.h"
#include "imaging/raster_readers.h"

#include <QColor>

#include <vector>

// IFF: a "FORM" of chunks (four-letter id, big-endian length, data padded to
// an even length). ILBM stores each row as bit planes, PBM as one byte a
// pixel; both may pack rows with ByteRun1. BMHD gives the size, planes,
// masking and compression; CMAP the palette; CAMG the Amiga display mode
// (hold-and-modify, extra half-brite).

namespace {

struct Bmhd {
    int width = 0;
    int height = 0;
    int planes = 0;
    int masking = 0;
    int compression = 0;
};

struct Chunks {
    bool chunky = false;  // "PBM "
    Bmhd bmhd;
    bool has_bmhd = false;
    std::vector<QRgb> palette;
    quint32 camg = 0;
    qsizetype body = -1;
    qsizetype body_length = 0;
};

[[noreturn]] void damaged(const QString& path) {
    fail_to_read(path, QStringLiteral("the file is damaged or incomplete."));
}

Chunks read_chunks(const QByteArray& data, const QString& path, bool need_body) {
    ByteCursor c(data);
    c.skip(4);
    c.be32();
    Chunks out;
    out.chunky = data.mid(8, 4) == "PBM ";
    c.skip(4);
    while (c.ok() && c.left() >= 8) {
        const QByteArray id = data.mid(c.pos(), 4);
        c.skip(4);
        const qsizetype length = c.be32();
        const qsizetype start = c.pos();
        if (id == "BMHD") {
            ByteCursor b(data, start, start + length);
            out.bmhd.width = b.be16();
            out.bmhd.height = b.be16();
            b.skip(4);
            out.bmhd.planes = b.next();
            out.bmhd.masking = b.next();
            out.bmhd.compression = b.next();
            if (!b.ok()) {
                damaged(path);
            }
            out.has_bmhd = true;
        } else if (id == "CMAP") {
            ByteCursor p(data, start, start + length);
            for (qsizetype i = 0; i + 3 <= length && p.left() >= 3; i += 3) {
                const int r = p.next();
                const int g = p.next();
                const int b = p.next();
                out.palette.push_back(qRgb(r, g, b));
            }
        } else if (id == "CAMG") {
            ByteCursor m(data, start, start + length);
            out.camg = m.be32();
        } else if (id == "BODY") {
            out.body = start;
            out.body_length = std::min<qsizetype>(length, data.size() - start);
            if (!need_body || length > data.size() - start) {
                break;
            }
        }
        c.skip(length + (length & 1));
    }
    if (!out.has_bmhd) {
        damaged(path);
    }
    return out;
}

// Unpacks ByteRun1 until `out` is full: n in 0..127 copies n + 1 bytes,
// -127..-1 repeats the next byte 1 - n times, -128 does nothing.
bool unpack_byterun1(ByteCursor& c, uchar* out, qsizetype size) {
    qsizetype done = 0;
    while (done < size) {
        const auto n = static_cast<signed char>(c.next());
        if (!c.ok()) {
            return false;
        }
        if (n >= 0) {
            for (int i = 0; i <= n; ++i) {
                const uchar b = c.next();
                if (done < size) {
                    out[done++] = b;
                }
            }
        } else if (n != -128) {
            const uchar b = c.next();
            for (int i = 0; i < 1 - n; ++i) {
                if (done < size) {
                    out[done++] = b;
                }
            }
        }
        if (!c.ok()) {
            return false;
        }
    }
    return true;
}

// Old palettes keep four bits a channel in the high nibble.
void widen_palette(std::vector<QRgb>& palette) {
    for (QRgb v : palette) {
        if ((qRed(v) & 15) || (qGreen(v) & 15) || (qBlue(v) & 15)) {
            return;
        }
    }
    for (QRgb& v : palette) {
        v = qRgb(qRed(v) | qRed(v) >> 4, qGreen(v) | qGreen(v) >> 4, qBlue(v) | qBlue(v) >> 4);
    }
}

}  // namespace

QSize iff_size(const QByteArray& head, const QString& path) {
    const Chunks c = read_chunks(head, path, false);
    return QSize(c.bmhd.width, c.bmhd.height);
}

QImage decode_iff(const QByteArray& data, const QString& path) {
    Chunks ch = read_chunks(data, path, true);
    const Bmhd& h = ch.bmhd;
    if (ch.body < 0 || h.compression > 1) {
        damaged(path);
    }
    check_allocation(path, QSize(h.width, h.height));
    const bool ham = (ch.camg & 0x800) != 0 && (h.planes == 6 || h.planes == 8);
    const bool half_brite = (ch.camg & 0x80) != 0 && h.planes == 6;
    const bool true_colour = !ch.chunky && (h.planes == 24 || h.planes == 32);
    if (!ch.chunky && !true_colour && (h.planes < 1 || h.planes > 8)) {
        fail_to_read(path, QStringLiteral("%1 bit planes are not supported.").arg(h.planes));
    }
    widen_palette(ch.palette);
    std::vector<QRgb> palette = ch.palette;
    const int colours = ch.chunky ? 256 : (true_colour ? 0 : 1 << h.planes);
    if (palette.empty()) {
        // No palette: a grey ramp over the indexes.
        for (int i = 0; i < colours; ++i) {
            const int v = colours > 1 ? i * 255 / (colours - 1) : 0;
            palette.push_back(qRgb(v, v, v));
        }
    }
    if (half_brite) {
        palette.resize(32, qRgb(0, 0, 0));
        for (int i = 0; i < 32; ++i) {
            const QRgb v = palette[static_cast<size_t>(i)];
            palette.push_back(qRgb(qRed(v) / 2, qGreen(v) / 2, qBlue(v) / 2));
        }
    }
    palette.resize(256, qRgb(0, 0, 0));

    const qsizetype plane_bytes = ch.chunky ? (h.width + 1) / 2 * 2 : (h.width + 15) / 16 * 2;
    const int planes_stored = ch.chunky ? 1 : h.planes + (h.masking == 1 ? 1 : 0);
    const qsizetype row_bytes = plane_bytes * planes_stored;
    std::vector<uchar> row(static_cast<size_t>(row_bytes));
    ByteCursor body(data, ch.body, ch.body + ch.body_length);
    QImage image(h.width, h.height, QImage::Format_RGB32);
    if (image.isNull()) {
        fail_to_read(path, QStringLiteral("there is not enough memory for the picture."));
    }
    for (int y = 0; y < h.height; ++y) {
        if (h.compression == 1) {
            if (!unpack_byterun1(body, row.data(), row_bytes)) {
                damaged(path);
            }
        } else {
            for (qsizetype i = 0; i < row_bytes; ++i) {
                row[static_cast<size_t>(i)] = body.next();
            }
            if (!body.ok()) {
                damaged(path);
            }
        }
        auto* out = reinterpret_cast<QRgb*>(image.scanLine(y));
        QRgb held = palette[0];
        for (int x = 0; x < h.width; ++x) {
            if (ch.chunky) {
                out[x] = palette[row[static_cast<size_t>(x)]];
                continue;
            }
            quint32 value = 0;
            const qsizetype byte = x / 8;
            const int bit = 7 - (x % 8);
            for (int p = 0; p < h.planes; ++p) {
                value |= quint32((row[static_cast<size_t>(p * plane_bytes + byte)] >> bit) & 1)
                         << p;
            }
            if (true_colour) {
                out[x] = qRgb(value & 255, (value >> 8) & 255, (value >> 16) & 255);
            } else if (ham) {
                // Hold and modify: the top two bits say which channel of the
                // held colour the low bits replace.
                const int bits = h.planes - 2;
                const quint32 control = value >> bits;
                const int low = static_cast<int>(value & ((1u << bits) - 1));
                const int v = bits == 4 ? low * 17 : (low << 2) | (low >> 4);
                switch (control) {
                    case 0:
                        held = palette[static_cast<size_t>(low)];
                        break;
                    case 1:
                        held = qRgb(qRed(held), qGreen(held), v);
                        break;
                    case 2:
                        held = qRgb(v, qGreen(held), qBlue(held));
                        break;
                    default:
                        held = qRgb(qRed(held), v, qBlue(held));
                        break;
                }
                out[x] = held;
            } else {
                out[x] = palette[value & 255];
            }
        }
    }
    return image;
}
