#include "imaging/scan_tab.h"
#include "lists/main_tab.h"

#include "imaging/image_view.h"
#include "support/qt_print.h"
#include "support/test_home.h"
#include "support/test_workbench.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QListView>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

#include <gtest/gtest.h>

TEST(ScanTabLists, ScansPassToTheMainListAndTheCatalogAsTheLoadTabsFilesDo) {
    TestHome home;
    TestWorkbench wb(home);
    wb.add_page<MainTab>("Main");
    auto* page = wb.add_page<ScanTab>("Scan");
    wb.window().show();
    auto* view = wb.find<QListView>("o_scan_file_list");
    auto* entire = wb.find<QRadioButton>("o_scan_update_list_0");
    auto* selected = wb.find<QRadioButton>("o_scan_update_list_1");
    auto* catalog = wb.find<QComboBox>("o_scan_catalog");
    auto* viewer = wb.find<ImageView>("o_scan_image_view");
    ASSERT_TRUE(view && entire && selected && catalog && viewer);
    ItemList& scans = page->files();
    // The list shows the tab's own rows and selection: nothing is copied.
    EXPECT_EQ(view->model(), &scans);
    EXPECT_EQ(view->selectionModel(), scans.selection_model());
    const QString owl = home.write_image("owl.jpg", 40, 30);
    scans.add_many({"/scans/s1.jpg", owl, "/scans/s3.jpg"});

    home.app.database.execute(Sql("insert into catalog (catalog) values ('Scans')"));
    wb.enter("Scan");
    EXPECT_TRUE(entire->isChecked());
    EXPECT_EQ(catalog->count(), 1);
    // A typed name is offered as a row only once it is in the catalog.
    QTest::keyClicks(catalog, "Fresh");
    QTest::keyClick(catalog, Qt::Key_Return);
    EXPECT_EQ(catalog->count(), 1);

    wb.find<QPushButton>("b_scan_update_main_list")->click();
    EXPECT_EQ(home.app.main_list.count(), 3);
    EXPECT_EQ(wb.find<QGroupBox>("f_main")->title(), "File Count: 3");

    // Selected rows that the main list holds already are not added again.
    selected->setChecked(true);
    wb.find<QCheckBox>("o_scan_append_files")->setChecked(true);
    scans.set_selected(1, true);
    home.dialogs.answer(Dialogs::Answer::Yes);
    wb.find<QPushButton>("b_scan_update_main_list")->click();
    EXPECT_EQ(home.app.main_list.count(), 3);
    EXPECT_EQ(home.dialogs.messages().size(), 1);  // the append question

    home.dialogs.clear();
    catalog->setEditText("Scans");
    wb.find<QPushButton>("b_scan_update_database")->click();
    EXPECT_EQ(home.dialogs.messages(),
              QStringList({"Update statistics:\n       Total Files:  3\n       Total Files "
                           "Added:  1\n"}));
    EXPECT_EQ(query_column(home.app, "select filename from filenames"), QStringList({owl}));
    EXPECT_EQ(catalog->count(), 1);

    // A key move of the current row shows its file, as a click does.
    scans.set_list_index(0);
    view->setFocus();
    QTest::keyClick(view, Qt::Key_Down);
    EXPECT_EQ(home.app.selected_file, owl);
    EXPECT_EQ(viewer->control().file_name(), owl);
}
