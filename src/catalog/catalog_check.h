#pragma once

#include "core/context.h"

#include <QString>

// Finding, checking and replacing the catalog database.

// Opens `path` as the one database when it names an existing file; any
// failure leaves the former database in place.
void open_database(AppState& app, const QString& path);

// Opens `path` and tells whether it is the correct database: its `version`
// table has a row whose `name`, lower-cased, occurs in the lower-cased
// application title. The check runs on whatever database is open after the
// attempt. Throws DbError when the database cannot be read.
bool is_correct_database(AppState& app, const QString& path);

// At start, inside the reading of the settings: the `Current`/`Database` key
// (or the application's own qd.mdb), checked; a refused or missing file asks
// for another through select_database(). Errors show their own text and
// empty the path. Leaves the result in `app.database_path`.
void find_database_at_start(Context& ctx);

// What select_database() did, for the Options dialog's label.
enum class DatabaseChoice {
    NotChosen,  // cancelled, or a name without "mdb": the message, nothing else changed
    Accepted,   // the path is the database now
    Refused,    // the file was opened and judged not correct: the path is ""
};

// The "Select Database" dialog and the check of the chosen file. Errors
// while checking are not caught here.
DatabaseChoice select_database(Context& ctx);
