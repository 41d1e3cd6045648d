#include "imaging/scan_tab.h"
#include "lists/main_tab.h"

#include "support/qt_print.h"
#include "support/test_home.h"
#include "support/test_workbench.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>

#include <gtest/gtest.h>

TEST(ScanTabLists, ScansPassToTheMainListAndTheCatalogAsTheLoadTabsFilesDo) {
    TestHome home;
    TestWorkbench wb(home);
    wb.add_page<MainTab>("Main");
    wb.add_page<ScanTab>("Scan");
    auto* scans = wb.find<QListWidget>("o_scan_file_list");
    auto* entire = wb.find<QRadioButton>("o_scan_update_list_0");
    auto* selected = wb.find<QRadioButton>("o_scan_update_list_1");
    auto* catalog = wb.find<QComboBox>("o_scan_catalog");
    ASSERT_TRUE(scans && entire && selected && catalog);
    scans->setSelectionMode(QAbstractItemView::MultiSelection);
    scans->addItems({"/scans/s1.jpg", "/scans/s2.jpg", "/scans/s3.jpg"});

    home.app.database.execute(Sql("insert into catalog (catalog) values ('Scans')"));
    wb.enter("Scan");
    EXPECT_TRUE(entire->isChecked());
    EXPECT_EQ(catalog->count(), 1);

    wb.find<QPushButton>("b_scan_update_main_list")->click();
    EXPECT_EQ(home.app.main_list.count(), 3);
    EXPECT_EQ(wb.find<QGroupBox>("f_main")->title(), "File Count: 3");

    // Selected rows that the main list holds already are not added again.
    selected->setChecked(true);
    wb.find<QCheckBox>("o_scan_append_files")->setChecked(true);
    scans->item(1)->setSelected(true);
    home.dialogs.answer(Dialogs::Answer::Yes);
    wb.find<QPushButton>("b_scan_update_main_list")->click();
    EXPECT_EQ(home.app.main_list.count(), 3);
    EXPECT_EQ(home.dialogs.messages(),
              QStringList({"Are you sure you want to append the main list of files with the "
                           "loaded results?"}));

    home.dialogs.clear();
    catalog->setEditText("Scans");
    wb.find<QPushButton>("b_scan_update_database")->click();
    EXPECT_EQ(home.dialogs.messages(),
              QStringList({"Update statistics:\n       Total Files:  3\n       Total Files "
                           "Added:  1\n"}));
    EXPECT_EQ(query_column(home.app, "select filename from filenames"),
              QStringList({"/scans/s2.jpg"}));
    EXPECT_EQ(catalog->count(), 1);
}
