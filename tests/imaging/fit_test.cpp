#include "imaging/image_control.h"
#include "imaging/image_view.h"
#include "imaging/resize_tab.h"
#include "lists/image_panels.h"
#include "lists/panel_table.h"
#include "shell/main_window.h"
#include "support/page_checks.h"
#include "support/test_workbench.h"

#include <QGroupBox>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

// A viewer holding a picture of `w` x `h` pixels (15 twips a pixel).
void hold(ImageControl& c, int w, int h) {
    QImage img(w, h, QImage::Format_RGB32);
    img.fill(Qt::gray);
    c.set_picture(img);
}

}  // namespace

TEST(FitArithmetic, SmallPicturesStayNaturalAndTheLimitIsInclusive) {
    ImageControl c;
    // 300 x 195 twips in a frame of 3000 x 2000: natural size, mode 1.
    hold(c, 20, 13);
    fit_to_frame(c, 3000, 2000);
    EXPECT_EQ(c.view_mode(), 1);
    EXPECT_FLOAT_EQ(c.width(), 300);
    EXPECT_FLOAT_EQ(c.height(), 195);

    // Exactly the frame less 300 wide: r = 1, mode 2, and nothing else moves.
    hold(c, 180, 60);
    fit_to_frame(c, 3000, 2000);
    EXPECT_EQ(c.view_mode(), 2);
    EXPECT_FLOAT_EQ(c.width(), 2700);
    EXPECT_FLOAT_EQ(c.height(), 900);

    // One twip under the limit on both sides stays natural.
    hold(c, 179, 113);
    fit_to_frame(c, 3000, 2000);
    EXPECT_EQ(c.view_mode(), 1);
}

TEST(FitArithmetic, EachSideOverTheFrameIsTrimmedBeforeTheRatios) {
    ImageControl c;
    // 90000 x 60000 twips: trimmed to 3300 x 2300, scaled to the width (2700)
    // then to the height (1700), keeping the trimmed shape, not the picture's.
    hold(c, 6000, 4000);
    fit_to_frame(c, 3000, 2000);
    EXPECT_EQ(c.view_mode(), 3);
    const float w2 = 2700.0f;
    const float h2 = 2300.0f * (2700.0f / 3300.0f);
    EXPECT_NEAR(c.height(), 1700, 0.01);
    EXPECT_NEAR(c.width(), w2 * (1700.0f / h2), 0.01);
    EXPECT_NEAR(c.width() / c.height(), 3300.0 / 2300.0, 1e-4);

    // Only the height over the frame: trimmed to 2300, then fitted on it.
    hold(c, 100, 1000);
    fit_to_frame(c, 3000, 2000);
    EXPECT_EQ(c.view_mode(), 3);
    EXPECT_NEAR(c.height(), 1700, 0.01);
    EXPECT_NEAR(c.width(), 1500 * 1700.0 / 2300.0, 0.01);
}

TEST(FitArithmetic, ControlStateRules) {
    ImageControl c;
    // ViewMode 1 with nothing loaded keeps the cleared size.
    c.set_width(1815);
    c.set_height(1215);
    c.set_view_mode(1);
    EXPECT_FLOAT_EQ(c.width(), 1815);
    EXPECT_FLOAT_EQ(c.height(), 1215);
    EXPECT_TRUE(c.shown_size().isEmpty());

    // ThumbSize stays after a save unless the caller restores it.
    QTemporaryDir dir;
    hold(c, 300, 200);
    c.set_thumb_size(64);
    c.save_jpeg(dir.path() + "/t.jpg");
    EXPECT_EQ(c.thumb_size(), 64);

    // Rotate turns the picture and, in mode 1, the control with it.
    c.set_thumb_size(0);
    c.set_view_mode(1);
    c.rotate(1);
    EXPECT_EQ(c.image_width(), 200);
    EXPECT_EQ(c.image_height(), 300);
    EXPECT_FLOAT_EQ(c.width(), 200 * 15);
    EXPECT_EQ(c.picture(QSize(200, 300)).size(), QSize(200, 300));
}

TEST(FitArithmetic, PanelsFitOnTheirFrameAndNonImagesClearTheViewer) {
    TestHome home;
    TestWorkbench wb(home);
    wb.add_page<ResizeTab>("Resize");
    auto* frame = wb.find<QGroupBox>("f_thumbnail_image_view");
    auto* viewer = wb.find<ImageView>("o_thumbnail_image_view");
    ASSERT_TRUE(frame && viewer);
    const QString big = home.write_image("big.png", 900, 100);
    show_panel_file(wb, "thumbnail", big);
    EXPECT_EQ(home.app.preview_file, big);
    EXPECT_EQ(home.app.selected_file, big);
    EXPECT_EQ(viewer->control().view_mode(), 2);
    EXPECT_FLOAT_EQ(viewer->control().width(), float(frame->width()) * 15 - 300);
    EXPECT_EQ(viewer->width(), (frame->width() * 15 - 300) / 15);

    // A file that is no image: the viewer is cleared, the preview file kept.
    show_panel_file(wb, "thumbnail", home.write_file("notes.txt", "x"));
    EXPECT_TRUE(viewer->control().file_name().isEmpty());
    EXPECT_FLOAT_EQ(viewer->control().width(), 1815);
    EXPECT_FLOAT_EQ(viewer->control().height(), 1215);
    EXPECT_EQ(home.app.preview_file, big);

    // ".tif" in a directory name makes an image of a text file; with the
    // resuming handler the load fails quietly and the rest still runs.
    const QString text = home.write_file("x.tif.d/readme", "text");
    show_panel_file(wb, "thumbnail", text);
    EXPECT_EQ(home.app.preview_file, text);
    EXPECT_TRUE(viewer->control().file_name().isEmpty());

    // Any other word does nothing.
    fit_panel(wb, "elsewhere");
    show_panel_file(wb, "elsewhere", big);
    EXPECT_EQ(home.app.preview_file, text);
}

TEST(FitArithmetic, EveryTabShowsItsFittedPictureWhollyInsideItsFrame) {
    WindowFont font;
    TestHome home;
    MainWindow window(home.app, home.dialogs, home.shell);
    // Larger than every frame on both sides, and one only taller than them.
    const QString big = home.write_image("big.png", 1200, 900);
    const QString narrow = home.write_image("narrow.png", 60, 1200);
    const char* words[] = {"main", "load", "printing", "scan", "search", "slides", "thumbnail"};
    for (const char* word : words) {
        for (const QString& file : {big, narrow}) {
            SCOPED_TRACE(std::string(word) + " " + file.toStdString());
            show_panel_file(window, word, file);
            const Panel p = find_panel(window, word);
            ASSERT_TRUE(p.frame && p.viewer);
            EXPECT_EQ(p.viewer->control().view_mode(), 3);
            // The frame's own border stays clear of the picture.
            const QRect inside = p.frame->rect().adjusted(1, 1, -1, -1);
            EXPECT_TRUE(inside.contains(p.viewer->geometry()))
                << "frame " << p.frame->width() << "x" << p.frame->height() << ", viewer at "
                << p.viewer->x() << "," << p.viewer->y() << " " << p.viewer->width() << "x"
                << p.viewer->height();
        }
    }
}
