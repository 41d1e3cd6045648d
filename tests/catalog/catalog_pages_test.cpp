#include "catalog/audit_tab.h"
#include "catalog/search_tab.h"
#include "support/page_checks.h"
#include "support/test_workbench.h"

#include <QListView>

#include <gtest/gtest.h>

TEST(CatalogPages, SearchAndAuditCarryTheirNamedControlsWithinThePage) {
    WindowFont font;
    TestHome home;
    TestWorkbench wb(home);
    wb.add_page<SearchTab>("Search");
    wb.add_page<AuditTab>("Audit");
    EXPECT_TRUE(has_controls(
        wb, {
                {"o_search_item", "QComboBox"},
                {"o_search_value", "QLineEdit"},
                {"l_search_value", "QLabel", "Search Value"},
                {"b_search_database", "QPushButton", "Search Now"},
                {"o_search_list", "FileListView"},
                {"f_search", "QGroupBox"},
                {"l_search_db_record_count", "QLabel"},
                {"f_search_image_view", "QGroupBox", "Image Preview"},
                {"o_search_image_view", "ImageView"},
                {"o_search_copy_files", "QCheckBox", "Selected files only?"},
                {"b_search_add_to_main_list", "QPushButton", "Update Main List"},
                {"b_search_copy_files", "QPushButton", "Copy Files"},
                {"f_audit_command", "QGroupBox", "Database Audit/Database Functions"},
                {"o_audit_command", "QListWidget"},
                {"b_audit_do_it_now", "QPushButton", "Do It Now"},
                {"f_audit_database_information", "QGroupBox", "Database Audit"},
                {"o_audit_db_file_count", "QLineEdit"},
                {"l_audit_db_file_count", "QLabel", "File Count"},
                {"o_audit_files_wo_titles", "QLineEdit"},
                {"l_audit_files_wo_titles", "QLabel", "Files Without Titles"},
                {"o_audit_files_wo_descriptions", "QLineEdit"},
                {"l_audit_files_wo_descriptions", "QLabel", "Files Without Descriptions"},
                {"o_audit_files_wo_category", "QLineEdit"},
                {"l_audit_files_wo_category", "QLabel", "Files Not In A Catalog"},
                {"o_audit_files_wo_keywords", "QLineEdit"},
                {"l_audit_files_wo_keywords", "QLabel", "Files Without Key Words"},
            }));
    // Several found files can be chosen at once for "Selected files only?".
    EXPECT_EQ(wb.find<QListView>("o_search_list")->selectionMode(),
              QAbstractItemView::ExtendedSelection);
    // Measured outside the window's page stack.
    SearchTab search(wb);
    AuditTab audit(wb);
    for (QWidget* page : {static_cast<QWidget*>(&search), static_cast<QWidget*>(&audit)}) {
        EXPECT_TRUE(fits_page_area(*page)) << page->objectName().toStdString();
        grab_if_asked(*page, page->objectName());
    }
}
