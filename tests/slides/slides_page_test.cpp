#include "slides/slides_tab.h"
#include "support/page_checks.h"
#include "support/test_workbench.h"

#include <QComboBox>

#include <gtest/gtest.h>

TEST(SlidesTab, CarriesItsNamedControlsWithinThePage) {
    WindowFont font;
    TestHome home;
    TestWorkbench wb(home);
    wb.add_page<SlidesTab>("Slides");
    EXPECT_TRUE(has_controls(wb, {
                                     {"o_slides_show_name", "QComboBox"},
                                     {"o_slides_filelist", "QListWidget"},
                                     {"f_slides", "QGroupBox"},
                                     {"f_slides_image_view", "QGroupBox", "Image Preview"},
                                     {"o_slides_image_view", "ImageView"},
                                     {"o_slides_music", "QListWidget"},
                                     {"o_slides_slide_show_delay", "QLineEdit"},
                                     {"o_slides_slide_show_loop", "QCheckBox"},
                                     {"b_slides_save_show", "QPushButton", "Save All"},
                                     {"b_slides_delete_show", "QPushButton", "Delete Show"},
                                     {"b_slides_add_music", "QPushButton"},
                                     {"b_slides_del_music", "QPushButton"},
                                     {"b_slides_play", "QPushButton", "Play Music"},
                                     {"b_slides_start_show", "QPushButton", "Start Slide Show"},
                                 }));
    // A show's title is typed into the box as well as chosen from it.
    EXPECT_TRUE(wb.find<QComboBox>("o_slides_show_name")->isEditable());

    SlidesTab alone(wb);
    EXPECT_TRUE(fits_page_area(alone));
    grab_if_asked(alone, "slides");
}
