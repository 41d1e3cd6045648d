// Enters 100,000 new paths into a copy of the delivered catalog with the
// "Database" command's logic, then runs it again over the same list (all
// present), and prints files per second for both runs. Beside it, the same
// lookups and inserts straight through SQLite's C interface on another copy,
// with the journal settings and commits the catalog layer uses: the floor
// that the machine and the engine give. bench/catalog_add.sh measures the
// whole command-line program instead.
// Usage: update_database_bench [PRISTINE_CATALOG]   (default build/data/qd.mdb)

#include "bench_catalog.h"
#include "catalog/update_database.h"
#include "core/dialogs.h"
#include "sqlite_reference.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <cstdio>

namespace {

class SilentDialogs : public Dialogs {
public:
    Answer message(const QString&, Buttons, Icon) override { return Answer::Ok; }
    QString input(const QString&, const QString&, const QString&) override { return {}; }
    QString open_file(const FileRequest&) override { return {}; }
    std::optional<int> choose_color(int) override { return std::nullopt; }
    DirectoryChoice choose_directory(const QString& start) override { return {start, true}; }
};

constexpr int kFiles = 100000;

QString copy_catalog(const QString& pristine, const QString& dir, const QString& name) {
    const QString path = dir + u'/' + name;
    if (!QFile::copy(pristine, path)) {
        return QString();
    }
    QFile(path).setPermissions(QFile(path).permissions() | QFileDevice::WriteOwner);
    return path;
}

// The reference: the same lookups and inserts on SQLite's C interface.
// Returns files per second for a first (all new) and a second (all present)
// run.
bool raw_sqlite(const QString& path, const QStringList& paths, double rate[2]) {
    for (int run = 0; run < 2; ++run) {
        const double seconds = bench::sqlite_add(path, paths, "Bench");
        if (seconds < 0) {
            return false;
        }
        rate[run] = paths.size() / seconds;
    }
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const QString pristine =
        argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("build/data/qd.mdb");
    QTemporaryDir home;
    const QString catalog = copy_catalog(pristine, home.path(), QStringLiteral("qd.mdb"));
    const QString reference = copy_catalog(pristine, home.path(), QStringLiteral("raw.mdb"));
    if (catalog.isEmpty() || reference.isEmpty()) {
        std::fprintf(stderr, "cannot copy %s\n", qPrintable(pristine));
        return 1;
    }

    bench::CatalogSession<SilentDialogs> session;
    if (!session.open(home.path(), catalog)) {
        return 1;
    }
    AppState& app = session.app;
    Context& ctx = session.ctx;

    QStringList paths;
    paths.reserve(kFiles);
    for (int i = 0; i < kFiles; ++i) {
        paths << QStringLiteral("/home/user/photos/%1/img_%2.jpg")
                     .arg(i / 100, 4, 10, QLatin1Char('0'))
                     .arg(i, 6, 10, QLatin1Char('0'));
    }
    ItemList list;
    list.add_many(paths);

    double rate[2] = {0, 0};
    for (int run = 0; run < 2; ++run) {
        QElapsedTimer t;
        t.start();
        const UpdateStatistics stats = update_database_from_list(ctx, list, "Bench", true);
        const double seconds = static_cast<double>(t.nsecsElapsed()) / 1e9;
        rate[run] = kFiles / seconds;
        std::printf("%s run: %d files in %.3f s, %.0f files/s (added %d, failed %d)\n",
                    run == 0 ? "first (all new)" : "second (all present)", stats.total_files,
                    seconds, rate[run], stats.files_added, stats.files_failed);
    }
    double raw[2] = {0, 0};
    if (!raw_sqlite(reference, paths, raw)) {
        std::fprintf(stderr, "cannot open %s\n", qPrintable(reference));
        return 1;
    }
    std::printf("SQLite C interface, same statements: first %.0f files/s, second %.0f files/s\n",
                raw[0], raw[1]);
    std::printf("ratio ours/SQLite: first %.2f, second %.2f\n", rate[0] / raw[0], rate[1] / raw[1]);
    std::printf("target: >= 40000 files/s on the first run: %s\n",
                rate[0] >= 40000 ? "met" : "not met");
    return 0;
}
