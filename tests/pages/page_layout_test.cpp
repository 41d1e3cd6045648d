#include "pages/templates_tab.h"
#include "pages/web_pages_tab.h"
#include "support/page_checks.h"
#include "support/test_workbench.h"

#include <QLineEdit>

#include <gtest/gtest.h>

TEST(TemplatesTabPage, CarriesItsNamedControlsWithinThePage) {
    WindowFont font;
    TestHome home;
    TestWorkbench wb(home);
    wb.add_page<TemplatesTab>("Templates");
    EXPECT_TRUE(
        has_controls(wb, {{"o_template_list", "QListWidget"},
                          {"o_template_description", "QLineEdit"},
                          {"b_template_new", "QPushButton", "Add New Template"},
                          {"b_template_update", "QPushButton", "Update Template Description"},
                          {"o_template_delete", "QPushButton", "Delete Template"},
                          {"b_template_edit", "QPushButton", "Edit Template"},
                          {"b_template_create_page", "QPushButton", "Create Output"}}));
    TemplatesTab alone(wb);
    EXPECT_TRUE(fits_page_area(alone));
    grab_if_asked(alone, "templates");
}

TEST(WebPagesTabPage, CarriesItsNamedControlsWithinThePage) {
    WindowFont font;
    TestHome home;
    TestWorkbench wb(home);
    wb.add_page<WebPagesTab>("Web Pages");
    EXPECT_TRUE(
        has_controls(wb, {{"o_html_target_directory", "QLineEdit"},
                          {"l_html_target_directory", "QLabel", "Target Directory"},
                          {"b_html_select_target_dir", "QPushButton", "Select Directory"},
                          {"o_html_image_page", "QLineEdit"},
                          {"l_html_image_page", "QLabel", "HTML File Name"},
                          {"o_html_image_template", "QComboBox"},
                          {"l_html_image_template", "QLabel", "Template"},
                          {"o_html_image_max_size", "QLineEdit"},
                          {"l_html_image_max_size", "QLabel", "Max Image Size"},
                          {"o_html_thumbnail_size", "QLineEdit"},
                          {"l_html_thumbnail_size", "QLabel", "Thumbnail Size"},
                          {"o_html_background_image", "QLineEdit"},
                          {"l_html_background_image", "QLabel", "Background Image"},
                          {"b_html_select_background", "QPushButton", "Select File"},
                          {"o_html_background_color", "QLabel"},
                          {"l_html_background_color", "QLabel", "Background Color"},
                          {"o_html_text_color", "QLabel"},
                          {"l_html_text_color", "QLabel", "Text Color"},
                          {"b_html_select_background_color", "QPushButton", "Select Color"},
                          {"o_html_delete_files", "QCheckBox", "Delete files in target directory"},
                          {"o_html_make_slide_show", "QCheckBox", "Make slide show"},
                          {"o_html_slide_show_delay", "QLineEdit"},
                          {"l_html_slide_show_delay", "QLabel", "Delay Between Slides"},
                          {"o_html_slide_show_loop", "QCheckBox", "Continuous Slide Show Loop"},
                          {"o_html_total_file_count", "QLineEdit"},
                          {"l_html_total_file_count", "QLabel", "Total File Count"},
                          {"o_html_total_file_size", "QLineEdit"},
                          {"l_html_total_file_size", "QLabel", "Total File Size (MB)"},
                          {"f_html_profiles", "QGroupBox", "Profiles"},
                          {"o_html_profile_name", "QComboBox"},
                          {"b_html_save_profile", "QPushButton", "Save"},
                          {"b_html_delete_profile", "QPushButton", "Delete"},
                          {"b_html_create_html", "QPushButton", "Create Web Page(s)"},
                          {"b_webpages_stop_create", "QPushButton", "Stop Creating Web Page(s)"}}));
    EXPECT_EQ(wb.find<QLineEdit>("o_html_image_page")->text(), "index.htm");
    EXPECT_TRUE(wb.find<QLineEdit>("o_html_total_file_count")->isReadOnly());
    WebPagesTab alone(wb);
    EXPECT_TRUE(fits_page_area(alone));
    grab_if_asked(alone, "web_pages");
}
