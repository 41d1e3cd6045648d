#include "pages/index_tab.h"
#include "pages/templates_tab.h"
#include "pages/web_pages_tab.h"
#include "support/page_checks.h"
#include "support/test_workbench.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QRadioButton>

#include <QtTest/QTest>

#include <gtest/gtest.h>

namespace {

// Builds page T on a workbench, checks its controls (those the flow tests
// already find by name are left out unless they carry a caption), lays a
// second copy out in the page area, and leaves `check` to look further.
template <class T>
void check_page(const char* tab, const char* grab, const std::vector<ExpectedControl>& controls,
                const std::function<void(TestWorkbench&)>& check = nullptr) {
    SCOPED_TRACE(tab);
    WindowFont font;
    TestHome home;
    TestWorkbench wb(home);
    wb.add_page<T>(QLatin1String(tab));
    EXPECT_TRUE(has_controls(wb, controls));
    if (check) {
        check(wb);
    }
    T alone(wb);
    EXPECT_TRUE(fits_page_area(alone));
    grab_if_asked(alone, QLatin1String(grab));
}

}  // namespace

TEST(PageLayout, EachPageCarriesItsNamedControlsWithinThePage) {
    check_page<IndexTab>("Index", "index",
                         {{"o_index_target_directory", "QLineEdit"},
                          {"l_index_target_directory", "QLabel", "Target Directory"},
                          {"b_index_select_target_directory", "QPushButton", "Select Directory"},
                          {"o_index_frame_type_0", "QRadioButton", "No Frames"},
                          {"o_index_frame_type_1", "QRadioButton", "Top/Left/Right"},
                          {"o_index_frame_type_2", "QRadioButton", "Left/Right"},
                          {"o_index_type_0", "QRadioButton", "Use thumbnail images as the index"},
                          {"o_index_type_1", "QRadioButton", "Use filenames as the index"},
                          {"o_index_new_browser", "QCheckBox", "Index link loads a new browser?"},
                          {"o_index_no_frame", "QComboBox"},
                          {"o_index_left_frame", "QComboBox"},
                          {"o_index_right_frame", "QComboBox"},
                          {"o_index_top_frame", "QComboBox"},
                          {"o_index_file_name", "QLineEdit"},
                          {"o_index_left_frame_file_name", "QLineEdit"},
                          {"o_index_right_frame_file_name", "QLineEdit"},
                          {"o_index_top_frame_file_name", "QLineEdit"},
                          {"b_index_create", "QPushButton", "Create Index"}},
                         [](TestWorkbench& wb) {
                             // The frame type and the index type are separate choices, and the
                             // check box belongs to neither.
                             auto radio = [&](const char* name) {
                                 return wb.find<QRadioButton>(name);
                             };
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
                         });

    check_page<TemplatesTab>("Templates", "templates",
                             {{"b_template_new", "QPushButton", "Add New Template"},
                              {"b_template_update", "QPushButton", "Update Template Description"},
                              {"o_template_delete", "QPushButton", "Delete Template"},
                              {"b_template_edit", "QPushButton", "Edit Template"},
                              {"b_template_create_page", "QPushButton", "Create Output"}});

    check_page<WebPagesTab>(
        "Web Pages", "web_pages",
        {{"l_html_target_directory", "QLabel", "Target Directory"},
         {"b_html_select_target_dir", "QPushButton", "Select Directory"},
         {"l_html_image_page", "QLabel", "HTML File Name"},
         {"l_html_image_template", "QLabel", "Template"},
         {"l_html_image_max_size", "QLabel", "Max Image Size"},
         {"l_html_thumbnail_size", "QLabel", "Thumbnail Size"},
         {"l_html_background_image", "QLabel", "Background Image"},
         {"b_html_select_background", "QPushButton", "Select File"},
         {"l_html_background_color", "QLabel", "Background Color"},
         {"l_html_text_color", "QLabel", "Text Color"},
         {"b_html_select_background_color", "QPushButton", "Select Color"},
         {"o_html_delete_files", "QCheckBox", "Delete files in target directory"},
         {"o_html_make_slide_show", "QCheckBox", "Make slide show"},
         {"l_html_slide_show_delay", "QLabel", "Delay Between Slides"},
         {"o_html_slide_show_loop", "QCheckBox", "Continuous Slide Show Loop"},
         {"l_html_total_file_count", "QLabel", "Total File Count"},
         {"l_html_total_file_size", "QLabel", "Total File Size (MB)"},
         {"f_html_profiles", "QGroupBox", "Profiles"},
         {"o_html_profile_name", "QComboBox"},
         {"b_html_save_profile", "QPushButton", "Save"},
         {"b_html_delete_profile", "QPushButton", "Delete"},
         {"b_html_create_html", "QPushButton", "Create Web Page(s)"},
         {"b_webpages_stop_create", "QPushButton", "Stop Creating Web Page(s)"}},
        [](TestWorkbench& wb) {
            EXPECT_EQ(wb.find<QLineEdit>("o_html_image_page")->text(), "index.htm");
            EXPECT_TRUE(wb.find<QLineEdit>("o_html_total_file_count")->isReadOnly());
        });
}

// Enter in an editable combo box adds no entry that is in no table.
TEST(PageLayout, EnterInAnEditableComboAddsNoEntry) {
    TestHome home;
    TestWorkbench wb(home);
    wb.add_page<WebPagesTab>(QStringLiteral("Web Pages"));
    for (const char* name : {"o_html_image_template", "o_html_profile_name"}) {
        SCOPED_TRACE(name);
        auto* combo = wb.find<QComboBox>(name);
        ASSERT_TRUE(combo);
        ASSERT_TRUE(combo->isEditable());
        const int rows = combo->count();
        combo->setEditText("typed name");
        QTest::keyClick(combo, Qt::Key_Return);
        EXPECT_EQ(combo->count(), rows);
        EXPECT_EQ(combo->findText("typed name"), -1);
    }
}
