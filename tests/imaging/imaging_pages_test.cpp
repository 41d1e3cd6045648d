#include "imaging/printing_tab.h"
#include "imaging/resize_tab.h"
#include "imaging/scan_tab.h"
#include "support/page_checks.h"
#include "support/test_workbench.h"

#include <QListView>
#include <QPushButton>
#include <QRadioButton>

#include <gtest/gtest.h>

// The controls themselves are found by name in the flows of each tab.
TEST(ImagingTabs, FitThePageAreaAndStartWithNothingUnderWay) {
    WindowFont font;
    TestHome home;
    TestWorkbench wb(home);
    wb.add_page<ScanTab>("Scan");
    wb.add_page<PrintingTab>("Printing");
    wb.add_page<ResizeTab>("Resize");
    for (const char* list : {"o_scan_file_list", "o_printing_file_list", "o_thumbnail_list"}) {
        EXPECT_EQ(wb.find<QListView>(QLatin1String(list))->selectionMode(),
                  QAbstractItemView::ExtendedSelection)
            << list;
    }
    // Cancel only means something while a job runs; no orientation until the settings say.
    EXPECT_TRUE(wb.find<QPushButton>("b_printing_print_now")->isEnabled());
    EXPECT_FALSE(wb.find<QPushButton>("b_printing_cancel_print")->isEnabled());
    EXPECT_FALSE(wb.find<QRadioButton>("o_printing_orientation_0")->isChecked());
    EXPECT_FALSE(wb.find<QRadioButton>("o_printing_orientation_1")->isChecked());

    ScanTab scan(wb);
    PrintingTab printing(wb);
    ResizeTab resize(wb);
    const std::pair<QWidget*, const char*> pages[] = {
        {&scan, "scan"}, {&printing, "printing"}, {&resize, "resize"}};
    for (auto [page, name] : pages) {
        EXPECT_TRUE(fits_page_area(*page)) << name;
        grab_if_asked(*page, name);
    }
}
