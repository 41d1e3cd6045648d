#include "image_samples.h"

#include "core/run_error.h"
#include "imaging/image_control.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPainter>
#include <QProcess>

#include <cstdlib>

namespace {

void put16le(QByteArray& b, int v) {
    b.append(char(v & 255));
    b.append(char((v >> 8) & 255));
}
void put32le(QByteArray& b, quint32 v) {
    put16le(b, int(v & 0xFFFF));
    put16le(b, int(v >> 16));
}
void put16be(QByteArray& b, int v) {
    b.append(char((v >> 8) & 255));
    b.append(char(v & 255));
}

// The XOR of the first `words` little-endian words: a header's checksum.
int xor_words(const QByteArray& b, int words) {
    int x = 0;
    for (int i = 0; i < words * 2; i += 2) {
        x ^= uchar(b[i]) | (uchar(b[i + 1]) << 8);
    }
    return x;
}

// The row of a one-bit picture packed eight pixels a byte, a set bit for
// the pixel whose colour is `set_colour`.
QByteArray packed_row(const QImage& mono, int y, QRgb set_colour) {
    QByteArray row((mono.width() + 7) / 8, '\0');
    for (int x = 0; x < mono.width(); ++x) {
        if (mono.pixel(x, y) == set_colour) {
            row[x / 8] = char(uchar(row[x / 8]) | (0x80 >> (x % 8)));
        }
    }
    return row;
}

}  // namespace

QImage halves(int width, int height, QRgb left, QRgb right) {
    QImage img(width, height, QImage::Format_RGB32);
    img.fill(right);
    QPainter(&img).fillRect(0, 0, width / 2, height, QColor(left));
    return img;
}

QImage halves_picture(int width, int height) {
    return halves(width, height, qRgb(255, 0, 0), qRgb(0, 0, 255));
}

QImage detailed_picture(int w, int h) {
    QImage img(w, h, QImage::Format_RGB32);
    quint32 seed = 99;
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            seed = seed * 1664525 + 1013904223;
            const int n = int(seed >> 26);
            const int stripe = ((x / 3) % 2) * 90;
            img.setPixel(x, y,
                         qRgb((x * 255 / w + n) & 255, (y * 255 / h + stripe) & 255,
                              (n * 4 + stripe) & 255));
        }
    }
    return img;
}

QImage halves_mono(int width, int height) {
    return halves(width, height, qRgb(0, 0, 0), qRgb(255, 255, 255));
}

QString write_bytes(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile f(path);
    if (f.open(QIODevice::WriteOnly)) {
        f.write(bytes);
    }
    return path;
}

QByteArray read_bytes(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

QByteArray encoded(const QImage& img, const char* format, int quality) {
    QByteArray out;
    QBuffer b(&out);
    b.open(QIODevice::WriteOnly);
    img.save(&b, format, quality);
    return out;
}

QString load_failure(const QString& path) {
    try {
        ImageControl c(ImageControl::kWorkerTwips);
        c.set_file_name(path);
        if (!c.has_picture()) {
            return "no picture";
        }
        c.set_thumb_size(16);
        c.encoded_jpeg();
        return QString();
    } catch (const RunError& e) {
        return e.text();
    }
}

bool run_to_file(const QString& program, const QStringList& args, const QString& output,
                 QString* error) {
    QProcess p;
    p.setStandardOutputFile(output);
    p.start(program, args);
    const bool ok = p.waitForFinished(60000) && p.exitStatus() == QProcess::NormalExit &&
                    p.exitCode() == 0 && QFileInfo(output).size() > 0;
    if (!ok && error) {
        *error = program + ": " + QString::fromLocal8Bit(p.readAllStandardError());
    }
    return ok;
}

QByteArray msp_file(const QImage& mono, bool packed) {
    QByteArray h;
    h.append(packed ? "LinS" : "DanM");
    const int words[] = {mono.width(), mono.height(), 1, 1, 1, 1,
                         mono.width(), mono.height(), 0, 0};
    for (int w : words) {
        put16le(h, w);
    }
    put16le(h, xor_words(h, 12));  // the XOR of the first thirteen words is 0
    h.append(QByteArray(6, '\0'));
    QByteArray rows;
    QByteArray map;
    for (int y = 0; y < mono.height(); ++y) {
        const QByteArray row = packed_row(mono, y, qRgb(255, 255, 255));
        if (!packed) {
            rows += row;
            continue;
        }
        // Runs of equal bytes as (0, count, value), the rest as literals.
        QByteArray line;
        int i = 0;
        while (i < row.size()) {
            int j = i;
            while (j < row.size() && row[j] == row[i] && j - i < 255) {
                ++j;
            }
            if (j - i >= 3) {
                line.append('\0');
                line.append(char(j - i));
                line.append(row[i]);
            } else {
                line.append(char(j - i));
                line.append(row.mid(i, j - i));
            }
            i = j;
        }
        put16le(map, int(line.size()));
        rows += line;
    }
    return h + map + rows;
}

QByteArray gem_file(const QImage& mono) {
    QByteArray b;
    const int header[] = {1, 8, 1, 2, 85, 85, mono.width(), mono.height()};
    for (int w : header) {
        put16be(b, w);
    }
    const int bytes = (mono.width() + 7) / 8;
    for (int y = 0; y < mono.height(); ++y) {
        const QByteArray row = packed_row(mono, y, qRgb(0, 0, 0));
        // Every other line is written once with a vertical repeat of 2.
        if (y % 4 == 0 && y + 1 < mono.height() && packed_row(mono, y + 1, qRgb(0, 0, 0)) == row) {
            b.append(QByteArray("\x00\x00\xFF\x02", 4));
            ++y;
        }
        int i = 0;
        while (i < bytes) {
            const uchar v = uchar(row[i]);
            int j = i;
            while (j < bytes && uchar(row[j]) == v && j - i < 127) {
                ++j;
            }
            if ((v == 0x00 || v == 0xFF) && j - i >= 2) {
                b.append(char((v ? 0x80 : 0x00) | (j - i)));  // solid run
            } else if (j - i >= 4) {
                b.append('\0');  // pattern run of one two-byte pattern
                b.append(char((j - i) / 2));
                b.append(char(v));
                b.append(char(v));
                j = i + (j - i) / 2 * 2;
            } else {
                b.append('\x80');  // literal bytes
                b.append(char(j - i));
                b.append(row.mid(i, j - i));
            }
            i = j;
        }
    }
    return b;
}

QByteArray cut_file(int width, int height) {
    // Each line: its length, then a run of value 1 over the left half and the
    // right half as literal bytes of value 2, then the 0 that ends the line.
    QByteArray b;
    put16le(b, width);
    put16le(b, height);
    put16le(b, 0);
    for (int y = 0; y < height; ++y) {
        QByteArray line;
        line.append(char(0x80 | (width / 2)));
        line.append('\x01');
        line.append(char(width - width / 2));
        line.append(QByteArray(width - width / 2, '\x02'));
        line.append('\0');
        put16le(b, int(line.size()));
        b += line;
    }
    return b;
}

QByteArray hrz_file() {
    // 256 x 240, three bytes of six bits a pixel: red on the left, blue on the right.
    const QByteArray line =
        QByteArray("\x3F\x00\x00", 3).repeated(128) + QByteArray("\x00\x00\x3F", 3).repeated(128);
    return line.repeated(240);
}

QByteArray wpg_file() {
    // Version 1: header, "start" record, one 16 x 4 one-bit bitmap whose rows
    // are two repeat runs (F0, 0F), "end" record.
    auto record = [](int type, const QByteArray& body) {
        QByteArray r;
        r.append(char(type));
        r.append(char(body.size()));
        return r + body;
    };
    QByteArray h("\xFFWPC", 4);
    put32le(h, 16);
    h.append("\x01\x16\x01\x00", 4);
    put16le(h, 0);
    put16le(h, 0);
    QByteArray start("\x01\x00", 2);
    put16le(start, 16 * 75);
    put16le(start, 4 * 75);
    QByteArray bitmap;
    for (int v : {16, 4, 1, 75, 75}) {
        put16le(bitmap, v);
    }
    for (int y = 0; y < 4; ++y) {
        bitmap.append("\x81\xF0\x81\x0F", 4);
    }
    return h + record(0x0F, start) + record(0x0B, bitmap) + record(0x10, QByteArray());
}

QByteArray wmf_file() {
    // A placeable metafile of 64 x 32 units at 96 a inch with one solid red
    // rectangle drawn with a red brush.
    QByteArray records;
    auto record = [&records](int function, const QList<int>& params) {
        put32le(records, quint32(3 + params.size()));
        put16le(records, function);
        for (int p : params) {
            put16le(records, p);
        }
    };
    record(0x020B, {0, 0});           // SetWindowOrg
    record(0x020C, {32, 64});         // SetWindowExt
    record(0x02FC, {0, 0xFF, 0, 0});  // CreateBrushIndirect: solid, red
    record(0x012D, {0});              // SelectObject
    record(0x041B, {24, 48, 8, 16});  // Rectangle: bottom, right, top, left
    record(0x0000, {});               // EOF
    QByteArray meta;
    put16le(meta, 1);
    put16le(meta, 9);
    put16le(meta, 0x0300);
    put32le(meta, quint32((18 + records.size()) / 2));
    put16le(meta, 1);
    put32le(meta, 7);
    put16le(meta, 0);
    QByteArray placeable;
    put32le(placeable, 0x9AC6CDD7);
    const int words[] = {0, 0, 0, 64, 32, 96, 0, 0};
    for (int w : words) {
        put16le(placeable, w);
    }
    put16le(placeable, xor_words(placeable, 10));
    return placeable + meta + records;
}

QByteArray emf_file() {
    QByteArray b;
    put32le(b, 1);    // EMR_HEADER
    put32le(b, 108);  // its size
    for (int i = 0; i < 8; ++i) {
        put32le(b, 0);  // bounds and frame
    }
    b.append(" EMF");
    put32le(b, 0x10000);
    put32le(b, 108 + 20);
    put32le(b, 2);
    b.append(QByteArray(108 - b.size(), '\0'));
    put32le(b, 14);  // EMR_EOF
    put32le(b, 20);
    b.append(QByteArray(12, '\0'));
    return b;
}

bool near_colour(QRgb a, QRgb b, int tolerance) {
    return std::abs(qRed(a) - qRed(b)) <= tolerance &&
           std::abs(qGreen(a) - qGreen(b)) <= tolerance &&
           std::abs(qBlue(a) - qBlue(b)) <= tolerance;
}
