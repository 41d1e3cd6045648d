#include "catalog/audit_tab.h"
#include "catalog/search_tab.h"
#include "support/page_checks.h"
#include "support/test_workbench.h"

#include <gtest/gtest.h>

TEST(CatalogPages, SearchAndAuditFitTheirPage) {
    WindowFont font;
    TestHome home;
    TestWorkbench wb(home);
    // Measured outside the window's page stack.
    SearchTab search(wb);
    AuditTab audit(wb);
    for (QWidget* page : {static_cast<QWidget*>(&search), static_cast<QWidget*>(&audit)}) {
        EXPECT_TRUE(fits_page_area(*page)) << page->objectName().toStdString();
        grab_if_asked(*page, page->objectName());
    }
}
