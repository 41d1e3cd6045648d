#include "monitor/monitor_tab.h"
#include "monitor/monitor_table.h"
#include "shell/application.h"
#include "shell/directory_box.h"
#include "shell/drive_box.h"
#include "shell/file_box.h"
#include "shell/main_window.h"
#include "shell/tab_strip.h"
#include "shell/widget_rows.h"
#include "support/page_checks.h"
#include "support/test_workbench.h"

#include <QCheckBox>
#include <QDir>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

TEST(MonitorTab, CarriesItsNamedControlsWithinThePage) {
    WindowFont font;
    TestHome home;
    TestWorkbench wb(home);
    wb.add_page<MonitorTab>("Monitor");
    EXPECT_TRUE(has_controls(wb, {
                                     {"f_monitor", "QGroupBox"},
                                     {"o_monitor_drive_list", "DriveBox"},
                                     {"o_monitor_dir_list", "DirectoryBox"},
                                     {"o_monitor_file_list", "FileBox"},
                                     {"o_monitor_file_type_list", "QComboBox"},
                                     {"o_monitor_interval", "QLineEdit"},
                                     {"l_monitor_interval", "QLabel", "Interval (min)"},
                                     {"o_monitor_save_in_db", "QCheckBox"},
                                     {"b_monitor_add", "QPushButton", "Add"},
                                     {"b_monitor_delete", "QPushButton"},
                                     {"b_monitor_scan", "QPushButton", "Monitor"},
                                     {"o_monitor_directories", "QListWidget"},
                                     {"o_monitor_file_types", "QListWidget"},
                                 }));
    // Everything of the tab is inside its frame.
    EXPECT_TRUE(
        wb.find<QWidget>("f_monitor")->isAncestorOf(wb.find<QWidget>("o_monitor_file_types")));
    // The file types are typed as well as chosen.
    EXPECT_TRUE(wb.find<QComboBox>("o_monitor_file_type_list")->isEditable());
    // The platform's boxes are real ones: the directory list reads the disk.
    auto* dir = wb.find<DirectoryBox>("o_monitor_dir_list");
    dir->set_path(home.dir());
    EXPECT_EQ(dir->path(), QDir::cleanPath(home.dir()));

    MonitorTab alone(wb);
    EXPECT_TRUE(fits_page_area(alone));
    grab_if_asked(alone, "monitor");
}

namespace {

// The Monitor tab alone on a workbench, shown so that rows can be clicked.
struct MonitorPage {
    explicit MonitorPage(TestHome& home) : wb(home) {
        wb.add_page<MonitorTab>("Monitor");
        wb.window().show();
    }
    template <class T>
    T* w(const char* name) {
        return wb.find<T>(QLatin1String(name));
    }
    QListWidget* dirs() { return w<QListWidget>("o_monitor_directories"); }
    QListWidget* types() { return w<QListWidget>("o_monitor_file_types"); }
    QComboBox* combo() { return w<QComboBox>("o_monitor_file_type_list"); }
    void click_row(QListWidget* list, int row, bool twice = false) {
        const QPoint at = list->visualItemRect(list->item(row)).center();
        // A double click comes after the press of its first click.
        QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, at);
        if (twice) {
            QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, at);
        }
    }
    TestWorkbench wb;
};

}  // namespace

TEST(MonitorTab, EntryFillsTheTabAndEveryFurtherEntryAppendsAgain) {
    TestHome home;
    ProfileFile& ini = home.app.settings;
    // A gap ends the table; a directory without its type ends it one row apart.
    struct Stored {
        QStringList dir_keys, type_keys;
        QStringList dirs, types;
    } cases[] = {
        {{"monitor_1", "monitor_3"}, {"monitor_1", "monitor_3"}, {"/d1"}, {"t1"}},
        {{"monitor_1", "monitor_2"}, {"monitor_1"}, {"/d1", "/d2"}, {"t1"}},
    };
    for (const Stored& c : cases) {
        ProfileFile file(home.path("case.ini"));
        QFile::remove(file.path());
        for (const QString& k : c.dir_keys)
            file.write("Monitor Directories", k, "/d" + k.right(1));
        for (const QString& k : c.type_keys)
            file.write("Monitor File Types", k, "t" + k.right(1));
        const MonitorTable t = read_monitor_table(file);
        EXPECT_EQ(t.directories, c.dirs);
        EXPECT_EQ(t.file_types, c.types);
    }

    // First start: nothing stored.
    MonitorPage page(home);
    page.wb.enter("Monitor");
    EXPECT_EQ(page.combo()->count(), 89);
    EXPECT_EQ(page.combo()->itemText(0), "*.*");
    EXPECT_EQ(page.combo()->itemText(1), "asa");
    EXPECT_EQ(page.combo()->itemText(88), "ZIP");
    EXPECT_EQ(page.combo()->currentText(), "*.*");
    EXPECT_EQ(page.w<QLineEdit>("o_monitor_interval")->text(), "0");
    EXPECT_EQ(page.dirs()->count(), 0);
    EXPECT_EQ(page.w<QPushButton>("b_monitor_scan")->styleSheet(), "background-color: #ffff00;");

    ini.write("Current", "Last Monitor File Type", "jpg");
    ini.write("Current", "Monitor Interval", "3");
    ini.write("Current", "Monitor Save In Database", "yes");
    ini.write("Monitor Directories", "monitor_1", "/a");
    ini.write("Monitor File Types", "monitor_1", "gif");
    page.wb.enter("Monitor");
    page.wb.enter("Monitor");
    EXPECT_EQ(page.combo()->count(), 3 * 89);
    EXPECT_EQ(page.combo()->currentText(), "jpg");
    EXPECT_EQ(page.w<QLineEdit>("o_monitor_interval")->text(), "3");
    EXPECT_TRUE(page.w<QCheckBox>("o_monitor_save_in_db")->isChecked());
    EXPECT_EQ(rows_of(page.dirs()), QStringList({"/a", "/a"}));
    EXPECT_EQ(rows_of(page.types()), QStringList({"gif", "gif"}));
}

TEST(MonitorTab, AddDeleteAndDoubleClickKeepTheTwoListsOneTable) {
    WindowFont font;
    TestHome home;
    MonitorPage page(home);
    page.wb.enter("Monitor");
    page.w<DirectoryBox>("o_monitor_dir_list")->set_path(home.dir());
    auto* add = page.w<QPushButton>("b_monitor_add");
    const QString dir = QDir::cleanPath(home.dir());

    page.combo()->setEditText("");
    add->click();
    EXPECT_EQ(home.dialogs.messages(),
              QStringList({"Select a file type to add a directory to the list to monitor."}));
    page.combo()->setEditText("jpg");
    add->click();
    page.combo()->setEditText("gif");
    add->click();
    // The duplicate test looks at the selected type row: with "gif" selected
    // a second "gif" is refused, and a second "jpg" goes in.
    page.click_row(page.dirs(), 1);
    EXPECT_EQ(page.types()->currentRow(), 1);
    EXPECT_TRUE(page.types()->item(1)->isSelected());
    add->click();
    page.combo()->setEditText("jpg");
    add->click();
    EXPECT_EQ(rows_of(page.dirs()), QStringList({dir, dir, dir}));
    EXPECT_EQ(rows_of(page.types()), QStringList({"jpg", "gif", "jpg"}));
    page.click_row(page.types(), 0);
    EXPECT_EQ(page.dirs()->currentRow(), 0);

    home.dialogs.clear();
    home.dialogs.answer(Dialogs::Answer::No);
    home.dialogs.answer(Dialogs::Answer::Yes);
    page.w<QPushButton>("b_monitor_delete")->click();
    page.w<QPushButton>("b_monitor_delete")->click();
    const QString question =
        "Are you sure you want to remove the directory '" + dir + "' from being monitored?  ";
    EXPECT_EQ(home.dialogs.messages(), QStringList({question, question}));
    EXPECT_EQ(home.dialogs.asked()[0].buttons, Dialogs::Buttons::YesNo);
    EXPECT_EQ(rows_of(page.types()), QStringList({"gif", "jpg"}));

    // A double click on either list removes its row from both, unasked.
    page.click_row(page.types(), 1, true);
    EXPECT_EQ(rows_of(page.types()), QStringList({"gif"}));
    EXPECT_EQ(page.dirs()->count(), 1);

    // With no row chosen the question names nothing, and the removal fails
    // to the last-resort box.
    page.dirs()->setCurrentRow(-1);
    home.dialogs.clear();
    home.dialogs.answer(Dialogs::Answer::Yes);
    auto* app = qobject_cast<QuilldexApplication*>(QCoreApplication::instance());
    app->set_error_dialogs(&home.dialogs);
    QTest::mouseClick(page.w<QPushButton>("b_monitor_delete"), Qt::LeftButton);
    app->set_error_dialogs(nullptr);
    EXPECT_EQ(home.dialogs.messages(),
              QStringList({"Are you sure you want to remove the directory '' from being "
                           "monitored?  ",
                           "Invalid procedure call or argument"}));
    EXPECT_EQ(page.dirs()->count(), 1);
}

TEST(MonitorTab, ControlsWriteTheirSettingsAndTheFileViewUsesTheBarePattern) {
    TestHome home;
    MonitorPage page(home);
    page.wb.enter("Monitor");
    ProfileFile& ini = home.app.settings;
    for (const char* name : {"a.jpg", "jpg", "b.txt"}) {
        home.write_file(QString("watched/") + name);
    }
    page.w<DirectoryBox>("o_monitor_dir_list")->set_path(home.path("watched"));
    auto* view = page.w<FileBox>("o_monitor_file_list");
    EXPECT_EQ(view->file_names(), QStringList({"a.jpg", "b.txt", "jpg"}));
    page.combo()->setCurrentText("jpg");
    EXPECT_EQ(view->file_names(), QStringList({"jpg"}));
    EXPECT_EQ(ini.read("Current", "Last Monitor File Type"), "jpg");

    auto* interval = page.w<QLineEdit>("o_monitor_interval");
    interval->clear();
    QTest::keyClicks(interval, "1x");
    EXPECT_EQ(ini.read("Current", "Monitor Interval"), "1x");
    auto* save = page.w<QCheckBox>("o_monitor_save_in_db");
    QTest::mouseClick(save, Qt::LeftButton, {}, QPoint(4, save->height() / 2));
    EXPECT_EQ(ini.read("Current", "Monitor Save In Database"), "Yes");
    QTest::mouseClick(save, Qt::LeftButton, {}, QPoint(4, save->height() / 2));
    EXPECT_EQ(ini.read("Current", "Monitor Save In Database"), "No");
}

TEST(MonitorTab, StoredTableSurvivesStartAndExitWithOrWithoutAVisit) {
    TestHome home;
    ProfileFile& ini = home.app.settings;
    ini.write("Monitor Directories", "monitor_1", "/a");
    ini.write("Monitor File Types", "monitor_1", "jpg");
    ini.write("Monitor Directories", "monitor_2", "/b");
    ini.write("Monitor File Types", "monitor_2", "*.*");
    auto table = [&] {
        return ini.keys("Monitor Directories") + ini.keys("Monitor File Types") +
               QStringList{ini.read("Monitor Directories", "monitor_2"),
                           ini.read("Monitor File Types", "monitor_2")};
    };
    const QStringList before = table();
    for (bool visit : {false, true}) {
        home.app.last_directory.clear();
        home.app.database_path.clear();
        MainWindow window(home.app, home.dialogs, home.shell);
        window.set_end_process([] {});
        ASSERT_TRUE(window.start_application({}));
        if (visit) {
            window.tabs().set_current_index(window.tabs().index_of("Monitor"));
            EXPECT_EQ(rows_of(window.findChild<QWidget*>("o_monitor_directories")),
                      QStringList({"/a", "/b"}));
        }
        window.finish_up();
        EXPECT_EQ(table(), before) << (visit ? "visited" : "not visited");
    }
}
