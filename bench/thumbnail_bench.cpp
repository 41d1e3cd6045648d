// The thumbnail batch on a directory of JPEGs, for bench/thumbnails.sh.
//
//   thumbnail_bench make-input DIR COUNT   photo-like 6000 x 4000 JPEGs, made once
//   thumbnail_bench run DIR OUT SIZE [THREADS]
//                                          thumbnails of every DIR/*.jpg into OUT
//
// "run" prints the elapsed seconds, the files written and the peak memory.

#include "app/program_state.h"
#include "bench_support.h"

#include "core/app_state.h"
#include "core/context.h"
#include "core/dialogs.h"
#include "core/shell_services.h"
#include "core/window_hooks.h"
#include "imaging/jpeg_writer.h"
#include "imaging/resize_batch.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QTextStream>

#include <sys/resource.h>
#include <cstdio>
#include <vector>

namespace {

int make_input(const QString& dir, int count) {
    bench::make_photos(dir, count, QSize(6000, 4000), 90, 3);
    return 0;
}

int run(const QString& dir, const QString& out, const QString& size, int threads) {
    QDir().mkpath(out);
    ProgramState program;
    AppState& app = program.app;
    app.thumbnail_dither = "1";
    app.thumbnail_optimize = "No";
    app.thumbnail_quality = "75";
    app.thumbnail_smoothing = "0";
    app.thumbnail_size = size;
    app.thumbnail_3d = false;
    bench::PrintingDialogs dialogs;
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
