#include "monitor/monitor_pass.h"

#include "catalog/database.h"
#include "imaging/numeric_text.h"
#include "monitor/monitor_move.h"
#include "core/directory_reader.h"
#include "core/file_helpers.h"
#include "core/options_commands.h"
#include "core/run_error.h"

#include <QFileInfo>

#include <cmath>

namespace {

// The text a number takes when the interval box gets it back.
QString number_text(double v) {
    if (v == std::floor(v) && std::fabs(v) < 1e15) {
        return QString::number(static_cast<qint64>(v));
    }
    return QString::number(v, 'g', 15).toUpper();
}

// Moves o_filelist to `directory`; one that cannot be entered leaves it where it was.
void enter_directory(MonitorTimer& timer, const QString& directory) {
    const QFileInfo info(directory);
    if (directory.isEmpty() || !info.isDir() || !info.isReadable() || !info.isExecutable()) {
        throw RunError(QStringLiteral("Path not found: ") + directory);
    }
    timer.filelist_path = directory;
}

class PassOpen {
public:
    explicit PassOpen(MonitorTimer& t) : t_(t) { t_.pass_open = true; }
    ~PassOpen() { t_.pass_open = false; }
    PassOpen(const PassOpen&) = delete;
    PassOpen& operator=(const PassOpen&) = delete;

private:
    MonitorTimer& t_;
};

// The pass, under one handler: every failure sets the flag and the next
// statement runs.
void run_pass(Context& ctx, const MonitorControls& c) {
    AppState& app = ctx.app;
    MonitorTimer& timer = app.monitor;
    bool failed = false;
    auto resume = [&failed](auto&& step) {
        if (!passed_over(step)) {
            failed = true;
        }
    };
    QString text;
    Progress progress(ctx.ui, static_cast<int>(c.directories.size()));
    for (int row = 0; row < c.directories.size(); ++row) {
        progress.step(row);
        const QString type = c.file_types.value(row);
        resume([&] { enter_directory(timer, c.directories.at(row)); });
        resume([&] {
            app.filelist.set_items(
                timer.filelist_path.isEmpty()
                    ? QStringList()
                    : matching_file_names(timer.filelist_path, QStringLiteral("*.") + type));
        });
        if (app.filelist.empty()) {
            continue;
        }
        if (c.save_in_db) {
            resume([&] {
                app.shared_recordset.open(
                    app.database,
                    Sql(QStringLiteral("select * from filenames where filename='trash'")));
            });
        }
        const QString listed = timer.filelist_path;
        const QStringList names = app.filelist.items();
        for (const QString& name : names) {
            const QString copy_directory = read_setup_values(app).file_copy_directory;
            const QString source = listed + u'/' + name;
            const QString destination = copy_directory + u'/' + name;
            // The copy directory is never moved from, however it is written.
            if (listed.compare(copy_directory, Qt::CaseInsensitive) == 0 ||
                same_directory(listed, copy_directory)) {
                continue;
            }
            failed = false;
            FileStamp copied;
            bool settled = false;
            resume([&] { settled = copy_settled(source, destination, copied); });
            QString verify = destination;
            if (!settled || !file_exists(verify)) {
                // Still being written, or not copied: it waits for the next pass.
                continue;
            }
            if (c.save_in_db) {
                Recordset& rs = app.shared_recordset;
                resume([&] { rs.add_new(); });
                resume([&] { rs.set_field(QStringLiteral("filename"), destination); });
                resume([&] { rs.update(); });
            }
            text = monitor_move_text(failed, c.save_in_db, source, destination, text);
            ctx.dialogs.info(text);
            resume([&] { delete_settled(source, copied, {app.database_path, app.ini_path}); });
        }
        if (c.save_in_db) {
            resume([&] { app.shared_recordset.close(); });
        }
    }
}

}  // namespace

MonitorScan monitor_scan_click(Dialogs& dialogs, const QString& copy_directory,
                               const QString& interval, bool has_directories,
                               const QString& caption) {
    MonitorScan scan;
    bool ok = true;
    QString text;
    if (copy_directory.isEmpty()) {
        ok = false;
        text = QStringLiteral(
            "There must be a directory to copy files when they appear in a monitored "
            "directory.\n\nSelect the directory on the 'Options' tab.");
    }
    scan.interval = interval.isEmpty() ? QStringLiteral("5") : interval;
    scan.interval = number_text(val_of_text(scan.interval));
    if (scan.interval == QLatin1String("0")) {
        ok = false;
        text = QStringLiteral(
            "The interval to monitor directories for files is currently set to zero.  The value "
            "must be greater than 0 to monitor directories for files.\n\nSelect the directory on "
            "the 'Options' tab.");
    }
    if (!ok) {
        dialogs.info(text);
        return scan;
    }
    if (!has_directories) {
        dialogs.info(QStringLiteral("There are no directories to scan."));
        return scan;
    }
    if (val_of_text(scan.interval) <= 0) {
        return scan;
    }
    scan.action = caption == QLatin1String("Monitor") ? MonitorSwitch::Start : MonitorSwitch::Stop;
    return scan;
}

void switch_monitor(MonitorTimer& timer, MonitorSwitch action) {
    if (action == MonitorSwitch::Start) {
        timer.t_monitor.start(timer.period_ms);
        timer.tick_count = 0;
    } else if (action == MonitorSwitch::Stop) {
        timer.t_monitor.stop();
    }
}

bool monitor_tick(Context& ctx, const MonitorControls& controls) {
    MonitorTimer& timer = ctx.app.monitor;
    // A full 16-bit count fails to grow and stays where it is.
    if (timer.tick_count < 32767) {
        ++timer.tick_count;
    }
    if (timer.pass_open) {
        return false;
    }
    if (val_of_text(controls.interval) > timer.tick_count) {
        return false;
    }
    {
        PassOpen open(timer);
        run_pass(ctx, controls);
    }
    timer.tick_count = 0;
    return true;
}

QString monitor_move_text(bool failed, bool save_in_db, const QString& source,
                          const QString& destination, const QString& previous) {
    const QString moved =
        QStringLiteral("The file, '") + source + QStringLiteral("' was moved to '") + destination;
    if (save_in_db) {
        return failed ? moved + QStringLiteral(
                                    "' but was not added to the database because it "
                                    "was previously added.")
                      : moved + QStringLiteral("' and added to the database.");
    }
    return failed ? previous : moved + QStringLiteral("'.");
}
