#pragma once

#include "core/context.h"
#include "core/item_list.h"

#include <QString>
#include <QStringList>

#include <optional>

// What the user wrote about one file: its row of `filenames` as the Main tab
// shows it.
struct FileFields {
    QString title;
    QString description;
    QString catalog;
};

// The row of `path` through a recordset of its own. No row gives empty
// fields; a lookup that fails (a path with an apostrophe) gives nothing, and
// the fields shown keep the former file's values. Every failure is passed over.
std::optional<FileFields> load_file_fields(Context& ctx, const QString& path);

// Writes the fields for `selected_file`, adding its row when there is none.
// A catalog name is added first when `fields.catalog` isn't empty and no row
// of `catalog` carries `load_catalog`, the text of the Load tab's catalog box:
// the lookup deliberately reads that box while what it adds is the Main tab's
// name. Every failing statement is passed over.
void save_file_fields(Context& ctx, const QString& selected_file, const FileFields& fields,
                      const QString& load_catalog);

// Removes row `row` (a double click) and returns the row to select next, -1
// when the list is now empty.
int remove_main_row(ItemList& list, int row);

// Swaps the current row with the one above and moves the selection with it.
// With no current row nothing happens.
void move_row_up(ItemList& list);
// Swaps the current row with the one below and moves the selection with it.
// The test is on the count alone: with no current row and rows in the list it
// asks for row -1, which throws RunError.
void move_row_down(ItemList& list);

// The key of the date sort: the file's last-modified local time as
// "yyyy/mm/dd hh:mm:ss-". Throws RunError ("File not found") for a path that
// is no file.
QString date_sort_key(const QString& path);

// Sorts the list by name, ignoring case (equal names keep their order), and
// returns the rows of the scratch list. The message loop gets a turn at each
// row.
QStringList sort_by_name(Context& ctx, ItemList& list);
// Sorts the list by last-modified time, oldest first, equal times in the
// order of their paths; a file deleted meanwhile drops out. A file that
// cannot be found stops the sort before the list changes (RunError). Returns
// the rows of the scratch list (key + path).
QStringList sort_by_date(Context& ctx, ItemList& list);
