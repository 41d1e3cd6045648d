#pragma once

#include "core/context.h"

#include <QString>
#include <QStringList>

class ItemList;

// Finding catalogued files: the seven kinds of the Search tab, and what the
// tab does with what it found. Nothing here changes a row of the catalog.

// The kinds, in the order the tab lists them; a kind is known by its text.
const QStringList& search_kinds();
// "Search File Name", the kind every entry of the tab starts from.
constexpr int kDefaultSearchKind = 6;

// "Database Record Count:  " and the number of catalogued files. Uses the
// shared recordset and closes it; a failure is not caught.
QString record_count_caption(Context& ctx);

// "Search Now". Refuses a statement holding "**", says "No files found." and
// keeps `results` as it was when no row matches; otherwise fills `results`
// with the found files that exist (trimmed), reports those that do not, and
// returns true, when the tab shows "File Count: " + results.count(). A value
// with an apostrophe, a kind the tab does not list and a row without a file
// name are not caught (DbError, RunError).
bool search_database(Context& ctx, const QString& kind, const QString& value, ItemList& results);

// "Update Main List": after a question when the main list holds rows,
// replaces it with the found files that still exist, only the selected ones
// when `selected_only`. Returns true when the main list was replaced, which is
// when the Main tab's detail fields are emptied.
bool search_to_main_list(Context& ctx, const ItemList& results, bool selected_only);

// "Copy Files": copies the found files (the selected ones when
// `selected_only`) into a directory the user chooses, asking before it
// replaces a file; a file already in that directory is passed over. Every
// failure is passed over.
void copy_found_files(Context& ctx, const ItemList& results, bool selected_only);
