// The catalog on both engines side by side: 1,000,000 catalogued files in a
// catalog file and the same rows copied to a server catalog; on each, the
// substring searches and the audit counts, best of three. Then two programs at
// once on each engine, one updating titles row by row through the catalog's
// lookup-then-edit, one searching all the while; afterwards every update the
// updater reported done must be in the catalog (lost updates: 0).
// bench/server_catalog.sh starts a private server and runs this.
// Usage: server_catalog_bench PRISTINE_CATALOG URL [ROWS]
//        server_catalog_bench --update LOCATION COUNT ROWS | --search LOCATION STOP_FILE

#include "catalog/catalog_copy.h"
#include "catalog/database.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QSqlQuery>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>

namespace {

QString path_of(int i) {
    return QStringLiteral("/bench/d%1/img%2.jpg").arg(i / 1000).arg(i);
}

bool fill(Database& db, int rows) {
    QSqlDatabase c = db.connection();
    c.transaction();
    QSqlQuery q(c);
    q.prepare(QStringLiteral(
        "insert into filenames (filename, title, description, catalog) values (?,?,?,?)"));
    for (int i = 0; i < rows; ++i) {
        q.bindValue(0, path_of(i));
        q.bindValue(1, i % 7 ? QVariant(QStringLiteral("Title %1").arg(i)) : QVariant());
        q.bindValue(2, i % 5 ? QVariant(QStringLiteral("A picture")) : QVariant());
        q.bindValue(3, QStringLiteral("Cat%1").arg(i % 50));
        if (!q.exec()) {
            return false;
        }
    }
    return c.commit();
}

int rows_of(Database& db, const Sql& sql) {
    Recordset rs;
    rs.open(db, sql);
    if (rs.record_count() == 0) {
        return 0;
    }
    rs.move_last();
    return rs.record_count();
}

// Seconds for the best of three runs of `work`.
template <typename F>
double best_of_three(F&& work) {
    double best = 1e9;
    for (int i = 0; i < 3; ++i) {
        QElapsedTimer t;
        t.start();
        work();
        best = std::min(best, t.nsecsElapsed() / 1e9);
    }
    return best;
}

const char* kSearch = "select * from filenames where title like '*%1*'";
const char* kCounts[] = {
    "select count(filename) as fcount from filenames",
    "select count(filename) as fcount from filenames where title is null",
    "select count(filename) as fcount from filenames where description is null",
    "select count(filename) as fcount from filenames where catalog is null",
    "select count(filename) as fcount from filenames where keywords is null",
};

int run_updater(const QString& location, int count, int rows) {
    Database db;
    if (!db.open(location)) {
        return 2;
    }
    int done = 0;
    int failed = 0;
    for (int i = 0; i < count; ++i) {
        try {
            Recordset rs;
            rs.open(db, Sql(QStringLiteral("select * from filenames where filename='%1'"))
                            .arg(path_of(i * 13 % rows)));
            rs.edit();
            rs.set_field(QStringLiteral("title"), QStringLiteral("updated %1").arg(i));
            rs.update();
            ++done;
        } catch (const RunError&) {
            ++failed;
        }
    }
    std::printf("%d %d\n", done, failed);
    return 0;
}

int run_searcher(const QString& location, const QString& stop) {
    Database db;
    if (!db.open(location)) {
        return 2;
    }
    int searches = 0;
    int failed = 0;
    while (!QFile::exists(stop)) {
        try {
            rows_of(db, Sql(QString::fromLatin1(kSearch)).arg(QStringLiteral("updated 1")));
            ++searches;
        } catch (const RunError&) {
            ++failed;
        }
    }
    std::printf("%d %d\n", searches, failed);
    return 0;
}

struct Engine {
    const char* name;
    QString location;
};

void concurrent(const Engine& e, const QString& self, const QString& dir, int rows) {
    constexpr int kUpdates = 2000;
    const QString stop = dir + QStringLiteral("/stop-") + QString::fromLatin1(e.name);
    QProcess searcher;
    searcher.start(self, {QStringLiteral("--search"), e.location, stop});
    searcher.waitForStarted();
    QProcess updater;
    QElapsedTimer t;
    t.start();
    updater.start(self, {QStringLiteral("--update"), e.location, QString::number(kUpdates),
                         QString::number(rows)});
    updater.waitForFinished(-1);
    const double seconds = t.nsecsElapsed() / 1e9;
    QFile(stop).open(QIODevice::WriteOnly);
    searcher.waitForFinished(-1);
    const QStringList up = QString::fromLatin1(updater.readAll()).split(u' ');
    const QStringList se = QString::fromLatin1(searcher.readAll()).split(u' ');
    Database db;
    db.open(e.location);
    Recordset rs;
    rs.open(db,
            Sql(QStringLiteral("select count(filename) as fcount from filenames where title like "
                               "'updated *'")));
    const int present = rs.field(QStringLiteral("fcount")).toInt();
    const int done = up.value(0).toInt();
    std::printf(
        "%-8s %6d updates in %6.2f s (%6.0f/s), %d refused; %5d searches meanwhile, %d "
        "refused; rows updated in the catalog %d, lost updates %d\n",
        e.name, done, seconds, done / seconds, up.value(1).trimmed().toInt(), se.value(0).toInt(),
        se.value(1).trimmed().toInt(), present, std::max(0, done - present));
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() == 5 && args.at(1) == QLatin1String("--update")) {
        return run_updater(args.at(2), args.at(3).toInt(), args.at(4).toInt());
    }
    if (args.size() == 4 && args.at(1) == QLatin1String("--search")) {
        return run_searcher(args.at(2), args.at(3));
    }
    if (args.size() < 3) {
        std::fprintf(stderr, "usage: server_catalog_bench PRISTINE_CATALOG URL [ROWS]\n");
        return 2;
    }
    const int rows = args.size() > 3 ? args.at(3).toInt() : 1000000;
    QTemporaryDir dir;
    const QString file = dir.path() + QStringLiteral("/qd.mdb");
    QFile::copy(args.at(1), file);
    QFile(file).setPermissions(QFile(file).permissions() | QFileDevice::WriteOwner);
    QElapsedTimer t;
    t.start();
    {
        Database db;
        if (!db.open(file) || !fill(db, rows)) {
            std::fprintf(stderr, "cannot fill the catalog file\n");
            return 1;
        }
    }
    std::printf("%d rows written to the catalog file in %.1f s\n", rows, t.nsecsElapsed() / 1e9);
    t.start();
    try {
        copy_catalog(file, args.at(2), true);
    } catch (const RunError& e) {
        std::fprintf(stderr, "%s\n", qPrintable(e.text()));
        return 1;
    }
    std::printf("catalog-copy to the server in %.1f s\n", t.nsecsElapsed() / 1e9);

    const Engine engines[] = {{"file", file}, {"server", args.at(2)}};
    std::printf("\n%-34s %12s %12s %8s\n", "", "file (s)", "server (s)", "ratio");
    const struct {
        const char* label;
        QString value;
    } searches[] = {
        {"search title '*Title 12345*'", QStringLiteral("Title 12345")},
        {"search title '*nothing*'", QStringLiteral("nothing")},
    };
    double times[2];
    for (const auto& s : searches) {
        int hits[2] = {0, 0};
        for (int k = 0; k < 2; ++k) {
            Database db;
            db.open(engines[k].location);
            times[k] = best_of_three(
                [&] { hits[k] = rows_of(db, Sql(QString::fromLatin1(kSearch)).arg(s.value)); });
        }
        std::printf("%-34s %12.3f %12.3f %8.2f   (%d / %d rows)\n", s.label, times[0], times[1],
                    times[1] / times[0], hits[0], hits[1]);
    }
    int counts[2][5] = {};
    for (int k = 0; k < 2; ++k) {
        Database db;
        db.open(engines[k].location);
        times[k] = best_of_three([&] {
            for (int c = 0; c < 5; ++c) {
                Recordset rs;
                rs.open(db, Sql(QString::fromLatin1(kCounts[c])));
                counts[k][c] = rs.field(QStringLiteral("fcount")).toInt();
            }
        });
    }
    std::printf("%-34s %12.3f %12.3f %8.2f   (%d %d %d %d %d / same: %s)\n", "audit counts (five)",
                times[0], times[1], times[1] / times[0], counts[0][0], counts[0][1], counts[0][2],
                counts[0][3], counts[0][4],
                std::equal(counts[0], counts[0] + 5, counts[1]) ? "yes" : "NO");

    std::printf("\nTwo programs at once, one updating, one searching:\n");
    for (const Engine& e : engines) {
        concurrent(e, app.applicationFilePath(), dir.path(), rows);
    }
    return 0;
}
