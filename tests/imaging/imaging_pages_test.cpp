#include "imaging/printing_tab.h"
#include "imaging/scan_tab.h"
#include "support/page_checks.h"
#include "support/test_workbench.h"

#include <QListView>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>

#include <gtest/gtest.h>

// The lists and viewers are found by name in the panel-click flow, the Scan
// tab's list controls in its list tests.
TEST(ScanAndPrintingTabs, CarryTheirNamedControlsWithinThePage) {
    WindowFont font;
    TestHome home;
    TestWorkbench wb(home);
    wb.add_page<ScanTab>("Scan");
    wb.add_page<PrintingTab>("Printing");
    EXPECT_TRUE(
        has_controls(wb, {
                             {"b_scan_get_device", "QPushButton", "Select Source"},
                             {"b_scan_get_image", "QPushButton", "Scan Image"},
                             {"o_scan_update_list_0", "QRadioButton", "Use entire list"},
                             {"o_scan_update_list_1", "QRadioButton", "Use selected files"},
                             {"o_scan_append_files", "QCheckBox", "Append files (not replace)"},
                             {"b_scan_update_database", "QPushButton", "Database"},
                             {"f_scan_image_view", "QGroupBox", "Image Preview"},
                             {"f_printing", "QGroupBox"},
                             {"f_printing_image_view", "QGroupBox", "Image Preview"},
                             {"o_printing_printer", "QComboBox"},
                             {"l_printing_layout", "QLabel", "Page Layout"},
                             {"o_printing_layout", "QComboBox"},
                             {"o_printer_print_quality", "QComboBox"},
                             {"o_printing_orientation_0", "QRadioButton", "Portrait"},
                             {"o_printing_orientation_1", "QRadioButton", "Landscape"},
                             {"o_printing_print_selected_files", "QCheckBox"},
                             {"o_printing_use_max_size", "QCheckBox"},
                             {"b_printing_print_now", "QPushButton", "Print Image(s)"},
                             {"b_printing_cancel_print", "QPushButton", "Cancel Printing"},
                         }));
    EXPECT_EQ(wb.find<QListView>("o_scan_file_list")->selectionMode(),
              QAbstractItemView::ExtendedSelection);
    EXPECT_EQ(wb.find<QListView>("o_printing_file_list")->selectionMode(),
              QAbstractItemView::ExtendedSelection);
    // Cancel only means something while a job runs.
    EXPECT_TRUE(wb.find<QPushButton>("b_printing_print_now")->isEnabled());
    EXPECT_FALSE(wb.find<QPushButton>("b_printing_cancel_print")->isEnabled());
    // Neither orientation is chosen until the settings say which.
    EXPECT_FALSE(wb.find<QRadioButton>("o_printing_orientation_0")->isChecked());
    EXPECT_FALSE(wb.find<QRadioButton>("o_printing_orientation_1")->isChecked());

    ScanTab scan(wb);
    EXPECT_TRUE(fits_page_area(scan));
    grab_if_asked(scan, "scan");
    PrintingTab printing(wb);
    EXPECT_TRUE(fits_page_area(printing));
    grab_if_asked(printing, "printing");
}
