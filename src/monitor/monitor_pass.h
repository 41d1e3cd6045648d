#pragma once

#include "core/context.h"

#include <QString>
#include <QStringList>

// Starting and stopping the monitor, and the pass that its timer runs, apart
// from the Monitor tab's widgets: the tab reads its controls into
// MonitorControls and writes the results back.

// What the Monitor tab's controls hold when the button or the timer reads them.
struct MonitorControls {
    QString interval;  // text of o_monitor_interval, in ticks of the timer
    QStringList directories;
    QStringList file_types;
    bool save_in_db = false;
};

enum class MonitorSwitch { None, Start, Stop };

struct MonitorScan {
    // The interval's text as the button rewrites it: its numeric value.
    QString interval;
    MonitorSwitch action = MonitorSwitch::None;
};

// The click of b_monitor_scan: its checks, with their messages, run for
// stopping as well as for starting. `caption` is the button's, which alone
// tells whether monitoring is on.
MonitorScan monitor_scan_click(Dialogs& dialogs, const QString& copy_directory,
                               const QString& interval, bool has_directories,
                               const QString& caption);

// Starts or stops the timer as the button's click asked; the caller sets the
// button's caption and colour.
void switch_monitor(MonitorTimer& timer, MonitorSwitch action);

// One event of t_monitor: counts the tick, and when the interval is reached
// runs a pass over the rows and starts the count again. A tick that comes
// while a pass waits on its box starts no pass. Returns true when it ran one.
bool monitor_tick(Context& ctx, const MonitorControls& controls);

// The box that tells of one moved file; with the failure flag set and no
// database option, the pass's previous text, which it shows again.
QString monitor_move_text(bool failed, bool save_in_db, const QString& source,
                          const QString& destination, const QString& previous);
