#include "monitor/monitor_tab.h"
#include "shell/application.h"
#include "shell/main_window.h"
#include "shell/tab_strip.h"
#include "support/page_checks.h"
#include "support/test_workbench.h"
#include "ui/directory_box.h"
#include "ui/drive_box.h"
#include "ui/file_box.h"
#include "ui/widget_rows.h"

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

}  // namespace

TEST(MonitorTab, EachEntryAppendsTypesAndTableAndTheControlsWriteTheirKeys) {
    TestHome home;
    ProfileFile& ini = home.app.settings;
    MonitorPage page(home);
    auto* combo = page.w<QComboBox>("o_monitor_file_type_list");
    EXPECT_EQ(combo->itemText(88), "ZIP");
    EXPECT_EQ(combo->currentText(), "*.*");
    EXPECT_EQ(ini.read("Current", "Last Monitor File Type"), "*.*");
    EXPECT_EQ(page.w<QLineEdit>("o_monitor_interval")->text(), "0");
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

    // The file view takes the combo's text as a bare pattern.
    home.write_file("watched/a.jpg");
    home.write_file("watched/jpg");
    page.w<DirectoryBox>("o_monitor_dir_list")->set_path(home.path("watched"));
    EXPECT_EQ(page.w<FileBox>("o_monitor_file_list")->file_names(), QStringList({"jpg"}));
    combo->setCurrentText("*.*");
    EXPECT_EQ(page.w<FileBox>("o_monitor_file_list")->file_names().size(), 2);
    EXPECT_EQ(ini.read("Current", "Last Monitor File Type"), "*.*");
    auto* interval = page.w<QLineEdit>("o_monitor_interval");
    interval->clear();
    QTest::keyClicks(interval, "1x");
    EXPECT_EQ(ini.read("Current", "Monitor Interval"), "1x");
    auto* save = page.w<QCheckBox>("o_monitor_save_in_db");
    QTest::mouseClick(save, Qt::LeftButton, {}, QPoint(4, save->height() / 2));
    EXPECT_EQ(ini.read("Current", "Monitor Save In Database"), "No");
}

TEST(MonitorTab, AddDeleteAndDoubleClickKeepTheTwoListsOneTable) {
    WindowFont font;
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
    grab_if_asked(page.wb.window(), "monitor_table");

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

    // With no row chosen the removal fails to the last-resort box.
    page.w("o_monitor_directories")->setCurrentRow(-1);
    home.dialogs.answer(Dialogs::Answer::Yes);
    auto* app = qobject_cast<QuilldexApplication*>(QCoreApplication::instance());
    app->set_error_dialogs(&home.dialogs);
    QTest::mouseClick(page.w<QPushButton>("b_monitor_delete"), Qt::LeftButton);
    app->set_error_dialogs(nullptr);
    EXPECT_EQ(home.dialogs.messages().mid(2),
              QStringList({"Are you sure you want to remove the directory '' from being "
                           "monitored?  ",
                           "Invalid procedure call or argument"}));
}

TEST(MonitorTab, StoredTableSurvivesStartAndExitWithOrWithoutAVisit) {
    TestHome home;
    ProfileFile& ini = home.app.settings;
    for (const char* key : {"monitor_1", "monitor_2"}) {
        ini.write("Monitor Directories", key, QString("/d") + key);
        ini.write("Monitor File Types", key, "*.*");
    }
    auto table = [&] { return ini.keys("Monitor Directories") + ini.keys("Monitor File Types"); };
    const QStringList before = table();
    for (bool visit : {false, true}) {
        home.app.database_path.clear();
        MainWindow window(home.app, home.dialogs, home.shell);
        window.set_end_process([] {});
        ASSERT_TRUE(window.start_application({}));
        if (visit) {
            window.tabs().set_current_index(window.tabs().index_of("Monitor"));
        }
        window.finish_up();
        EXPECT_EQ(table(), before) << visit;
        EXPECT_EQ(ini.read("Monitor Directories", "monitor_2"), "/dmonitor_2");
    }
}
