#include "catalog/search_tab.h"
#include "core/run_error.h"
#include "imaging/image_view.h"
#include "imaging/printing_tab.h"
#include "imaging/scan_tab.h"
#include "lists/file_list_view.h"
#include "slides/slides_tab.h"
#include "support/test_workbench.h"

#include <QApplication>
#include <QListWidget>
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
