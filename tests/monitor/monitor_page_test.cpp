#include "monitor/monitor_tab.h"
#include "support/page_checks.h"
#include "support/test_workbench.h"
#include "ui/directory_box.h"
#include "ui/drive_box.h"
#include "ui/file_box.h"

#include <QDir>

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
