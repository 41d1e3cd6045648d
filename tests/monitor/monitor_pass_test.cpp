#include "monitor/monitor_pass.h"
#include "monitor/monitor_tab.h"
#include "support/test_home.h"
#include "support/test_workbench.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QPushButton>

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>

namespace {

// A watched directory "in" and the copy directory "out" of a test home.
struct Watch {
    Watch() {
        QDir().mkpath(in);
        QDir().mkpath(out);
        home.app.settings.write("Current", "File Copy Directory", out);
    }
    QString moved(const QString& name) const {
        return "The file, '" + in + "/" + name + "' was moved to '" + out + "/" + name + "'";
    }
    bool tick(const MonitorControls& c) { return monitor_tick(home.ctx, c); }
    MonitorControls rows(const QString& type, bool save = false) const {
        return {"1", {in}, {type}, save};
    }
    TestHome home;
    const QString in = home.path("in");
    const QString out = home.path("out");
};

QByteArray read_all(const QString& path) {
    QFile f(path);
    f.open(QIODevice::ReadOnly);
    return f.readAll();
}

// Dialogs that run `during` while each box is open, as a timer event would.
class BoxHook : public ScriptedDialogs {
public:
    Answer message(const QString& text, Buttons buttons, Icon icon) override {
        if (during) {
            during(text);
        }
        return ScriptedDialogs::message(text, buttons, icon);
    }
    std::function<void(const QString&)> during;
};

}  // namespace

TEST(MonitorPass, ButtonChecksTheirMessagesAndTheRewrittenInterval) {
    const QString no_copy =
        "There must be a directory to copy files when they appear in a monitored directory.\n\n"
        "Select the directory on the 'Options' tab.";
    const QString zero =
        "The interval to monitor directories for files is currently set to zero.  The value must "
        "be greater than 0 to monitor directories for files.\n\nSelect the directory on the "
        "'Options' tab.";
    const struct {
        QString copy, interval;
        bool dirs;
        QString caption;
        QStringList messages;
        QString rewritten;
        MonitorSwitch action;
    } cases[] = {
        {"", "0", true, "Monitor", {zero}, "0", MonitorSwitch::None},
        {"", "5", true, "Monitor", {no_copy}, "5", MonitorSwitch::None},
        {"/c", "abc", true, "Monitor", {zero}, "0", MonitorSwitch::None},
        {"/c",
         "3",
         false,
         "Monitor",
         {"There are no directories to scan."},
         "3",
         MonitorSwitch::None},
        {"/c", "-2", true, "Monitor", {}, "-2", MonitorSwitch::None},
        {"/c", "", true, "Monitor", {}, "5", MonitorSwitch::Start},
        {"/c", " 7abc", true, "Cancel Monitor", {}, "7", MonitorSwitch::Stop},
    };
    for (const auto& c : cases) {
        ScriptedDialogs dialogs;
        const MonitorScan scan = monitor_scan_click(dialogs, c.copy, c.interval, c.dirs, c.caption);
        EXPECT_EQ(dialogs.messages(), c.messages) << c.interval.toStdString();
        EXPECT_EQ(scan.interval, c.rewritten);
        EXPECT_EQ(scan.action, c.action) << c.interval.toStdString();
    }

    // Through the tab: the button is the state, and entering the tab resets
    // it while the timer runs on.
    Watch w;
    TestWorkbench wb(w.home);
    wb.add_page<MonitorTab>("Monitor");
    w.home.app.settings.write("Monitor Directories", "monitor_1", w.in);
    w.home.app.settings.write("Monitor File Types", "monitor_1", "jpg");
    wb.enter("Monitor");
    auto* scan = wb.find<QPushButton>("b_monitor_scan");
    wb.find<QLineEdit>("o_monitor_interval")->setText("2.0");
    const QTimer& timer = w.home.app.monitor.t_monitor;
    scan->click();
    EXPECT_EQ(wb.find<QLineEdit>("o_monitor_interval")->text(), "2");
    EXPECT_EQ(scan->text(), "Cancel Monitor");
    EXPECT_EQ(scan->styleSheet(), "background-color: #ff0000;");
    EXPECT_TRUE(timer.isActive());
    EXPECT_EQ(timer.interval(), 5000);
    wb.enter("Monitor");
    EXPECT_EQ(scan->text(), "Monitor");
    EXPECT_TRUE(timer.isActive());
    scan->click();
    scan->click();
    EXPECT_EQ(scan->text(), "Monitor");
    EXPECT_FALSE(timer.isActive());
}

TEST(MonitorPass, TheIntervalCountsTicksOfTheTimer) {
    Watch w;
    // Interval 2: a pass on every second tick; an empty interval, on every tick.
    const struct {
        QString interval;
        std::vector<bool> passes;
    } cases[] = {
        {"2", {false, true, false, true}}, {"", {true, true}}, {"3x", {false, false, true}}};
    for (const auto& c : cases) {
        w.home.app.monitor.tick_count = 0;
        MonitorControls rows = w.rows("jpg");
        rows.interval = c.interval;
        std::vector<bool> got;
        for (size_t i = 0; i < c.passes.size(); ++i) {
            got.push_back(w.tick(rows));
        }
        EXPECT_EQ(got, c.passes) << c.interval.toStdString();
    }

    // The real timer, shortened: the first pass comes no sooner than three ticks.
    w.home.app.monitor.period_ms = 20;
    w.home.write_file("in/a.jpg");
    QElapsedTimer clock;
    int passes = 0;
    QObject::connect(&w.home.app.monitor.t_monitor, &QTimer::timeout, [&] {
        MonitorControls rows = w.rows("jpg");
        rows.interval = "3";
        passes += w.tick(rows);
    });
    switch_monitor(w.home.app.monitor, MonitorSwitch::Start);
    clock.start();
    while (passes == 0 && clock.elapsed() < 5000) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    }
    switch_monitor(w.home.app.monitor, MonitorSwitch::Stop);
    EXPECT_GE(clock.elapsed(), 3 * 20 - 5);
    EXPECT_EQ(w.home.dialogs.messages(), QStringList({w.moved("a.jpg") + "."}));
}

TEST(MonitorPass, MovesTellEachFileAndEnterItInTheCatalogWhenAsked) {
    Watch w;
    const QString row_of =
        "select filename from filenames where filename like '%/out/%' order by filename";
    // Without the catalog: only the matching file goes, and nothing is entered.
    w.home.write_file("in/a.jpg", "new");
    w.home.write_file("in/b.txt");
    w.home.write_file("out/a.jpg", "older one of that name");
    EXPECT_TRUE(w.tick(w.rows("jpg")));
    EXPECT_EQ(w.home.dialogs.messages(), QStringList({w.moved("a.jpg") + "."}));
    EXPECT_EQ(read_all(w.out + "/a.jpg"), "new");
    EXPECT_FALSE(QFileInfo::exists(w.in + "/a.jpg"));
    EXPECT_TRUE(QFileInfo::exists(w.in + "/b.txt"));
    EXPECT_TRUE(query_column(w.home.app, row_of).isEmpty());

    // With it, "*.*" taking every file; the same name again was added before.
    w.home.dialogs.clear();
    w.home.write_file("in/noext");
    EXPECT_TRUE(w.tick(w.rows("*.*", true)));
    w.home.write_file("in/b.txt");
    EXPECT_TRUE(w.tick(w.rows("txt", true)));
    EXPECT_EQ(w.home.dialogs.messages(),
              QStringList({w.moved("b.txt") + " and added to the database.",
                           w.moved("noext") + " and added to the database.",
                           w.moved("b.txt") + " but was not added to the database because it "
                                              "was previously added."}));
    EXPECT_EQ(query_column(w.home.app, row_of), QStringList({w.out + "/b.txt", w.out + "/noext"}));
    EXPECT_EQ(query_column(w.home.app,
                           "select count(*) from filenames where title is null and "
                           "filename like '%/out/%'"),
              QStringList({"2"}));
    EXPECT_TRUE(QDir(w.in).isEmpty());
    EXPECT_FALSE(w.home.app.shared_recordset.is_open());

    // The box's text when the flag is set without the catalog: the pass's previous one.
    EXPECT_EQ(monitor_move_text(true, false, "s", "d", "before"), "before");
}

TEST(MonitorPass, TheCopyDirectoryIsNeverMovedFromAndAMissingDirectoryIsPassedOver) {
    Watch w;
    w.home.write_file("out/keep.jpg");
    w.home.write_file("OUT/keep.jpg");
    QFile::link(w.out, w.home.path("link"));
    // Itself, written in another case, or reached through a link: the copy
    // directory is never moved from.
    for (const QString& dir : {w.out, w.home.path("OUT"), w.home.path("link")}) {
        EXPECT_TRUE(w.tick({"1", {dir}, {"jpg"}, false}));
    }
    EXPECT_TRUE(QFileInfo::exists(w.out + "/keep.jpg"));
    EXPECT_TRUE(QFileInfo::exists(w.home.path("OUT/keep.jpg")));
    EXPECT_TRUE(w.home.dialogs.messages().isEmpty());

    // A vanished directory leaves the reader on the row before it, which is
    // read again with the vanished row's type; the monitor runs on.
    w.home.write_file("in/a.jpg");
    w.home.write_file("in/b.txt");
    EXPECT_TRUE(w.tick({"1", {w.in, w.home.path("gone")}, {"txt", "jpg"}, false}));
    EXPECT_EQ(w.home.dialogs.messages(),
              QStringList({w.moved("b.txt") + ".", w.moved("a.jpg") + "."}));
}

TEST(MonitorPass, APassDoesNotStartAgainWhileItsBoxIsOpen) {
    Watch w;
    BoxHook dialogs;
    Context ctx{w.home.app, dialogs, w.home.ui, w.home.shell};
    int nested = 0;
    dialogs.during = [&](const QString&) { nested += monitor_tick(ctx, w.rows("jpg")); };
    w.home.write_file("in/a.jpg");
    w.home.write_file("in/b.jpg");
    EXPECT_TRUE(monitor_tick(ctx, w.rows("jpg")));
    EXPECT_EQ(nested, 0);
    EXPECT_EQ(dialogs.messages().size(), 2);
    EXPECT_EQ(w.home.app.monitor.tick_count, 0);
}

TEST(MonitorPass, AFileStillBeingWrittenIsMovedWholeOnlyAfterItsWriterIsDone) {
    Watch w;
    constexpr int kChunks = 200;
    constexpr int kChunk = 1 << 20;
    const QString source = w.in + "/big.bin";
    const QString destination = w.out + "/big.bin";
    std::atomic<bool> done{false};
    std::atomic<bool> vanished{false};
    QCryptographicHash written(QCryptographicHash::Sha256);
    std::thread writer([&] {
        QFile f(source);
        if (!f.open(QIODevice::WriteOnly)) {
            vanished = true;
            done = true;
            return;
        }
        QByteArray chunk(kChunk, '\0');
        for (int i = 0; i < kChunks; ++i) {
            for (int j = 0; j < kChunk; j += 4096) {
                chunk[j] = static_cast<char>(i * 7 + j / 4096);
            }
            f.write(chunk);
            f.flush();
            written.addData(chunk);
            vanished = vanished || !QFileInfo::exists(source);
            std::this_thread::sleep_for(std::chrono::milliseconds(i % 20 == 0 ? 60 : 2));
        }
        f.close();
        done = true;
    });

    // Each box checks that the copy is whole and the source not yet gone.
    BoxHook dialogs;
    Context ctx{w.home.app, dialogs, w.home.ui, w.home.shell};
    QStringList at_box;
    dialogs.during = [&](const QString&) {
        at_box << QString("done=%1 source=%2 size=%3")
                      .arg(done.load())
                      .arg(QFileInfo::exists(source))
                      .arg(QFileInfo(destination).size());
    };
    int passes = 0;
    QObject::connect(&w.home.app.monitor.t_monitor, &QTimer::timeout,
                     [&] { passes += monitor_tick(ctx, w.rows("bin")); });
    w.home.app.monitor.period_ms = 10;
    switch_monitor(w.home.app.monitor, MonitorSwitch::Start);
    QElapsedTimer clock;
    clock.start();
    while ((!done || QFileInfo::exists(source)) && clock.elapsed() < 120000) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    }
    switch_monitor(w.home.app.monitor, MonitorSwitch::Stop);
    writer.join();

    EXPECT_FALSE(vanished);
    EXPECT_GT(passes, 10);
    EXPECT_EQ(at_box,
              QStringList({QString("done=1 source=1 size=%1").arg(qint64(kChunks) * kChunk)}));
    EXPECT_FALSE(QFileInfo::exists(source));
    QFile copy(destination);
    ASSERT_TRUE(copy.open(QIODevice::ReadOnly));
    QCryptographicHash got(QCryptographicHash::Sha256);
    got.addData(&copy);
    EXPECT_EQ(got.result(), written.result());
    EXPECT_EQ(QDir(w.out).entryList(QDir::Files | QDir::Hidden), QStringList({"big.bin"}));
}
