#include "catalog/catalogs_tab.h"
#include "lists/load_tab.h"
#include "lists/main_tab.h"

#include "support/page_checks.h"
#include "support/test_home.h"
#include "support/test_workbench.h"

#include <gtest/gtest.h>

// Controls that the flow tests find by name and kind are not listed again.
TEST(ListPages, EachPageHasItsControlsAndFitsThePageArea) {
    WindowFont font;
    TestHome home;
    TestWorkbench wb(home);
    auto* main_page = wb.add_page<MainTab>("Main");
    auto* load_page = wb.add_page<LoadTab>("Load");
    auto* catalogs_page = wb.add_page<CatalogsTab>("Catalogs");
    EXPECT_TRUE(
        has_controls(wb, {{"o_main_sort_listbox", "QListView"},
                          {"o_main_sort_by_0", "QRadioButton", "Name"},
                          {"o_main_sort_by_1", "QRadioButton", "Date"},
                          {"b_main_sort_file_list", "QPushButton", "Sort List"},
                          {"b_main_save", "QPushButton", "Save"},
                          {"f_main", "QGroupBox", "File Count: 0"},
                          {"f_main__image_view", "QGroupBox"},
                          {"f_load", "QGroupBox", "File Count: 0"},
                          {"b_load_scan", "QPushButton", "Scan Now"},
                          {"b_load_cancel_scan", "QPushButton", "Cancel Scan"},
                          {"b_load_searchtext", "QPushButton", "Search File List"},
                          {"b_load_file_list", "QPushButton", "Main List"},
                          {"b_load_clear_main_list", "QPushButton", "Clear Main List"},
                          {"o_load_update_list_0", "QRadioButton", "Use entire list"},
                          {"o_load_update_list_1", "QRadioButton", "Use selected files"},
                          {"o_load_append_files", "QCheckBox", "Append files (not replace)"},
                          {"b_load_update_database", "QPushButton", "Database"},
                          {"f_load_image_view", "QGroupBox"},
                          {"o_load_image_view", "ImageView"},
                          {"f_category", "QGroupBox"},
                          {"f_category_list", "QGroupBox", "Catalog List"},
                          {"b_category_add", "QPushButton", "Add"},
                          {"b_category_delete", "QPushButton", "Delete"},
                          {"f_category_maintenance", "QGroupBox", "Catalog Maintenance"}}));
    for (QWidget* page : {static_cast<QWidget*>(main_page), static_cast<QWidget*>(load_page),
                          static_cast<QWidget*>(catalogs_page)}) {
        EXPECT_TRUE(fits_page_area(*page)) << page->objectName().toStdString();
        grab_if_asked(*page, page->objectName());
    }
}
