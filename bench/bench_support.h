#pragma once

// What the benchmark programs share: dialogs that print instead of asking,
// and a cached set of generated photographs to run over.

#include "core/dialogs.h"
#include "imaging/jpeg_writer.h"

#include <QDir>
#include <QFile>
#include <QImage>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdio>
#include <thread>
#include <vector>

namespace bench {

class PrintingDialogs : public Dialogs {
public:
    Answer message(const QString& text, Buttons, Icon) override {
        std::fprintf(stderr, "%s\n", qPrintable(text));
        return Answer::Ok;
    }
    QString input(const QString&, const QString&, const QString&) override { return {}; }
    QString open_file(const FileRequest&) override { return {}; }
    std::optional<int> choose_color(int) override { return std::nullopt; }
    DirectoryChoice choose_directory(const QString& s) override { return {s, true}; }
};

// Smooth gradients with a few soft shapes and sensor-like noise, so that the
// files compress like photographs rather than flat colour.
inline QImage photo_like(int width, int height, quint32 seed) {
    QImage img(width, height, QImage::Format_RGB32);
    const double cx = (seed % 7 + 1) * width / 8.0;
    const double cy = (seed % 5 + 1) * height / 6.0;
    quint32 s = seed * 2654435761u + 1;
    for (int y = 0; y < height; ++y) {
        auto* row = reinterpret_cast<QRgb*>(img.scanLine(y));
        for (int x = 0; x < width; ++x) {
            s = s * 1664525u + 1013904223u;
            const int noise = static_cast<int>((s >> 24) % 25) - 12;
            const double d = std::hypot(x - cx, y - cy) / width;
            const int r = static_cast<int>(200 * (1 - d) + 40 * std::sin(x / 300.0)) + noise;
            const int g = static_cast<int>(120 + 80 * std::sin((x + y) / 500.0 + seed)) + noise;
            const int b =
                static_cast<int>(255.0 * y / height * 0.8 + 30 * std::cos(y / 200.0)) + noise;
            row[x] = qRgb(std::clamp(r, 0, 255), std::clamp(g, 0, 255), std::clamp(b, 0, 255));
        }
    }
    return img;
}

// Writes `count` photographs of `size` into `dir` as "photo_NNN.jpg" (numbers
// of `digits` places), on every core; files already there are kept, so a set
// is made once. Each file appears whole or not at all.
inline void make_photos(const QString& dir, int count, QSize size, int quality, int digits) {
    QDir().mkpath(dir);
    std::atomic<int> next{0};
    const auto work = [&] {
        for (int i = next++; i < count; i = next++) {
            const QString path =
                dir + QStringLiteral("/photo_%1.jpg").arg(i, digits, 10, QChar(u'0'));
            if (QFile::exists(path)) {
                continue;
            }
            const QByteArray jpeg =
                encode_jpeg(photo_like(size.width(), size.height(), static_cast<quint32>(i + 1)),
                            {quality, 0, false});
            QFile f(path + ".part");
            if (!f.open(QIODevice::WriteOnly) || f.write(jpeg) != jpeg.size()) {
                std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
                continue;
            }
            f.close();
            QFile::rename(path + ".part", path);
        }
    };
    std::vector<std::thread> threads;
    for (unsigned t = 0; t < std::max(1u, std::thread::hardware_concurrency()); ++t) {
        threads.emplace_back(work);
    }
    for (std::thread& t : threads) {
        t.join();
    }
}

}  // namespace bench
