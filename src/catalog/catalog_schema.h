#pragma once

#include <QSqlDatabase>
#include <QStringList>

// The tables of a catalog, made from the same definition as the delivered
// catalog: the unique file name, the field lengths and the names of the rules
// that refuse a value, and the `version` row.

// The statements, for the file engine or for the server. The server's
// case-blind columns use a collation of its own that ignores case.
QStringList catalog_schema_statements(bool server);

// Makes the tables in an empty catalog, all or nothing. Throws DbError.
void create_catalog_schema(QSqlDatabase db, bool server);

// The tables a catalog holds, and those of them whose rows are the user's.
extern const QStringList kCatalogTables;
