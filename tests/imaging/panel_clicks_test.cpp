#include "image_samples.h"
#include "imaging/image_control.h"
#include "imaging/image_view.h"
#include "imaging/preview_window.h"
#include "imaging/printing_tab.h"
#include "imaging/scan_tab.h"
#include "support/test_home.h"
#include "support/test_workbench.h"

#include <QAbstractItemView>
#include <QApplication>
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

}  // namespace

// A damaged picture in the Scan and Printing lists passes without a word.
TEST(PanelClicks, ScanAndPrintingShowTheirClickedRowAndOpenThePreviewFromTheirViewers) {
    TestHome home;
    TestWorkbench wb(home);
    auto* scan = wb.add_page<ScanTab>("Scan");
    auto* printing = wb.add_page<PrintingTab>("Printing");
    wb.window().show();
    const QString picture = home.write_image("pics/a.png", 400, 300);
    const QString notes = home.write_file("pics/notes.txt", "words");
    const QString damaged = home.write_file("pics/bad.png", "not a picture");
    const std::tuple<const char*, ItemList*, const char*, const char*> tabs[] = {
        {"Scan", &scan->files(), "o_scan_file_list", "o_scan_image_view"},
        {"Printing", &printing->files(), "o_printing_file_list", "o_printing_image_view"},
    };
    for (const auto& [caption, rows, list_name, viewer_name] : tabs) {
        SCOPED_TRACE(caption);
        auto* list = wb.find<QAbstractItemView>(QLatin1String(list_name));
        auto* viewer = wb.find<ImageView>(QLatin1String(viewer_name));
        wb.enter(caption);
        rows->set_items({picture, notes, damaged});
        const auto click_row = [list](int row) {
            const QModelIndex index = list->model()->index(row, 0);
            QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                              list->visualRect(index).center());
        };
        home.app.preview_file.clear();
        EXPECT_EQ(preview_caption_after_click(viewer), "");  // nothing to preview yet
        click_row(0);
        EXPECT_EQ(viewer->control().file_name(), picture);
        EXPECT_EQ(home.app.selected_file, picture);
        EXPECT_EQ(viewer->control().view_mode(), 3);
        EXPECT_EQ(preview_caption_after_click(viewer), picture);
        click_row(1);
        EXPECT_TRUE(viewer->control().file_name().isEmpty());
        EXPECT_EQ(home.app.preview_file, picture);
        click_row(0);
        click_row(2);
        EXPECT_EQ(home.app.preview_file, damaged);
        EXPECT_EQ(viewer->control().file_name(), picture);
    }
}

TEST(Preview, LoadLaysOutTheFrameAndShowsThePicture) {
    TestHome home;
    TestWorkbench wb(home);
    PreviewWindow p(wb);
    p.resize(500, 400);
    p.lay_out();
    // The layout: frame 200 twips less than the window's height, 400 less than
    // its width; the image 300 and 400 less than the frame.
    EXPECT_EQ(p.frame()->size(), QSize(500 - 27, 400 - 13));
    EXPECT_FLOAT_EQ(p.image()->control().height(), (400 - 13) * 15 - 300);
    EXPECT_FLOAT_EQ(p.image()->control().width(), (500 - 27) * 15 - 400);

    home.app.preview_file = home.write_image("small.png", 120, 80);
    p.load();
    ImageControl& c = p.image()->control();
    EXPECT_EQ(p.windowTitle(), home.app.preview_file);
    EXPECT_EQ(c.view_mode(), 1);
    EXPECT_EQ(p.image()->size(), QSize(120, 80));

    // A file that cannot be read leaves the last picture and caption.
    const QString shown = home.app.preview_file;
    home.app.preview_file = home.write_file("bad.jpg", "not a picture");
    p.load();
    EXPECT_EQ(c.file_name(), shown);
    EXPECT_EQ(p.windowTitle(), shown);
}
