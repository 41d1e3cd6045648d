#include "pages/index_tab.h"
#include "support/page_checks.h"
#include "support/test_workbench.h"

#include <QCheckBox>
#include <QRadioButton>

#include <gtest/gtest.h>

TEST(IndexTab, CarriesItsNamedControlsWithinThePage) {
    WindowFont font;
    TestHome home;
    TestWorkbench wb(home);
    wb.add_page<IndexTab>("Index");
    EXPECT_TRUE(has_controls(
        wb, {
                {"o_index_target_directory", "QLineEdit"},
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
                {"b_index_create", "QPushButton", "Create Index"},
            }));

    // The frame type and the index type are separate choices, and the check
    // box belongs to neither.
    auto radio = [&](const char* name) { return wb.find<QRadioButton>(name); };
    radio("o_index_type_0")->setChecked(true);
    radio("o_index_frame_type_2")->setChecked(true);
    wb.find<QCheckBox>("o_index_new_browser")->setChecked(true);
    EXPECT_TRUE(radio("o_index_type_0")->isChecked());
    radio("o_index_frame_type_0")->setChecked(true);
    EXPECT_FALSE(radio("o_index_frame_type_2")->isChecked());
    EXPECT_TRUE(radio("o_index_type_0")->isChecked());
    radio("o_index_type_1")->setChecked(true);
    EXPECT_FALSE(radio("o_index_type_0")->isChecked());
    EXPECT_TRUE(radio("o_index_frame_type_0")->isChecked());

    IndexTab alone(wb);
    EXPECT_TRUE(fits_page_area(alone));
    grab_if_asked(alone, "index");
}
