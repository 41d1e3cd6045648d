#include "pages/index_tab.h"
#include "pages/templates_tab.h"
#include "pages/web_pages_tab.h"
#include "support/page_checks.h"
#include "support/test_workbench.h"

#include <gtest/gtest.h>

namespace {

// Lays page T out alone in the page area; the captions and names come from
// its form, and the flow tests find each control they use by name.
template <class T>
void check_page(const char* tab, const char* grab) {
    SCOPED_TRACE(tab);
    WindowFont font;
    TestHome home;
    TestWorkbench wb(home);
    T alone(wb);
    EXPECT_TRUE(fits_page_area(alone));
    grab_if_asked(alone, QLatin1String(grab));
}

}  // namespace

TEST(PageLayout, EachPageFitsThePageArea) {
    check_page<IndexTab>("Index", "index");
    check_page<TemplatesTab>("Templates", "templates");
    check_page<WebPagesTab>("Web Pages", "web_pages");
}
