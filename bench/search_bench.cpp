// The Search tab's "Search File Name" and "Search Blank Titles", and the
// Audit tab's five counts, on a catalog of 1,000,000 rows, beside the sqlite3
// shell running the same statements (with the engine's own `%` for the
// dialect's `*`) on the same file. Ours is the whole command as the tab runs
// it, in process: the statement, every found row read, each found file looked
// for on disk. The shell is a whole process, its rows written to /dev/null.
// Prints the best of five runs of each and the ratio ours / sqlite3.
//
// Usage: search_bench [PRISTINE_CATALOG [CACHE_DIR]]
//   (defaults: build/data/qd.mdb, /tmp/quilldex_search_bench)
// The large catalog is made once in CACHE_DIR and kept for later runs.

#include "bench_catalog.h"
#include "bench_support.h"
#include "catalog/audit.h"
#include "catalog/search.h"
#include "core/item_list.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>

#include <sqlite3.h>

#include <algorithm>
#include <cstdio>
#include <functional>

namespace {

constexpr int kRows = 1000000;

// Keeps the last message, which tells how many rows a search found.
class SilentDialogs : public bench::PrintingDialogs {
public:
    Answer message(const QString& text, Buttons, Icon) override {
        last = text;
        return Answer::Ok;
    }
    QString last;
};

// Paths of 10,000 directories of 100 photographs; every hundredth row has no
// title, every tenth no description, catalogs of four names.
bool make_catalog(const QString& pristine, const QString& path) {
    if (QFile::exists(path)) {
        return true;
    }
    const QString part = path + QStringLiteral(".part");
    QFile::remove(part);
    if (!QFile::copy(pristine, part)) {
        return false;
    }
    QFile(part).setPermissions(QFile(part).permissions() | QFileDevice::WriteOwner);
    sqlite3* db = nullptr;
    if (sqlite3_open(QFile::encodeName(part).constData(), &db) != SQLITE_OK) {
        return false;
    }
    sqlite3_exec(db, "pragma synchronous=off; begin", nullptr, nullptr, nullptr);
    sqlite3_stmt* add = nullptr;
    sqlite3_prepare_v2(db,
                       "insert into filenames (filename, title, description, catalog) "
                       "values (?, ?, ?, ?)",
                       -1, &add, nullptr);
    const char* catalogs[] = {"Holidays", "Family", "Garden", nullptr};
    for (int i = 0; i < kRows; ++i) {
        const QByteArray file = QStringLiteral("/home/user/photos/%1/img_%2.jpg")
                                    .arg(i / 100, 4, 10, QChar(u'0'))
                                    .arg(i, 7, 10, QChar(u'0'))
                                    .toUtf8();
        const QByteArray title = QStringLiteral("Photo number %1").arg(i).toUtf8();
        const QByteArray text = QStringLiteral("Taken on day %1 of the trip, near the old harbour.")
                                    .arg(i % 365)
                                    .toUtf8();
        sqlite3_bind_text(add, 1, file.constData(), -1, SQLITE_TRANSIENT);
        if (i % 100 == 7) {
            sqlite3_bind_null(add, 2);
        } else {
            sqlite3_bind_text(add, 2, title.constData(), -1, SQLITE_TRANSIENT);
        }
        if (i % 10 == 3) {
            sqlite3_bind_null(add, 3);
        } else {
            sqlite3_bind_text(add, 3, text.constData(), -1, SQLITE_TRANSIENT);
        }
        const char* catalog = catalogs[i % 4];
        if (catalog) {
            sqlite3_bind_text(add, 4, catalog, -1, SQLITE_STATIC);
        } else {
            sqlite3_bind_null(add, 4);
        }
        sqlite3_step(add);
        sqlite3_reset(add);
    }
    sqlite3_finalize(add);
    const bool ok = sqlite3_exec(db, "commit", nullptr, nullptr, nullptr) == SQLITE_OK;
    sqlite3_close(db);
    return ok && QFile::rename(part, path);
}

double best_of_five(const std::function<void()>& run) {
    double best = 1e9;
    for (int i = 0; i < 5; ++i) {
        QElapsedTimer t;
        t.start();
        run();
        best = std::min(best, static_cast<double>(t.nsecsElapsed()) / 1e9);
    }
    return best;
}

// The sqlite3 shell over the same file, as one process.
double shell_seconds(const QString& catalog, const QString& statement) {
    return best_of_five([&] {
        QProcess p;
        p.setStandardOutputFile(QProcess::nullDevice());
        p.start(QStringLiteral("sqlite3"), {catalog, statement});
        p.waitForFinished(-1);
    });
}

void report(const char* what, double ours, double shell, double target) {
    std::printf("%-28s ours %7.3f s   sqlite3 %7.3f s   ratio %5.2f   %s\n", what, ours, shell,
                ours / shell,
                ours < target && ours <= 1.5 * shell ? "target met" : "target NOT met");
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const QString pristine =
        argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("build/data/qd.mdb");
    const QString cache =
        argc > 2 ? QString::fromLocal8Bit(argv[2]) : QStringLiteral("/tmp/quilldex_search_bench");
    QDir().mkpath(cache);
    const QString catalog = cache + QStringLiteral("/qd.mdb");
    if (!make_catalog(pristine, catalog)) {
        std::fprintf(stderr, "cannot make %s from %s\n", qPrintable(catalog), qPrintable(pristine));
        return 1;
    }
    bench::CatalogSession<SilentDialogs> session;
    if (!session.open(cache, catalog)) {
        return 1;
    }
    AppState& app = session.app;
    Context& ctx = session.ctx;
    SilentDialogs& dialogs = session.dialogs;

    ItemList results;
    const double name = best_of_five([&] {
        search_database(ctx, QStringLiteral("Search File Name"), QStringLiteral("img_00042"),
                        results);
    });
    const QString name_found = dialogs.last;
    const double name_shell =
        shell_seconds(catalog, QStringLiteral("select * from filenames where filename like "
                                              "'%img_00042%'"));
    const double blank = best_of_five(
        [&] { search_database(ctx, QStringLiteral("Search Blank Titles"), QString(), results); });
    const QString blank_found = dialogs.last;
    const double blank_shell =
        shell_seconds(catalog, QStringLiteral("select * from filenames where title is null"));
    QList<QPair<QString, QString>> counts;
    const double audit = best_of_five([&] { counts = audit_counts(ctx); });
    const double audit_shell = shell_seconds(
        catalog,
        QStringLiteral("select count(filename) as fcount from filenames;"
                       "select count(filename) as fcount from filenames where title is null;"
                       "select count(filename) as fcount from filenames where description is null;"
                       "select count(filename) as fcount from filenames where catalog is null;"
                       "select count(filename) as fcount from filenames where keywords is null;"));

    std::printf("catalog rows                 %d (%s)\n", kRows, qPrintable(catalog));
    report("Search File Name", name, name_shell, 0.3);
    std::printf("  \"img_00042\": %s\n", qPrintable(QString(name_found).replace(u'\n', u' ')));
    report("Search Blank Titles", blank, blank_shell, 0.3);
    std::printf("  %s\n", qPrintable(QString(blank_found).replace(u'\n', u' ')));
    report("Audit counts (five)", audit, audit_shell, 1.0);
    for (const auto& [label, number] : counts) {
        std::printf("  %s: %s\n", qPrintable(label), qPrintable(number));
    }
    return 0;
}
