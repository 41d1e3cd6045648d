#pragma once

#include "core/context.h"
#include "core/item_list.h"

#include <QString>
#include <QStringList>

// Passing the rows of a tab's list (the Load tab's gathered files, the Scan
// tab's scans) to the main list, and the small list commands around it.

// Which rows take part: the option group "Use entire list" (0) / "Use
// selected files" (1); -1 when neither option is on.
enum class UpdateListOption { None = -1, EntireList = 0, SelectedFiles = 1 };

// Passes `source` to `main_list`. Does nothing for an empty source. A main
// list with rows asks first (replace or append, by `append`); anything but
// Yes ends the command. Then an option group with neither option on turns
// on "Use entire list" (written back to `option`). The whole list is added
// without a test for duplicates; selected rows are added only when no main
// list row is equal to them, case counting. Returns true when the main list
// was changed (the caller then refreshes the Main tab's caption and fields).
bool pass_to_main_list(Context& ctx, const ItemList& source, ItemList& main_list, bool append,
                       UpdateListOption& option);

// "Search File List": asks for a text and makes the first row that holds it,
// ignoring case, selected and current; other selected rows stay selected.
// Returns the row found, -1 when the answer is empty or nothing holds it.
int search_file_list(Context& ctx, ItemList& list);
