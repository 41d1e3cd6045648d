// The thumbnail batch on a directory of JPEGs, for bench/thumbnails.sh.
//
//   thumbnail_bench make-input DIR COUNT   photo-like 6000 x 4000 JPEGs, made once
//   thumbnail_bench run DIR OUT SIZE [THREADS]
//                                          thumbnails of every DIR/*.jpg into OUT
//
// "run" prints the elapsed seconds, the files written and the peak memory.

#include "imaging/jpeg_writer.h"
#include "imaging/resize_batch.h"
#include "shell/app_state.h"
#include "shell/context.h"
#include "shell/dialogs.h"
#include "shell/shell_services.h"
#include "shell/window_hooks.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QTextStream>

#include <sys/resource.h>
#include <atomic>
#include <cmath>
#include <cstdio>
#include <thread>
#include <vector>

namespace {

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
QImage photo_like(int width, int height, quint32 seed) {
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

int make_input(const QString& dir, int count) {
    QDir().mkpath(dir);
    std::atomic<int> next{0};
    auto work = [&] {
        for (int i = next++; i < count; i = next++) {
            const QString path = dir + QString("/photo_%1.jpg").arg(i, 3, 10, QChar('0'));
            if (QFile::exists(path)) {
                continue;
            }
            const QByteArray jpeg =
                encode_jpeg(photo_like(6000, 4000, static_cast<quint32>(i + 1)), {90, 0, false});
            QFile f(path + ".part");
            if (!f.open(QIODevice::WriteOnly) || f.write(jpeg) != jpeg.size()) {
                std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
                return;
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
    return 0;
}

int run(const QString& dir, const QString& out, const QString& size, int threads) {
    QDir().mkpath(out);
    AppState app;
    app.thumbnail_dither = "1";
    app.thumbnail_optimize = "No";
    app.thumbnail_quality = "75";
    app.thumbnail_smoothing = "0";
    app.thumbnail_size = size;
    app.thumbnail_3d = false;
    PrintingDialogs dialogs;
    UiHooks ui;
    NoShellServices shell;
    Context ctx{app, dialogs, ui, shell};

    ResizeRun r;
    for (const QString& name : QDir(dir).entryList({"*.jpg"}, QDir::Files, QDir::Name)) {
        r.paths << dir + "/" + name;
    }
    r.target_directory = out;
    r.size = size;
    r.threads = threads;
    QElapsedTimer t;
    t.start();
    const ResizeOutcome o = run_resize_batch(ctx, r);
    const double seconds = t.nsecsElapsed() / 1e9;
    rusage use{};
    getrusage(RUSAGE_SELF, &use);
    std::printf(
        "files %lld written %lld failed %d seconds %.3f per_image_ms %.1f peak_rss_mb %.1f\n",
        static_cast<long long>(r.paths.size()), static_cast<long long>(o.written.size()), o.failed,
        seconds, r.paths.isEmpty() ? 0.0 : 1000 * seconds / r.paths.size(), use.ru_maxrss / 1024.0);
    return o.failed == 0 && o.written.size() == r.paths.size() ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication qapp(argc, argv);
    const QStringList a = qapp.arguments();
    if (a.size() >= 4 && a[1] == "make-input") {
        return make_input(a[2], a[3].toInt());
    }
    if (a.size() >= 5 && a[1] == "run") {
        return run(a[2], a[3], a[4], a.size() >= 6 ? a[5].toInt() : 0);
    }
    std::fprintf(stderr,
                 "usage: thumbnail_bench make-input DIR COUNT | run DIR OUT SIZE [THREADS]\n");
    return 2;
}
