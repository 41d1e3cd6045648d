#include "catalog/catalog_copy.h"

#include "catalog/catalog_schema.h"
#include "catalog/database.h"
#include "core/catalog_location.h"
#include "core/file_helpers.h"

#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>

#include <atomic>

namespace {

// Rows sent to the target in one statement: a server answers each statement
// over the network, so rows travel in groups.
constexpr int kRowsPerInsert = 100;

std::atomic<int> new_file_counter{0};

QString failure(const QSqlError& e) {
    return e.databaseText().isEmpty() ? e.text() : e.databaseText().trimmed();
}

void open_catalog(Database& db, const QString& location, bool must_exist) {
    if (!is_server_catalog(location) && must_exist && !file_exists_at(location)) {
        throw RunError(QStringLiteral("The catalog %1 does not exist.").arg(location));
    }
    if (!db.open(location)) {
        throw RunError(QStringLiteral("The catalog %1 cannot be opened: %2")
                           .arg(location_without_password(location), db.open_error()));
    }
}

// Makes a new catalog file with the catalog's tables.
void create_catalog_file(const QString& path) {
    const QString name = QStringLiteral("catalog-new-%1").arg(++new_file_counter);
    QString why;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(path);
        if (!db.open()) {
            why = db.lastError().text();
        } else {
            try {
                create_catalog_schema(db, false);
            } catch (const RunError& e) {
                why = e.text();
            }
            db.close();
        }
    }
    QSqlDatabase::removeDatabase(name);
    if (!why.isEmpty()) {
        QFile::remove(path);
        throw RunError(QStringLiteral("The catalog %1 cannot be made: %2").arg(path, why));
    }
}

qint64 count_rows(QSqlDatabase db, const QString& table) {
    QSqlQuery q(db);
    if (!q.exec(QStringLiteral("select count(*) from \"%1\"").arg(table)) || !q.next()) {
        throw RunError(failure(q.lastError()));
    }
    return q.value(0).toLongLong();
}

// Sends the rows of one table; returns how many.
qint64 copy_table(QSqlDatabase from, bool from_server, QSqlDatabase to, const QString& table) {
    QSqlQuery read(from);
    read.setForwardOnly(true);
    // In the order the rows were made, as far as the engine keeps it.
    if (!read.exec(
            QStringLiteral("select * from \"%1\" order by %2")
                .arg(table, from_server ? QStringLiteral("ctid") : QStringLiteral("_rowid_")))) {
        throw RunError(failure(read.lastError()));
    }
    const QSqlRecord rec = read.record();
    QStringList cols;
    for (int i = 0; i < rec.count(); ++i) {
        cols << QStringLiteral("\"%1\"").arg(rec.fieldName(i));
    }
    const QString head =
        QStringLiteral("insert into \"%1\" (%2) values ").arg(table, cols.join(u','));
    const QString one_row = u'(' + QStringLiteral("?,").repeated(cols.size()).chopped(1) + u')';
    QSqlQuery full(to);
    if (!full.prepare(head + (one_row + u',').repeated(kRowsPerInsert).chopped(1))) {
        throw RunError(failure(full.lastError()));
    }
    QVariantList pending;
    qint64 copied = 0;
    auto send = [&](QSqlQuery& q) {
        for (int i = 0; i < pending.size(); ++i) {
            q.bindValue(i, pending.at(i));
        }
        if (!q.exec()) {
            throw RunError(QStringLiteral("%1: %2").arg(table, failure(q.lastError())));
        }
        pending.clear();
    };
    while (read.next()) {
        for (int i = 0; i < cols.size(); ++i) {
            pending << read.value(i);
        }
        ++copied;
        if (copied % kRowsPerInsert == 0) {
            send(full);
        }
    }
    if (!pending.isEmpty()) {
        QSqlQuery rest(to);
        const int rows = static_cast<int>(pending.size() / cols.size());
        if (!rest.prepare(head + (one_row + u',').repeated(rows).chopped(1))) {
            throw RunError(failure(rest.lastError()));
        }
        send(rest);
    }
    return copied;
}

}  // namespace

QStringList copy_catalog(const QString& from, const QString& to, bool replace) {
    Database source;
    open_catalog(source, from, true);
    const bool new_file = !is_server_catalog(to) && !QFileInfo::exists(to);
    if (new_file) {
        create_catalog_file(to);
    }
    Database target;
    open_catalog(target, to, true);
    QSqlDatabase dst = target.connection();
    const QString shown = location_without_password(to);
    if (!dst.tables().contains(QStringLiteral("filenames"))) {
        try {
            create_catalog_schema(dst, target.is_server());
        } catch (const RunError& e) {
            throw RunError(
                QStringLiteral("The catalog %1 cannot be made: %2").arg(shown, e.text()));
        }
    }
    // The version row comes with every catalog; the other tables are the
    // user's work.
    qint64 held = 0;
    for (const QString& table : kCatalogTables.mid(1)) {
        held += count_rows(dst, table);
    }
    if (held > 0 && !replace) {
        throw RunError(QStringLiteral("The catalog %1 already holds %2 rows; give --replace to "
                                      "write over them.")
                           .arg(shown)
                           .arg(held));
    }
    if (!dst.transaction()) {
        throw RunError(failure(dst.lastError()));
    }
    QStringList lines;
    try {
        QSqlQuery clear(dst);
        for (const QString& table : kCatalogTables) {
            if (!clear.exec(QStringLiteral("delete from \"%1\"").arg(table))) {
                throw RunError(failure(clear.lastError()));
            }
        }
        for (const QString& table : kCatalogTables) {
            const qint64 n = copy_table(source.connection(), source.is_server(), dst, table);
            lines << QStringLiteral("%1: %2 rows").arg(table).arg(n);
        }
        if (!dst.commit()) {
            throw RunError(failure(dst.lastError()));
        }
    } catch (...) {
        dst.rollback();
        throw;
    }
    return lines;
}
