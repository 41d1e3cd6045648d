#pragma once

#include "core/context.h"
#include "core/dialogs.h"

#include <QString>

// The commands of the Options dialog and of the directory chooser, apart
// from their widgets.

// What the Options dialog shows when it opens; an empty key gives "".
struct SetupValues {
    QString database;
    QString file_copy_directory;
    QString preview_image;
};
SetupValues read_setup_values(AppState& app);

// The directory chooser as every "Select Directory" button uses it: opened at
// the last directory. Cancel sets directory_chooser_cancelled (only the copy
// of found files clears it). Gives the path the chooser showed when it closed,
// which after Cancel is the one it opened at unless the user moved.
QString choose_directory(Context& ctx);

// "File Copy Directory": the shared thumbnail directory takes the last
// directory, the chooser runs, and its path becomes the last directory and
// Current/File Copy Directory. The path is returned for the dialog's label.
// Cancel changes nothing in the chooser, so the former last directory is
// what gets stored.
QString choose_file_copy_directory(Context& ctx);

// "Make New Directory" under `path`: asks for a name, confirms the whole new
// path and makes it (a failure is ignored). Gives the new path after Yes, ""
// when nothing was asked for or the answer was No.
QString make_new_directory(Dialogs& dialogs, const QString& path);
