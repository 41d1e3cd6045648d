#include "shell/spare_tab.h"
#include "support/page_checks.h"
#include "support/test_workbench.h"

#include <gtest/gtest.h>

TEST(SpareTab, IsAnEmptyPage) {
    TestHome home;
    TestWorkbench wb(home);
    auto* page = wb.add_page<SpareTab>("11");
    EXPECT_TRUE(page->findChildren<QWidget*>().isEmpty());
    wb.enter("11");
    EXPECT_EQ(wb.current_tab_caption(), "11");
}
