
#include "imaging/image_view.h"
#include "imaging/preview_window.h"
#include "slides/music_device.h"
#include "support/test_workbench.h"

#include <QFrame>
#include <QTest>

#include <gtest/gtest.h>

namespace {

// A device that records the operations sent to it.
class RecordingDevice : public MusicDevice {
public:
    bool open(const QString& path, const QString&) override {
        ops << "open " + path;
        return true;
    }
    void play() override { ops << "play"; }
    void pause() override { ops << "pause"; }
    void resume() override { ops << "resume"; }
    void stop() override { ops << "stop"; }
    void close() override { ops << "close"; }
    qint64 length() const override { return 0; }
    qint64 position() const override { return 0; }
    void set_speed(int percent) override { ops << QString("speed %1").arg(percent); }
    void set_mute(bool on) override { ops << (on ? "mute" : "unmute"); }
    QStringList ops;
};

struct PreviewFixture : ::testing::Test {
    TestHome home;
    TestWorkbench wb{home};
    float frame_w(PreviewWindow& p) { return float(p.frame()->width()) * 15; }
    float frame_h(PreviewWindow& p) { return float(p.frame()->height()) * 15; }
};

}  // namespace

TEST_F(PreviewFixture, LoadFitsThePictureOnTheFrameAndRestoringLaysOutAgain) {
    PreviewWindow p(wb);
    p.resize(500, 400);
    p.lay_out();
    // The layout: frame 200 twips less than the window's height, 400 less than
    // its width; the image 300 and 400 less than the frame.
    EXPECT_EQ(p.frame()->size(), QSize(500 - 27, 400 - 13));
    EXPECT_FLOAT_EQ(p.image()->control().height(), frame_h(p) - 300);
    EXPECT_FLOAT_EQ(p.image()->control().width(), frame_w(p) - 400);

    home.app.preview_file = home.write_image("small.png", 120, 80);
    p.load();
    ImageControl& c = p.image()->control();
    EXPECT_EQ(p.windowTitle(), home.app.preview_file);
    EXPECT_EQ(c.view_mode(), 1);
    EXPECT_FLOAT_EQ(c.width(), 120 * 15);
    EXPECT_EQ(p.image()->size(), QSize(120, 80));

    // Wider than the frame: the width is first trimmed to the frame + 300
    // (7095 + 300 twips), then the picture scaled to the frame - 300, so it
    // keeps the trimmed shape, not its own.
    ASSERT_FLOAT_EQ(frame_w(p), 7095);
    const QString wide = home.write_image("wide.png", 1000, 200);
    home.app.preview_file = wide;
    p.load();
    EXPECT_EQ(c.view_mode(), 2);
    EXPECT_FLOAT_EQ(c.width(), 6795);
    EXPECT_NEAR(c.height(), 3000.0 * 6795 / 7395, 0.01);
    home.app.preview_file = home.write_image("tall.png", 300, 3000);
    p.load();
    EXPECT_EQ(c.view_mode(), 3);
    EXPECT_FLOAT_EQ(c.height(), frame_h(p) - 300);

    // A file that cannot be read leaves the last picture and caption.
    const QString shown = home.app.preview_file;
    home.app.preview_file = home.write_file("bad.jpg", "not a picture");
    p.load();
    EXPECT_EQ(c.file_name(), shown);
    EXPECT_EQ(p.windowTitle(), shown);

    // Restored from the task bar: laid out once more, not loaded again.
    home.app.preview_file = wide;
    p.load();
    p.show();
    c.set_width(1000);
    home.app.preview_file = home.write_image("b.png", 10, 10);
    p.showMinimized();
    p.showNormal();
    EXPECT_FLOAT_EQ(c.width(), frame_w(p) - 400);
    EXPECT_EQ(c.view_mode(), 2);
    EXPECT_EQ(c.file_name(), wide);
}

TEST_F(PreviewFixture, SpaceTogglesThePauseOtherKeysDoNothingMore) {
    RecordingDevice device;
    PreviewWindow p(wb);
    p.resize(400, 300);
    home.app.preview_file = home.write_image("a.png", 50, 40);
    p.load();
    p.show();

    // No device: the flag and the pointer still change.
    QTest::keyClick(&p, Qt::Key_Space);
    EXPECT_TRUE(home.app.slide_show_paused);
    EXPECT_EQ(p.image()->control().mouse_pointer(), 11);
    EXPECT_TRUE(home.ui.busy());
    EXPECT_EQ(home.ui.yields, 1);
    QTest::keyClick(p.image(), Qt::Key_Space);  // the image's own key event: the same routine
    EXPECT_FALSE(home.app.slide_show_paused);
    EXPECT_EQ(p.image()->control().mouse_pointer(), 0);
    EXPECT_FALSE(home.ui.busy());

    home.app.music_device = &device;
    QTest::keyClick(&p, Qt::Key_A);
    QTest::keyClick(&p, Qt::Key_Escape);
    EXPECT_TRUE(p.isVisible());
    EXPECT_FALSE(home.app.slide_show_paused);
    QTest::keyClick(&p, Qt::Key_Space);
    QTest::keyClick(&p, Qt::Key_Space);
    EXPECT_EQ(device.ops, QStringList({"pause", "resume"}));

    // Closing stops the music and gives the tabs back.
    wb.set_tabs_enabled(false);
    p.close();
    EXPECT_EQ(device.ops, QStringList({"pause", "resume", "stop", "close"}));
    EXPECT_TRUE(wb.tabs_enabled);
    home.app.music_device = nullptr;
}
