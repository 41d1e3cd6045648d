#pragma once

// The reference for entering paths into a catalog: SQLite's C interface doing
// what the "Database" command does for each path (a prepared lookup, an
// insert when there is no row) with the journal settings the catalog layer
// uses: a rollback journal, commits that wait for the disk, and one commit for
// each fifth of a second of rows plus one at the end.

#include <QElapsedTimer>
#include <QFile>
#include <QStringList>

#include <sqlite3.h>

namespace bench {

// Enters `paths` into the catalog at `path` under `catalog`; returns the
// seconds taken, or a negative number when the file cannot be opened.
inline double sqlite_add(const QString& path, const QStringList& paths, const char* catalog) {
    sqlite3* db = nullptr;
    if (sqlite3_open(QFile::encodeName(path).constData(), &db) != SQLITE_OK) {
        sqlite3_close(db);
        return -1;
    }
    QElapsedTimer t;
    t.start();
    sqlite3_exec(db, "pragma synchronous=full; pragma cache_size=-16384", nullptr, nullptr,
                 nullptr);
    sqlite3_stmt* find = nullptr;
    sqlite3_stmt* add = nullptr;
    sqlite3_prepare_v2(db, "select _rowid_, * from filenames where filename=?", -1, &find, nullptr);
    sqlite3_prepare_v2(db, "insert into filenames (filename, catalog) values (?, ?)", -1, &add,
                       nullptr);
    sqlite3_exec(db, "begin immediate", nullptr, nullptr, nullptr);
    QElapsedTimer batch;
    batch.start();
    for (const QString& p : paths) {
        if (batch.elapsed() >= 200) {
            sqlite3_exec(db, "commit; begin immediate", nullptr, nullptr, nullptr);
            batch.start();
        }
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
            sqlite3_bind_text(add, 2, catalog, -1, SQLITE_STATIC);
            sqlite3_step(add);
            sqlite3_reset(add);
        }
    }
    sqlite3_exec(db, "commit", nullptr, nullptr, nullptr);
    sqlite3_finalize(find);
    sqlite3_finalize(add);
    sqlite3_close(db);
    return static_cast<double>(t.nsecsElapsed()) / 1e9;
}

}  // namespace bench
