// Fills the Load tab's gathered list and the main list with 100,000 rows in
// pages built offscreen, as the window holds them, and prints the times:
// "Scan Now" over a tree of 100,000 files in 1,000 directories, "Main List"
// passing them all on, and browsing into one directory of 100,000 files.
// Each time runs from the click to the views painted. Target: under 2 s each.
// Usage: list_fill_bench [PRISTINE_CATALOG]   (default build/data/qd.mdb)

#include "app/program_state.h"
#include "bench_window.h"
#include "lists/load_tab.h"
#include "lists/main_tab.h"
#include "ui/directory_box.h"
#include "ui/workbench.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QMainWindow>
#include <QPushButton>
#include <QStackedWidget>
#include <QTemporaryDir>

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

namespace {

void touch(const QByteArray& path) {
    const int fd = ::open(path.constData(), O_CREAT | O_WRONLY, 0644);
    if (fd >= 0) {
        ::close(fd);
    }
}

void make_files(const QString& dir, int count) {
    QDir().mkpath(dir);
    const QByteArray base = QFile::encodeName(dir);
    for (int n = 0; n < count; ++n) {
        touch(base + "/img" + QByteArray::number(n).rightJustified(6, '0') + ".jpg");
    }
}

// Lets the views lay out and paint what they now hold.
void settle(QWidget* view) {
    QApplication::processEvents();
    view->repaint();
    QApplication::processEvents();
}

double seconds(const QElapsedTimer& t) {
    return static_cast<double>(t.nsecsElapsed()) / 1e9;
}

}  // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QApplication application(argc, argv);
    QApplication::setFont(QFont(QStringLiteral("DejaVu Sans"), 8));

    QTemporaryDir work;
    const QString tree = work.path() + QStringLiteral("/tree");
    make_files(tree, 100);
    for (int a = 0; a < 9; ++a) {
        const QString mid = tree + QStringLiteral("/d%1").arg(a);
        make_files(mid, 100);
        for (int b = 0; b < 110; ++b) {
            make_files(mid + QStringLiteral("/e%1").arg(b, 3, 10, QLatin1Char('0')), 100);
        }
    }
    const QString flat = work.path() + QStringLiteral("/flat");
    make_files(flat, 100000);

    ProgramState program;
    AppState& app = program.app;
    app.app_dir = work.path();
    app.last_directory = tree;
    app.ini_path = work.path() + QStringLiteral("/quilldex.ini");
    app.settings.set_path(app.ini_path);
    // The tabs read catalog names on entry: a copy of the delivered catalog.
    const QString pristine =
        argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("build/data/qd.mdb");
    app.database_path = work.path() + QStringLiteral("/qd.mdb");
    if (!QFile::copy(pristine, app.database_path) || !app.database.open(app.database_path)) {
        std::fprintf(stderr, "cannot use the catalog %s\n", qPrintable(pristine));
        return 1;
    }
    bench::BenchWindow wb(app);
    MainTab* const main_tab = wb.add_page<MainTab>(QStringLiteral("Main"));
    LoadTab* const load_tab = wb.add_page<LoadTab>(QStringLiteral("Load"));
    wb.show(load_tab);
    load_tab->fill_file_types();
    load_tab->restore_load_tab();
    auto* gathered = wb.find<QAbstractItemView>(QStringLiteral("o_load_filelist"));
    auto* main_view = wb.find<QAbstractItemView>(QStringLiteral("o_main_itemlist"));

    QElapsedTimer t;
    t.start();
    wb.find<QPushButton>(QStringLiteral("b_load_scan"))->click();
    settle(gathered);
    const double scan = seconds(t);
    const int scanned = load_tab->files().count();

    t.restart();
    wb.find<QPushButton>(QStringLiteral("b_load_file_list"))->click();
    wb.show(main_tab);
    settle(main_view);
    const double pass = seconds(t);
    const int passed = app.main_list.count();

    // Browsing fills the list only before the first scan.
    app.scan_started = false;
    wb.show(load_tab);
    t.restart();
    wb.find<DirectoryBox>(QStringLiteral("o_load_dir_list"))->set_path(flat);
    settle(gathered);
    const double browse = seconds(t);
    const int browsed = load_tab->files().count();

    std::printf("Scan Now, tree of 1000 directories:  %6d rows in %.3f s\n", scanned, scan);
    std::printf("Main List, whole list to main list:  %6d rows in %.3f s\n", passed, pass);
    std::printf("Browse into one directory:           %6d rows in %.3f s\n", browsed, browse);
    const bool met = scan < 2 && pass < 2 && browse < 2;
    std::printf("target: each under 2 s: %s\n", met ? "met" : "not met");
    return 0;
}
