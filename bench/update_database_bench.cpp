// Enters 100,000 new paths into a copy of the delivered catalog with the
// "Database" command's logic, then runs it again over the same list (all
// present), and prints files per second for both runs. Beside it, the same
// lookups and inserts straight through SQLite's C interface on another copy,
// one commit per row as ours, with the pragmas the catalog layer sets: the
// floor that the machine and the engine give.
// Usage: update_database_bench [PRISTINE_CATALOG]   (default build/data/qd.mdb)

#include "app/program_state.h"
#include "catalog/update_database.h"
#include "core/dialogs.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <sqlite3.h>

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

// The reference: prepared lookup and insert on the C interface. Returns
// files per second for a first (all new) and a second (all present) run.
bool raw_sqlite(const QString& path, const QStringList& paths, double rate[2]) {
    sqlite3* db = nullptr;
    if (sqlite3_open(QFile::encodeName(path).constData(), &db) != SQLITE_OK) {
        return false;
    }
    sqlite3_exec(db,
                 "pragma journal_mode=wal; pragma synchronous=normal; "
                 "pragma wal_autocheckpoint=8000; pragma journal_size_limit=67108864;",
                 nullptr, nullptr, nullptr);
    sqlite3_stmt* find = nullptr;
    sqlite3_stmt* add = nullptr;
    sqlite3_prepare_v2(db, "select _rowid_, * from filenames where filename=?", -1, &find, nullptr);
    sqlite3_prepare_v2(db, "insert into filenames (filename, catalog) values (?, ?)", -1, &add,
                       nullptr);
    for (int run = 0; run < 2; ++run) {
        QElapsedTimer t;
        t.start();
        for (const QString& p : paths) {
            const QByteArray utf8 = p.toUtf8();
            sqlite3_bind_text(find, 1, utf8.constData(), static_cast<int>(utf8.size()),
                              SQLITE_TRANSIENT);
            int rows = 0;
            while (sqlite3_step(find) == SQLITE_ROW) {
                ++rows;
            }
            sqlite3_reset(find);
            if (rows == 0) {
                sqlite3_bind_text(add, 1, utf8.constData(), static_cast<int>(utf8.size()),
                                  SQLITE_TRANSIENT);
                sqlite3_bind_text(add, 2, "Bench", -1, SQLITE_STATIC);
                sqlite3_step(add);
                sqlite3_reset(add);
            }
        }
        rate[run] = paths.size() / (static_cast<double>(t.nsecsElapsed()) / 1e9);
    }
    sqlite3_finalize(find);
    sqlite3_finalize(add);
    sqlite3_close(db);
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

    ProgramState program;
    AppState& app = program.app;
    app.app_dir = home.path();
    app.database_path = catalog;
    if (!app.database.open(catalog)) {
        std::fprintf(stderr, "cannot open %s\n", qPrintable(catalog));
        return 1;
    }
    SilentDialogs dialogs;
    UiHooks ui;
    NoShellServices shell;
    Context ctx{app, dialogs, ui, shell};

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
    std::printf("target: >= 20000 files/s on the first run: %s\n",
                rate[0] >= 20000 ? "met" : "not met");
    return 0;
}
