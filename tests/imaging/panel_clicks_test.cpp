#include "catalog/search_tab.h"
#include "core/run_error.h"
#include "imaging/image_control.h"
#include "imaging/image_view.h"
#include "imaging/preview_window.h"
#include "imaging/printing_tab.h"
#include "imaging/resize_tab.h"
#include "imaging/scan_tab.h"
#include "lists/file_list_view.h"
#include "lists/image_panels.h"
#include "lists/panel_table.h"
#include "shell/main_window.h"
#include "slides/music_device.h"
#include "slides/slides_tab.h"
#include "support/page_checks.h"
#include "support/test_home.h"
#include "support/test_workbench.h"

#include <QApplication>
#include <QFrame>
#include <QListView>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace {
// Clicks the picture of `viewer` and returns the caption of the modal window
// that opened, closing it; "" when none opened.
QString preview_caption_after_click(ImageView* viewer) {
    QString caption;
    QTimer::singleShot(0, [&] {
        if (QWidget* modal = QApplication::activeModalWidget()) {
            caption = modal->windowTitle();
            EXPECT_EQ(modal->objectName(), "frm_preview_image");
            modal->close();
        }
    });
    QTest::mouseClick(viewer, Qt::LeftButton, {}, QPoint(2, 2));
    // With no window the timer has not run yet: let it, so it closes nothing later.
    QApplication::processEvents();
    return caption;
}

// A viewer holding a picture of `w` x `h` pixels (15 twips a pixel).
void hold(ImageControl& c, int w, int h) {
    QImage img(w, h, QImage::Format_RGB32);
    img.fill(Qt::gray);
    c.set_picture(img);
}

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

TEST(PanelClicks, TheOtherTabsShowTheirClickedRowAndOpenThePreviewFromTheirViewers) {
    TestHome home;
    TestWorkbench wb(home);
    auto* scan = wb.add_page<ScanTab>("Scan");
    auto* printing = wb.add_page<PrintingTab>("Printing");
    auto* search = wb.add_page<SearchTab>("Search");
    wb.add_page<SlidesTab>("Slides");
    wb.window().show();
    const QString picture = home.write_image("pics/a.png", 400, 300);
    const QString notes = home.write_file("pics/notes.txt", "words");
    const QString damaged = home.write_file("pics/bad.png", "not a picture");
    struct Tab {
        const char* caption;
        const char* list;
        const char* viewer;
        bool resumes;  // a damaged picture passes without an error
    };
    const Tab tabs[] = {
        {"Scan", "o_scan_file_list", "o_scan_image_view", true},
        {"Printing", "o_printing_file_list", "o_printing_image_view", true},
        {"Search", "o_search_list", "o_search_image_view", false},
        {"Slides", "o_slides_filelist", "o_slides_image_view", false},
    };
    for (const Tab& t : tabs) {
        SCOPED_TRACE(t.caption);
        auto* list = wb.find<QAbstractItemView>(QLatin1String(t.list));
        auto* viewer = wb.find<ImageView>(QLatin1String(t.viewer));
        ASSERT_TRUE(list && viewer);
        wb.enter(t.caption);
        // The Scan, Printing and Search tabs show their own path lists; the
        // others are plain list boxes.
        auto* box = qobject_cast<QListWidget*>(list);
        const QLatin1String caption(t.caption);
        ItemList* rows = box                     ? nullptr
                         : caption == "Scan"     ? &scan->files()
                         : caption == "Printing" ? &printing->files()
                                                 : &search->results();
        if (box) {
            box->clear();
            box->addItems({picture, notes, damaged});
        } else {
            rows->set_items({picture, notes, damaged});
        }
        const auto click_row = [list](int row) {
            const QModelIndex index = list->model()->index(row, 0);
            QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                              list->visualRect(index).center());
        };

        home.app.preview_file.clear();
        EXPECT_EQ(preview_caption_after_click(viewer), "");  // nothing to preview yet

        click_row(0);
        EXPECT_EQ(viewer->control().file_name(), picture);
        EXPECT_EQ(home.app.preview_file, picture);
        EXPECT_EQ(home.app.selected_file, picture);
        EXPECT_EQ(viewer->control().view_mode(), 3);
        EXPECT_EQ(preview_caption_after_click(viewer), picture);

        click_row(1);
        EXPECT_TRUE(viewer->control().file_name().isEmpty());
        EXPECT_EQ(viewer->control().width(), 1815);
        EXPECT_EQ(home.app.preview_file, picture);

        // A picture that cannot be read: Scan and Printing go on without a
        // word, the others leave the error to the last-resort handler.
        click_row(0);
        if (t.resumes) {
            click_row(2);
            EXPECT_EQ(home.app.preview_file, damaged);
            EXPECT_EQ(viewer->control().file_name(), picture);
        } else if (box) {
            // Emitted, not clicked: the error must not cross the event loop.
            box->setCurrentRow(2);
            EXPECT_THROW(Q_EMIT box->clicked(box->currentIndex()), RunError);
        } else {
            rows->set_list_index(2);
            EXPECT_THROW(Q_EMIT qobject_cast<FileListView*>(list)->left_pressed(), RunError);
        }
    }
}

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

// The controls themselves are found by name in the flows of each tab.
TEST(ImagingTabs, FitThePageAreaAndStartWithNothingUnderWay) {
    WindowFont font;
    TestHome home;
    TestWorkbench wb(home);
    wb.add_page<ScanTab>("Scan");
    wb.add_page<PrintingTab>("Printing");
    wb.add_page<ResizeTab>("Resize");
    for (const char* list : {"o_scan_file_list", "o_printing_file_list", "o_thumbnail_list"}) {
        EXPECT_EQ(wb.find<QListView>(QLatin1String(list))->selectionMode(),
                  QAbstractItemView::ExtendedSelection)
            << list;
    }
    // Cancel only means something while a job runs; no orientation until the settings say.
    EXPECT_TRUE(wb.find<QPushButton>("b_printing_print_now")->isEnabled());
    EXPECT_FALSE(wb.find<QPushButton>("b_printing_cancel_print")->isEnabled());
    EXPECT_FALSE(wb.find<QRadioButton>("o_printing_orientation_0")->isChecked());
    EXPECT_FALSE(wb.find<QRadioButton>("o_printing_orientation_1")->isChecked());

    ScanTab scan(wb);
    PrintingTab printing(wb);
    ResizeTab resize(wb);
    const std::pair<QWidget*, const char*> pages[] = {
        {&scan, "scan"}, {&printing, "printing"}, {&resize, "resize"}};
    for (auto [page, name] : pages) {
        EXPECT_TRUE(fits_page_area(*page)) << name;
        grab_if_asked(*page, name);
    }
}

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
