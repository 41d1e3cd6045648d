#include "image_samples.h"

#include "core/run_error.h"
#include "imaging/image_control.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPainter>
#include <QProcess>
#include <QtEndian>

#include <cstdlib>

namespace {

// Little-endian words of 16 or 32 bits appended to `b`.
template <class T>
void put_le(QByteArray& b, std::initializer_list<qint64> values) {
    for (qint64 v : values) {
        const T le = qToLittleEndian(T(v));
        b.append(reinterpret_cast<const char*>(&le), sizeof le);
    }
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

QString write_bytes(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile f(path);
    if (f.open(QIODevice::WriteOnly)) {
        f.write(bytes);
    }
    return path;
}


QByteArray encoded(const QImage& img, const char* format, int quality) {
    QBuffer b;
    b.open(QIODevice::WriteOnly);
    img.save(&b, format, quality);
    return b.data();
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
    const int w = mono.width(), h = mono.height();
    QByteArray head(packed ? "LinS" : "DanM");
    put_le<quint16>(head, {w, h, 1, 1, 1, 1, w, h, 0, 0});
    // The checksum makes the XOR of the first thirteen words 0.
    quint16 x = 0;
    for (int i = 0; i < head.size(); i += 2) {
        x ^= qFromLittleEndian<quint16>(head.constData() + i);
    }
    put_le<quint16>(head, {x, 0, 0, 0});
    QByteArray map, rows;
    for (int y = 0; y < h; ++y) {
        // Eight pixels a byte, a set bit for white.
        QByteArray row((w + 7) / 8, '\0');
        for (int px = 0; px < w; ++px) {
            if (mono.pixel(px, y) == qRgb(255, 255, 255)) {
                row[px / 8] = char(uchar(row[px / 8]) | (0x80 >> (px % 8)));
            }
        }
        if (!packed) {
            rows += row;
            continue;
        }
        // Runs of equal bytes as (0, count, value), the rest as literals.
        QByteArray line;
        for (int i = 0, j = 0; i < row.size(); i = j) {
            while (j < row.size() && row[j] == row[i] && j - i < 255) {
                ++j;
            }
            line += j - i >= 3 ? QByteArray(1, '\0') + char(j - i) + row[i]
                               : char(j - i) + row.mid(i, j - i);
        }
        put_le<quint16>(map, {line.size()});
        rows += line;
    }
    return head + map + rows;
}

QByteArray cut_file(int width, int height) {
    // Each line: its length, then a run of value 1 over the left half and the
    // right half as literal bytes of value 2, then the 0 that ends the line.
    QByteArray b;
    put_le<quint16>(b, {width, height, 0});
    const int right = width - width / 2;
    const QByteArray line =
        char(0x80 | (width / 2)) + QByteArray("\x01") + char(right) + QByteArray(right, '\x02');
    for (int y = 0; y < height; ++y) {
        put_le<quint16>(b, {line.size() + 1});
        b += line + '\0';
    }
    return b;
}

QByteArray hrz_file() {
    // 256 x 240, three bytes of six bits a pixel: red on the left, blue on the right.
    const QByteArray line =
        QByteArray("\x3F\x00\x00", 3).repeated(128) + QByteArray("\x00\x00\x3F", 3).repeated(128);
    return line.repeated(240);
}

QByteArray emf_file() {
    // The header record (bounds and frame 0), then the end-of-file record.
    QByteArray b;
    put_le<quint32>(b, {1, 108, 0, 0, 0, 0, 0, 0, 0, 0});
    b.append(" EMF");
    put_le<quint32>(b, {0x10000, 108 + 20, 2});
    b.append(QByteArray(108 - b.size(), '\0'));
    put_le<quint32>(b, {14, 20, 0, 0, 0});
    return b;
}

bool near_colour(QRgb a, QRgb b, int tolerance) {
    return std::abs(qRed(a) - qRed(b)) <= tolerance &&
           std::abs(qGreen(a) - qGreen(b)) <= tolerance &&
           std::abs(qBlue(a) - qBlue(b)) <= tolerance;
}
