#pragma once

#include "core/context.h"

#include <QStringList>

#include <functional>
#include <optional>

// The values the settings file carries from one run to the next: read at
// start, written at exit (`readwriteini`). Keys that a control writes the
// moment it changes are written by that control, not here.

// Logs "readwriteini" with `second` when the log is on; a failure is ignored.
void log_settings_step(AppState& app, const QString& second);

// Reading, from the maximum CD size on: the database is found and checked by
// `find_database`, which the caller passes (none for a command that uses no
// catalog), then the thumbnail values, colours, help file, directories and
// the rest go into the application state. The window fills its controls from
// the file (the Resize tab, the thumbnail colour, the target directory) before.
void read_settings(Context& ctx, const std::function<void(Context&)>& find_database = {});

// The main window's place in twips, written only when its state is normal.
struct WindowPlacement {
    int top = 0;
    int left = 0;
    int height = 0;
    int width = 0;
};

// Writing, in the order of the file's keys; the monitor table comes from the
// two lists of the Monitor tab, and is written only when `monitor_table_loaded`
// says that the tab filled them from the file in this run.
void write_settings(AppState& app, const QStringList& monitor_directories,
                    const QStringList& monitor_file_types,
                    const std::optional<WindowPlacement>& window, bool monitor_table_loaded = true);
