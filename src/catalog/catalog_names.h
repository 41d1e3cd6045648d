#pragma once

#include "core/context.h"

#include <QString>
#include <QStringList>

// The catalog names: the rows of the `catalog` table, by which files are
// grouped. The lists that offer them are refilled from `catalog_names`.

// The names as the lists show them: duplicate rows fold into one entry.
// Uses the shared recordset and closes it.
QStringList catalog_names(Context& ctx);

// Adds `name` to the table unless a row of that name is there already. Every
// failure is passed over; returns true only when the row was added without
// one, which is when the Catalogs tab appends the name to its list.
bool add_catalog_name(Context& ctx, const QString& name);

// Adds a row named `added` to the table when a lookup of `looked_up` finds
// none, through the shared recordset. The two names differ where a command
// deliberately looks up one box and adds another's text. Every failing
// statement is passed over.
void add_catalog_unless_found(Context& ctx, const QString& looked_up, const QString& added);

// Asks whether to delete `name`; on Yes deletes its rows from the table and
// clears the catalog of every file that used it. An empty name asks nothing.
// Returns true when the statements ran. A failing statement (a name with an
// apostrophe) throws: nothing passes it over.
bool delete_catalog_name(Context& ctx, const QString& name);
