#include "monitor/monitor_pass.h"
#include "monitor/monitor_tab.h"
#include "support/test_home.h"
#include "support/test_workbench.h"
#include "ui/directory_box.h"
#include "ui/widget_rows.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

namespace {

// The Monitor tab on a shown workbench, so that rows can be clicked.
struct MonitorPage {
    explicit MonitorPage(TestHome& home) : wb(home) {
        wb.add_page<MonitorTab>("Monitor");
        wb.window().show();
        wb.enter("Monitor");
    }
    template <class T = QListWidget>
    T* w(const char* name) {
        return wb.find<T>(QLatin1String(name));
    }
    // A double click comes after the press of its first click.
    void click(const char* list_name, int row, bool twice = false) {
        QListWidget* list = w(list_name);
        const QPoint at = list->visualItemRect(list->item(row)).center();
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, at);
        if (twice) {
            QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, at);
        }
    }
    QStringList rows(const char* list_name) { return rows_of(w(list_name)); }
    TestWorkbench wb;
};

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
    bool tick(const QString& type, bool save = false) {
        return monitor_tick(home.ctx, {"1", {in}, {type}, save});
    }
    TestHome home;
    const QString in = home.path("in");
    const QString out = home.path("out");
};

}  // namespace

TEST(MonitorTab, EachEntryAppendsTypesAndTableAndTheControlsWriteTheirKeys) {
    TestHome home;
    ProfileFile& ini = home.app.settings;
    MonitorPage page(home);
    auto* combo = page.w<QComboBox>("o_monitor_file_type_list");
    EXPECT_EQ(rows_of(combo).join(' '),
              "*.* asa asd asf asp avi bas bat bkf bks bmp cab cda chm cls cnt csv dat dbf dbs ddf "
              "dll doc dot epe exe frm frx gif hlp htm html htt ico icw inf ini jpg ldb lgn lib "
              "log lst mdb mov mp3 mpeg mpg msc msg ocx out pdf pml pps ra ram rf rjs rm rmm rmp "
              "rmx rnx rp rsml rt rtf rv scc sdp set sln smi sql ssm tif txt url vbp vbw ver wav "
              "wmf wri xlm xls xml ZIP");
    EXPECT_EQ(ini.read("Current", "Last Monitor File Type"), "*.*");
    // A directory without its type ends the table one row apart.
    ini.write("Monitor Directories", "monitor_1", "/a");
    ini.write("Monitor File Types", "monitor_1", "gif");
    ini.write("Monitor Directories", "monitor_2", "/b");
    ini.write("Current", "Last Monitor File Type", "jpg");
    ini.write("Current", "Monitor Interval", "3");
    ini.write("Current", "Monitor Save In Database", "yes");
    page.wb.enter("Monitor");
    page.wb.enter("Monitor");
    EXPECT_EQ(combo->count(), 3 * 89);
    EXPECT_EQ(combo->currentText(), "jpg");
    EXPECT_EQ(page.w<QLineEdit>("o_monitor_interval")->text(), "3");
    EXPECT_TRUE(page.w<QCheckBox>("o_monitor_save_in_db")->isChecked());
    EXPECT_EQ(page.rows("o_monitor_directories"), QStringList({"/a", "/b", "/a", "/b"}));
    EXPECT_EQ(page.rows("o_monitor_file_types"), QStringList({"gif", "gif"}));
}

TEST(MonitorTab, AddDeleteAndDoubleClickKeepTheTwoListsOneTable) {
    TestHome home;
    MonitorPage page(home);
    page.w<DirectoryBox>("o_monitor_dir_list")->set_path(home.dir());
    const QString dir = QDir::cleanPath(home.dir());
    // The duplicate test looks at the selected type row: with "gif" selected
    // a second "gif" is refused, and a second "jpg" goes in.
    auto add = [&](const char* type) {
        page.w<QComboBox>("o_monitor_file_type_list")->setEditText(type);
        page.w<QPushButton>("b_monitor_add")->click();
    };
    add("");
    add("jpg");
    add("gif");
    page.click("o_monitor_directories", 1);
    add("gif");
    add("jpg");
    EXPECT_EQ(home.dialogs.messages(),
              QStringList({"Select a file type to add a directory to the list to monitor."}));
    EXPECT_EQ(page.rows("o_monitor_directories"), QStringList({dir, dir, dir}));
    EXPECT_EQ(page.rows("o_monitor_file_types"), QStringList({"jpg", "gif", "jpg"}));
    page.click("o_monitor_file_types", 0);
    EXPECT_EQ(page.w("o_monitor_directories")->currentRow(), 0);

    home.dialogs.clear();
    home.dialogs.answer(Dialogs::Answer::No);
    home.dialogs.answer(Dialogs::Answer::Yes);
    page.w<QPushButton>("b_monitor_delete")->click();
    page.w<QPushButton>("b_monitor_delete")->click();
    const QString question =
        "Are you sure you want to remove the directory '" + dir + "' from being monitored?  ";
    EXPECT_EQ(home.dialogs.messages(), QStringList({question, question}));
    EXPECT_EQ(page.rows("o_monitor_file_types"), QStringList({"gif", "jpg"}));
    // A double click on either list removes its row from both, unasked.
    page.click("o_monitor_file_types", 1, true);
    EXPECT_EQ(page.rows("o_monitor_file_types"), QStringList({"gif"}));
    EXPECT_EQ(page.rows("o_monitor_directories"), QStringList({dir}));
}

TEST(MonitorPass, TheButtonChecksThenTheShortenedTimerCountsTheInterval) {
    const QString tail = "\n\nSelect the directory on the 'Options' tab.";
    const QString no_copy =
        "There must be a directory to copy files when they appear in a monitored directory." + tail;
    const QString zero =
        "The interval to monitor directories for files is currently set to zero.  The value must "
        "be greater than 0 to monitor directories for files." +
        tail;
    using S = MonitorSwitch;
    const struct {
        QString copy, interval;
        bool dirs;
        QString caption, message, rewritten;
        S action;
    } cases[] = {
        {"", "0", true, "Monitor", zero, "0", S::None},
        {"", "5", true, "Monitor", no_copy, "5", S::None},
        {"/c", "abc", true, "Monitor", zero, "0", S::None},
        {"/c", "3", false, "Monitor", "There are no directories to scan.", "3", S::None},
        {"/c", "-2", true, "Monitor", "", "-2", S::None},
        {"/c", "", true, "Monitor", "", "5", S::Start},
        {"/c", "2.5", true, "Monitor", "", "2.5", S::Start},
        {"/c", " 7abc", true, "Cancel Monitor", "", "7", S::Stop},
    };
    for (const auto& c : cases) {
        ScriptedDialogs d;
        const MonitorScan scan = monitor_scan_click(d, c.copy, c.interval, c.dirs, c.caption);
        EXPECT_EQ(d.messages().join(""), c.message) << c.interval.toStdString();
        EXPECT_EQ(scan.interval, c.rewritten);
        EXPECT_EQ(scan.action, c.action) << c.interval.toStdString();
    }

    // Through the tab, ticking every 20 ms: with interval 3 the first pass
    // comes on the third tick. Entering the tab resets the button, not the timer.
    Watch w;
    w.home.app.monitor.period_ms = 20;
    w.home.write_file("in/a.jpg");
    w.home.app.settings.write("Monitor Directories", "monitor_1", w.in);
    w.home.app.settings.write("Monitor File Types", "monitor_1", "jpg");
    TestWorkbench wb(w.home);
    wb.add_page<MonitorTab>("Monitor");
    wb.enter("Monitor");
    auto* scan = wb.find<QPushButton>("b_monitor_scan");
    wb.find<QLineEdit>("o_monitor_interval")->setText("3.0");
    scan->click();
    EXPECT_EQ(wb.find<QLineEdit>("o_monitor_interval")->text(), "3");
    EXPECT_EQ(scan->text(), "Cancel Monitor");
    EXPECT_TRUE(QTest::qWaitFor([&] { return !w.home.dialogs.messages().isEmpty(); }, 10000));
    EXPECT_EQ(w.home.dialogs.messages(), QStringList({w.moved("a.jpg") + "."}));
    wb.enter("Monitor");
    EXPECT_EQ(scan->text(), "Monitor");
    EXPECT_TRUE(w.home.app.monitor.t_monitor.isActive());
    scan->click();
    scan->click();
    EXPECT_FALSE(w.home.app.monitor.t_monitor.isActive());

    // The count against the interval, tick by tick ("+" a pass): an empty
    // interval passes each time.
    for (const auto& [interval, passes] : {std::pair<QString, QString>{"2", "-+-+"}, {"", "++"}}) {
        QString got;
        for (int i = 0; i < passes.size(); ++i) {
            got += monitor_tick(w.home.ctx, {interval, {w.in}, {"jpg"}, false}) ? u'+' : u'-';
        }
        EXPECT_EQ(got, passes);
    }
}

TEST(MonitorPass, CopyRecordTellDeleteAndTheDirectoriesNeverMovedFrom) {
    Watch w;
    const QString rows =
        "select filename from filenames where filename like '%/out/%' and title is null "
        "order by filename";
    // Without the catalog only the matching file goes, over an older one of its name.
    w.home.write_file("in/a.jpg", "new");
    w.home.write_file("in/b.txt");
    w.home.write_file("out/a.jpg", "older one of that name");
    EXPECT_TRUE(w.tick("jpg"));
    EXPECT_EQ(w.home.dialogs.messages(), QStringList({w.moved("a.jpg") + "."}));
    QFile copy(w.out + "/a.jpg");
    ASSERT_TRUE(copy.open(QIODevice::ReadOnly));
    EXPECT_EQ(copy.readAll(), "new");
    EXPECT_EQ(QDir(w.in).entryList(QDir::Files), QStringList({"b.txt"}));

    // With it, "*.*" takes every file; the same name arriving again was added before.
    w.home.dialogs.clear();
    w.home.write_file("in/noext");
    EXPECT_TRUE(w.tick("*.*", true));
    w.home.write_file("in/b.txt");
    EXPECT_TRUE(w.tick("txt", true));
    EXPECT_EQ(w.home.dialogs.messages(),
              QStringList({w.moved("b.txt") + " and added to the database.",
                           w.moved("noext") + " and added to the database.",
                           w.moved("b.txt") + " but was not added to the database because it "
                                              "was previously added."}));
    EXPECT_EQ(query_column(w.home.app, rows), QStringList({w.out + "/b.txt", w.out + "/noext"}));
    EXPECT_TRUE(QDir(w.in).isEmpty());

    // The copy directory is never moved from: itself, written in another
    // case, or reached through a link.
    w.home.write_file("OUT/keep.jpg");
    QFile::link(w.out, w.home.path("link"));
    w.home.dialogs.clear();
    for (const QString& dir : {w.out, w.home.path("OUT"), w.home.path("link")}) {
        EXPECT_TRUE(monitor_tick(w.home.ctx, {"1", {dir}, {"jpg"}, false}));
    }
    EXPECT_TRUE(QFileInfo::exists(w.home.path("OUT/keep.jpg")));
    EXPECT_EQ(QDir(w.out).entryList(QDir::Files | QDir::Hidden),
              QStringList({"a.jpg", "b.txt", "noext"}));
    EXPECT_TRUE(w.home.dialogs.messages().isEmpty());

    // A vanished directory's type is read again on the row before it; the monitor runs on.
    w.home.write_file("in/a.jpg");
    w.home.write_file("in/b.txt");
    EXPECT_TRUE(
        monitor_tick(w.home.ctx, {"1", {w.in, w.home.path("gone")}, {"txt", "jpg"}, false}));
    EXPECT_EQ(w.home.dialogs.messages(),
              QStringList({w.moved("b.txt") + ".", w.moved("a.jpg") + "."}));
}

// A file that a program still has open for writing is left for a later pass,
// however quiet it looks; once its writer closes it, it is moved whole.
TEST(MonitorPass, AFileOpenForWritingIsMovedOnlyWholeAfterItsWriterCloses) {
    Watch w;
    QFile writer(w.in + "/big.bin");
    ASSERT_TRUE(writer.open(QIODevice::WriteOnly));
    ASSERT_TRUE(writer.write(QByteArray(1 << 20, 'a')) > 0 && writer.flush());
    EXPECT_TRUE(w.tick("bin"));
    EXPECT_EQ(QDir(w.out).entryList(QDir::Files | QDir::Hidden), QStringList());
    EXPECT_TRUE(w.home.dialogs.messages().isEmpty());
    writer.write(QByteArray(1 << 20, 'b'));
    writer.close();
    EXPECT_TRUE(w.tick("bin"));
    EXPECT_EQ(w.home.dialogs.messages(), QStringList({w.moved("big.bin") + "."}));
    EXPECT_EQ(QFileInfo(w.out + "/big.bin").size(), 2 << 20);
}
