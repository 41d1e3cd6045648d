#include "catalog/catalog_schema.h"

#include "catalog/catalog_schema_sql.h"
#include "catalog/database.h"

#include <QRegularExpression>
#include <QSqlError>
#include <QSqlQuery>

const QStringList kCatalogTables = {QStringLiteral("version"), QStringLiteral("catalog"),
                                    QStringLiteral("template"), QStringLiteral("filenames")};

QStringList catalog_schema_statements(bool server) {
    QString text;
    for (const QString& line : QString::fromUtf8(kCatalogSchemaSql).split(u'\n')) {
        const QString t = line.trimmed();
        // Comments, and the delivered catalog's own rows, read by the shell.
        if (!t.startsWith(QLatin1String("--")) && !t.startsWith(u'.')) {
            text += line + u'\n';
        }
    }
    QStringList out;
    if (server) {
        out << QStringLiteral(
            "create collation if not exists qd_nocase "
            "(provider = icu, locale = 'und-u-ks-level2', deterministic = false)");
    }
    static const QRegularExpression nocase(QStringLiteral("\\bcollate\\s+nocase\\b"),
                                           QRegularExpression::CaseInsensitiveOption);
    for (QString statement : text.split(u';')) {
        statement = statement.trimmed();
        if (statement.isEmpty()) {
            continue;
        }
        if (statement.startsWith(QLatin1String("pragma"), Qt::CaseInsensitive)) {
            // Page size and journal are the file's; the server has its own.
            if (!server) {
                out << statement;
            }
            continue;
        }
        if (server) {
            statement.replace(nocase, QStringLiteral("collate qd_nocase"));
        }
        out << statement;
    }
    return out;
}

void create_catalog_schema(QSqlDatabase db, bool server) {
    const QStringList statements = catalog_schema_statements(server);
    QSqlQuery q(db);
    // The page size takes effect only before the first table.
    for (const QString& s : statements) {
        if (s.startsWith(QLatin1String("pragma"), Qt::CaseInsensitive) && !q.exec(s)) {
            throw DbError(q.lastError().text());
        }
    }
    if (!db.transaction()) {
        throw DbError(db.lastError().text());
    }
    for (const QString& s : statements) {
        if (!s.startsWith(QLatin1String("pragma"), Qt::CaseInsensitive) && !q.exec(s)) {
            const QString why = q.lastError().text();
            q.finish();
            db.rollback();
            throw DbError(why);
        }
    }
    if (!db.commit()) {
        throw DbError(db.lastError().text());
    }
}
