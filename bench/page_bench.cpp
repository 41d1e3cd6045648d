// Page making at the size of a collection, for bench/pages.sh.
//
//   page_bench make-input DIR COUNT     photo-like 1600 x 1200 JPEGs, made once
//   page_bench gallery DIR WORK [COUNT] the thumbnail batch alone over the files,
//                                       then one gallery page over the same files
//   page_bench slides DIR WORK [COUNT]  a slide show of COUNT pages, no resizing
//
// WORK is emptied and holds the application directory (a copy of the delivered
// catalog, with a row for every file) and the outputs.

#include "app/program_state.h"
#include "bench_support.h"

#include "catalog/database.h"
#include "core/app_state.h"
#include "core/context.h"
#include "core/dialogs.h"
#include "core/file_helpers.h"
#include "core/shell_services.h"
#include "core/window_hooks.h"
#include "imaging/resize_batch.h"
#include "pages/web_page_run.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>

#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

QStringList input_files(const QString& dir, int count) {
    QStringList files = QDir(dir).entryList({"*.jpg"}, QDir::Files, QDir::Name);
    if (count > 0 && files.size() > count) {
        files = files.mid(0, count);
    }
    for (QString& f : files) {
        f = dir + u'/' + f;
    }
    return files;
}

int make_input(const QString& dir, int count) {
    bench::make_photos(dir, count, QSize(1600, 1200), 85, 5);
    std::printf("%d files in %s\n", static_cast<int>(input_files(dir, 0).size()), qPrintable(dir));
    return 0;
}

// The application around the runs: a fresh application directory in WORK
// with the delivered catalog, a row for every file, and the thumbnail values
// a first start gives.
struct Bench {
    Bench(const QString& work, const QStringList& files) : work(work) {
        QDir(work).removeRecursively();
        QDir().mkpath(work + "/app/temp");
        app.app_dir = work + "/app";
        app.settings.set_path(app.app_dir + "/quilldex.ini");
        const QString catalog =
            QCoreApplication::applicationDirPath() + QStringLiteral("/../data/qd.mdb");
        app.database_path = app.app_dir + "/qd.mdb";
        if (!QFile::copy(catalog, app.database_path) || !app.database.open(app.database_path)) {
            std::fprintf(stderr, "cannot open a copy of %s\n", qPrintable(catalog));
            std::exit(2);
        }
        QFile(app.database_path).setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
        app.thumbnail_dither = "1";
        app.thumbnail_optimize = "No";
        app.thumbnail_quality = "75";
        app.thumbnail_smoothing = "0";
        app.thumbnail_size = "100";
        Recordset& rs = app.shared_recordset;
        for (int i = 0; i < files.size(); ++i) {
            rs.open(app.database, Sql("select * from filenames where filename='trash'"));
            rs.add_new();
            rs.set_field("filename", files.at(i));
            rs.set_field("title", QStringLiteral("Photo %1").arg(i + 1));
            rs.set_field("description", QStringLiteral("Day %1 of the trip").arg(i % 40 + 1));
            rs.update();
            rs.close();
        }
    }

    QString work;
    ProgramState program;
    AppState& app = program.app;
    bench::PrintingDialogs dialogs;
    UiHooks ui;
    NoShellServices shell;
    Context ctx{app, dialogs, ui, shell};
};

double seconds(const QElapsedTimer& t) {
    return static_cast<double>(t.nsecsElapsed()) / 1e9;
}

// The thumbnail batch of the Resize tab over `files`, on every core.
void thumbnail_batch(Bench& b, const QStringList& files, const QString& target) {
    ResizeRun run;
    run.paths = files;
    run.target_directory = target;
    run.size = "100";
    run_resize_batch(b.ctx, run);
}

WebPageRequest request(const QString& target, const QString& template_name, bool slides) {
    QDir().mkpath(target);
    WebPageRequest r;
    r.page.target_directory = target;
    r.page.make_slide_show = slides;
    r.page.slide_show_delay = "5";
    r.image_page = "index.htm";
    r.image_template = template_name;
    r.max_size = "0";
    r.thumbnail_size = "100";
    return r;
}

// Wall-clock and processor time (all threads) of one run.
struct Cost {
    double wall = 0;
    double cpu = 0;
};

double cpu_seconds() {
    rusage u{};
    getrusage(RUSAGE_SELF, &u);
    return static_cast<double>(u.ru_utime.tv_sec + u.ru_stime.tv_sec) +
           static_cast<double>(u.ru_utime.tv_usec + u.ru_stime.tv_usec) / 1e6;
}

// Runs `what` on a fresh output directory; keeps the lower of each figure
// over the rounds, since what else runs on the machine only ever adds.
template <class F>
void measure(Cost& best, bool first, const QString& out, F what) {
    QDir(out).removeRecursively();
    QDir().mkpath(out);
    const double cpu = cpu_seconds();
    QElapsedTimer t;
    t.start();
    what();
    const Cost c{seconds(t), cpu_seconds() - cpu};
    best.wall = first ? c.wall : std::min(best.wall, c.wall);
    best.cpu = first ? c.cpu : std::min(best.cpu, c.cpu);
}

void print_row(const char* label, const Cost& c, const Cost& batch, int n) {
    std::printf("  %-30s %7.2f s %6.2f ms/image %+6.1f %% | cpu %7.2f s %6.2f ms/image %+6.1f %%\n",
                label, c.wall, 1000 * c.wall / n, 100 * c.wall / batch.wall, c.cpu,
                1000 * c.cpu / n, 100 * c.cpu / batch.cpu);
}

int gallery(const QString& dir, const QString& work, int count) {
    const QStringList files = input_files(dir, count);
    if (files.isEmpty()) {
        std::fprintf(stderr, "no input in %s (run make-input first)\n", qPrintable(dir));
        return 2;
    }
    Bench b(work, files);
    const int n = static_cast<int>(files.size());
    // The same thumbnails and staging as the gallery, with no other tag and no text.
    Recordset& rs = b.app.shared_recordset;
    rs.open(b.app.database, Sql("select * from template where tname='trash'"));
    rs.add_new();
    rs.set_field("tname", "Bench Thumbnails Only");
    rs.set_field("image1", "[timgsrc][timgsrc][timgsrc]");
    rs.update();
    rs.close();

    const auto page = [&](const QString& template_name, const QString& out) {
        WebPageRequest r = request(out, template_name, false);
        b.app.main_list.set_items(files);
        create_web_pages(b.ctx, r, b.app.main_list);
    };
    const QString thumbs = work + "/thumbs";
    const QString bare_out = work + "/bare";
    const QString page_out = work + "/page";
    Cost batch, bare, full;
    // Interleaved, so that what else runs on the machine weighs on all three.
    for (int round = 0; round < 3; ++round) {
        measure(batch, round == 0, thumbs, [&] { thumbnail_batch(b, files, thumbs); });
        measure(bare, round == 0, bare_out, [&] { page("Bench Thumbnails Only", bare_out); });
        measure(full, round == 0, page_out, [&] { page("Thumbnail Gallery", page_out); });
    }
    const Cost staging{bare.wall - batch.wall, bare.cpu - batch.cpu};
    const Cost text{full.wall - bare.wall, full.cpu - bare.cpu};
    std::printf("gallery page over %d images, thumbnails of 100 pixels (best of 3 rounds)\n", n);
    std::printf("  %-30s %7s   %6s          %7s | %s\n", "", "wall", "", "of batch",
                "processor time, all threads");
    print_row("thumbnail batch alone", batch, batch, n);
    print_row("gallery page, all of it", full, batch, n);
    print_row("  staging files beside it", staging, batch, n);
    print_row("  page writing and lookups", text, batch, n);
    const QString index = page_out + "/index.htm";
    std::printf("  page: %s (%lld bytes)\n", qPrintable(index),
                static_cast<long long>(QFileInfo(index).size()));
    return 0;
}

int slides(const QString& dir, const QString& work, int count) {
    const QStringList files = input_files(dir, count);
    if (files.isEmpty()) {
        std::fprintf(stderr, "no input in %s (run make-input first)\n", qPrintable(dir));
        return 2;
    }
    Bench b(work, files);
    WebPageRequest r = request(work + "/show", "Slide Show", true);
    b.app.main_list.set_items(files);
    QElapsedTimer t;
    t.start();
    create_web_pages(b.ctx, r, b.app.main_list);
    const double s = seconds(t);
    const int pages =
        static_cast<int>(QDir(work + "/show").entryList({"*.htm"}, QDir::Files).size());
    std::printf("slide show of %d pages, no resizing: %.2f s, %.0f pages/s\n", pages, s, pages / s);
    return pages == files.size() ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const QStringList a = application.arguments().mid(1);
    if (a.size() >= 3 && a[0] == "make-input") {
        return make_input(a[1], a[2].toInt());
    }
    if (a.size() >= 3 && a[0] == "gallery") {
        return gallery(a[1], a[2], a.value(3, "5000").toInt());
    }
    if (a.size() >= 3 && a[0] == "slides") {
        return slides(a[1], a[2], a.value(3, "1000").toInt());
    }
    std::fprintf(stderr,
                 "usage: page_bench make-input DIR COUNT | gallery DIR WORK [COUNT] | "
                 "slides DIR WORK [COUNT]\n");
    return 2;
}
