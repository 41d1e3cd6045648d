#pragma once

#include "core/context.h"
#include "core/item_list.h"

#include <QString>

// Entering the files of a tab's list into the catalog under one catalog name
// (the "Database" button of the Load and Scan tabs). It only adds: a file
// that has a row already keeps it as it is.
struct UpdateStatistics {
    int total_files = 0;   // rows of the list, also when only selected rows took part
    int files_added = 0;   // rows added without a failure
    int files_failed = 0;  // files whose statements failed, each counted once
};

// Runs the update over `list`: every row when `use_entire_list`, otherwise
// the selected rows. A path of exactly 200 characters is passed over on
// purpose. A failing statement counts its file once as failed and the next
// statement runs. Shows "Processing " + path in the status bar for each row
// of the entire list; gives the message loop a turn for every row.
UpdateStatistics update_database_from_list(Context& ctx, const ItemList& list,
                                           const QString& catalog, bool use_entire_list);

// The text of the statistics message, one line ended by LF each.
QString update_statistics_message(const UpdateStatistics& stats);

// The whole command: the update, then the statistics in an information box.
// The caller refills the catalog lists afterwards.
UpdateStatistics run_update_database(Context& ctx, const ItemList& list, const QString& catalog,
                                     bool use_entire_list);
