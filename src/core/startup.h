#pragma once

#include "core/context.h"

#include <QString>
#include <QStringList>

// The steps of the start that need no window, in the order the window's
// load runs them, and the choice of the application directory.

// The application directory: QUILLDEX_HOME when set; else the program's own
// directory when it is writable and holds qd.mdb (a portable or build-tree
// run); else the per-user data directory, seeded on first start from the
// installed copy of the catalog and help page. No closing "/".
QString resolve_application_directory(const QString& program_directory);

// Gives the process a private runtime directory when the session names none
// (a start from a service, a container or a remote shell), so that the
// toolkit's start-up does not warn about it on standard error. Call before
// the application object is made.
void use_private_runtime_directory();

// Sets the application directory and the paths and title that follow from it.
void set_application_paths(AppState& app, const QString& app_dir);

// The installer's file: "{ini file removed}" over the line that names the
// settings file, so that a removal leaves the user's settings alone; then the
// current version and path. There is no installer program on this platform.
void update_uninstall_ini(AppState& app);

// The log is on when the whole command line, lower-cased, is "log_messages".
bool command_line_turns_log_on(const QStringList& arguments);

// The switch helper: for "/f" the path behind the switch, up to the next "/",
// when that file exists; for the others the switch when present; else "".
QString command_line_switch(const QString& command_line, const QString& sw);

// The rows of the Load tab's file filter, in order.
QStringList load_file_types();

// Makes `temp` and `slide_shows` beside the application.
void make_application_directories(AppState& app);

// Writes htmlhead.htm and htmlfoot.htm in the application directory when
// each is missing.
void write_page_fragments(AppState& app);
