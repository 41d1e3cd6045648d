#pragma once

#include "core/profile_file.h"

#include <QString>
#include <QStringList>

// The table of monitored directories and their file types, and the settings
// the Monitor tab reads on entry, apart from the tab's widgets.

// The 89 file types the combo box offers, "*.*" first and the rest bare.
const QStringList& monitor_file_types();

// Rows of the two parallel lists: row i of each is one entry.
struct MonitorTable {
    QStringList directories;
    QStringList file_types;
};

// The stored table, key monitor_1 upward of both sections. The first empty
// directory key ends it; so does the first empty type key, after its
// directory has been taken, which leaves the lists one row apart.
MonitorTable read_monitor_table(const ProfileFile& settings);

// What the tab shows on entry besides the table: the combo's text ("" when
// the key is empty, for the first row), the interval and the option.
struct MonitorOptions {
    QString file_type;
    QString interval;
    bool save_in_db = false;
};
MonitorOptions read_monitor_options(const ProfileFile& settings);

// The duplicate test of "Add": false when a row has exactly `path` as its
// directory while the selected type row reads `type`. The type is compared
// with the selected row, not the row of the same index.
bool monitor_row_is_new(const QStringList& directories, const QString& selected_type,
                        const QString& path, const QString& type);

// The question "Delete" asks before removing `directory`.
QString monitor_delete_question(const QString& directory);
