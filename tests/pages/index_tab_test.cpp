#include "page_fixture.h"

#include "imaging/resize_tab.h"
#include "pages/index_tab.h"
#include "support/test_workbench.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

namespace {

struct IndexTabFixture : PageFixture {
    IndexTabFixture() : wb(home) {
        wb.add_page<ResizeTab>("Resize");
        page = wb.add_page<IndexTab>("Index");
    }
    QString setting(const char* key) { return home.app.settings.read("Index", key); }

    TestWorkbench wb;
    IndexTab* page = nullptr;
};

}  // namespace

TEST(IndexTab, RestoresAndStoresItsChoicesAndCreatesAThumbnailIndex) {
    IndexTabFixture f;
    ProfileFile& s = f.home.app.settings;
    s.write("Index", "No Frame", "Index No Frames");
    s.write("Index", "Left Frame", "index left frame");  // no row equals it, case counting
    s.write("Index", "Index Type", "FILE NAME");
    s.write("Index", "Frame Type", "top/LEFT/right");
    s.write("Current", "Resize File Type", "Resize");
    f.wb.enter("Index");
    EXPECT_EQ(f.wb.find<QComboBox>("o_index_no_frame")->currentText(), "Index No Frames");
    EXPECT_EQ(f.wb.find<QComboBox>("o_index_left_frame")->currentText(), "");
    EXPECT_TRUE(f.wb.find<QRadioButton>("o_index_type_1")->isChecked());
    EXPECT_TRUE(f.wb.find<QRadioButton>("o_index_frame_type_1")->isChecked());
    s.write("Index", "Frame Type", "NONE");
    f.wb.enter("Index");
    EXPECT_TRUE(f.wb.find<QRadioButton>("o_index_frame_type_0")->isChecked());

    // Each page name box under its own key, both ways.
    for (const auto& [box, key, name] :
         {std::tuple{"o_index_file_name", "Index File Name", "index.htm"},
          {"o_index_top_frame_file_name", "Top Frame File Name", "top.htm"},
          {"o_index_left_frame_file_name", "Left Frame File Name", "toc.htm"},
          {"o_index_right_frame_file_name", "Right Frame File Name", "main.htm"}}) {
        s.write("Index", key, QStringLiteral("stored %1").arg(box));
        f.wb.enter("Index");
        EXPECT_EQ(f.wb.find<QLineEdit>(box)->text(), QStringLiteral("stored %1").arg(box));
        f.wb.find<QLineEdit>(box)->setText(name);
        EXPECT_EQ(f.setting(key), name);
    }
    f.wb.find<QComboBox>("o_index_right_frame")->setCurrentText("Index Right Frame");
    f.home.dialogs.answer_directory(f.target);
    f.wb.find<QPushButton>("b_index_select_target_directory")->click();
    f.wb.find<QRadioButton>("o_index_type_0")->setChecked(true);
    f.wb.find<QRadioButton>("o_index_frame_type_0")->setChecked(true);
    EXPECT_EQ(f.setting("Target Directory"), f.target);
    EXPECT_EQ(f.setting("Index Type"), "Thumbnail");
    EXPECT_EQ(f.setting("Frame Type"), "None");
    // The refill of the boxes on entry keeps the stored names.
    f.wb.enter("Index");
    EXPECT_EQ(f.wb.find<QComboBox>("o_index_right_frame")->currentText(), "Index Right Frame");

    // A thumbnail index sets the Resize tab up for thumbnails into the target.
    f.home.write_image("target/a.jpg", 300, 200);
    f.home.app.main_list.set_items({f.source + "/a.jpg"});
    f.wb.find<QPushButton>("b_index_create")->click();
    EXPECT_EQ(f.wb.find<QComboBox>("o_resize_file_type")->currentText(), "Thumbnail");
    EXPECT_EQ(f.wb.find<QLabel>("o_thumbnail_target_directory")->text(), f.target);
    EXPECT_TRUE(read_text(f.target + "/index.htm")
                    .contains("<A href='a.jpg'><img src='a_tn.jpg'></A><BR>"));
}
