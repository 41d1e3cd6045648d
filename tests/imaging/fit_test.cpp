#include "imaging/image_control.h"
#include "imaging/image_view.h"
#include "lists/image_panels.h"
#include "lists/panel_table.h"
#include "shell/main_window.h"
#include "support/page_checks.h"
#include "support/test_home.h"

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

TEST(FitArithmetic, PicturesFitOnAFrameOf3000By2000Twips) {
    // Over the frame, each side is first trimmed to the frame + 300 (3300 x
    // 2300), then scaled to the width less 300 and, if still too tall, to the
    // height less 300: the result keeps the trimmed shape, not the picture's.
    const float trimmed_h = 2300.0f * (2700.0f / 3300.0f);
    const struct {
        int w, h, mode;
        float width, height;
    } cases[] = {
        {20, 13, 1, 300, 195},                             // natural size
        {180, 60, 2, 2700, 900},                           // exactly the frame less 300 wide
        {179, 113, 1, 2685, 1695},                         // one twip under on both sides
        {6000, 4000, 3, 2700 * (1700 / trimmed_h), 1700},  // both sides over
        {100, 1000, 3, 1500 * 1700.0f / 2300, 1700},       // only the height over
    };
    ImageControl c;
    for (const auto& k : cases) {
        SCOPED_TRACE(QString("%1 x %2").arg(k.w).arg(k.h).toStdString());
        hold(c, k.w, k.h);
        fit_to_frame(c, 3000, 2000);
        EXPECT_EQ(c.view_mode(), k.mode);
        EXPECT_NEAR(c.width(), k.width, 0.01);
        EXPECT_NEAR(c.height(), k.height, 0.01);
    }
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
