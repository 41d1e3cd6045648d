#include "pages/index_tab.h"
#include "pages/templates_tab.h"
#include "pages/web_pages_tab.h"
#include "support/page_checks.h"
#include "support/test_workbench.h"

#include <QCheckBox>
#include <QComboBox>
#include <QRadioButton>

#include <QtTest/QTest>

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

// The frame type and the index type are separate choices, and the check box
// belongs to neither.
TEST(PageLayout, IndexChoicesAreSeparateGroups) {
    TestHome home;
    TestWorkbench wb(home);
    wb.add_page<IndexTab>(QStringLiteral("Index"));
    auto radio = [&](const char* name) { return wb.find<QRadioButton>(name); };
    radio("o_index_type_0")->setChecked(true);
    radio("o_index_frame_type_2")->setChecked(true);
    wb.find<QCheckBox>("o_index_new_browser")->setChecked(true);
    radio("o_index_frame_type_0")->setChecked(true);
    EXPECT_FALSE(radio("o_index_frame_type_2")->isChecked());
    EXPECT_TRUE(radio("o_index_type_0")->isChecked());
    radio("o_index_type_1")->setChecked(true);
    EXPECT_FALSE(radio("o_index_type_0")->isChecked());
    EXPECT_TRUE(radio("o_index_frame_type_0")->isChecked());
    EXPECT_TRUE(wb.find<QCheckBox>("o_index_new_browser")->isChecked());
}

// Enter in an editable combo box adds no entry that is in no table.
TEST(PageLayout, EnterInAnEditableComboAddsNoEntry) {
    TestHome home;
    TestWorkbench wb(home);
    wb.add_page<WebPagesTab>(QStringLiteral("Web Pages"));
    for (const char* name : {"o_html_image_template", "o_html_profile_name"}) {
        SCOPED_TRACE(name);
        auto* combo = wb.find<QComboBox>(name);
        ASSERT_TRUE(combo && combo->isEditable());
        const int rows = combo->count();
        combo->setEditText("typed name");
        QTest::keyClick(combo, Qt::Key_Return);
        EXPECT_EQ(combo->count(), rows);
        EXPECT_EQ(combo->findText("typed name"), -1);
    }
}
