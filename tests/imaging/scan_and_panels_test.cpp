#include "image_samples.h"
#include "imaging/image_control.h"
#include "imaging/image_view.h"
#include "imaging/preview_window.h"
#include "imaging/printing_tab.h"
#include "imaging/scan_tab.h"
#include "imaging/scanner.h"
#include "support/test_home.h"
#include "support/test_workbench.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QImageReader>
#include <QPushButton>
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

// SANE's test backend as the machine's only scanner: a configuration
// directory whose dll.conf names `test`, with the device's defaults in
// test.conf. SANE keeps the directory it first found for the whole process
// but reads the files at each start of the library, so one directory serves
// every test and each test writes its own files.
void configure_scanner(const QByteArray& test_conf, const QByteArray& dll = "test\n") {
    static QTemporaryDir dir;
    static const bool set = qputenv("SANE_CONFIG_DIR", dir.path().toLocal8Bit());
    (void)set;
    write_bytes(dir.path() + "/dll.conf", dll);
    write_bytes(dir.path() + "/test.conf", test_conf);
}

const QByteArray kColourScanner =
    "number_of_devices 2\nmode Color\ntest-picture \"Color pattern\"\nresolution 50.0\n";

struct ScanFixture : ::testing::Test {
    ScanFixture() {
        tab = wb.add_page<ScanTab>("Scan");
        home.app.last_directory = home.dir() + u'/';
    }
    QPushButton* button(const char* name) { return wb.find<QPushButton>(QLatin1String(name)); }
    // The test backend's first device, or why it is not there.
    QString missing_test_device() {
        try {
            for (const Scanner::Source& s : Scanner().sources()) {
                if (s.name == QLatin1String("test:0")) {
                    return {};
                }
            }
            return QStringLiteral("SANE's test backend lists no device test:0");
        } catch (const ScanError& e) {
            return e.text();
        }
    }
    TestHome home;
    TestWorkbench wb{home};
    ScanTab* tab = nullptr;
};

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

TEST(Preview, LoadShowsThePictureAndKeepsItWhenTheNextCannotBeRead) {
    TestHome home;
    TestWorkbench wb(home);
    PreviewWindow p(wb);
    p.resize(500, 400);
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

TEST_F(ScanFixture, ASourceIsChosenAndAScanIsSavedListedOnceAndCatalogued) {
    configure_scanner(kColourScanner);
    if (const QString why = missing_test_device(); !why.isEmpty()) {
        GTEST_SKIP() << why.toStdString();
    }
    wb.enter("Scan");
    // The chooser lists both test devices; the second is remembered.
    home.dialogs.answer_input("test:1 (Noname frontend-tester, virtual device)");
    button("b_scan_get_device")->click();
    ASSERT_EQ(home.dialogs.asked().size(), 1u);
    EXPECT_EQ(home.dialogs.asked().front().file_name,
              "test:0 (Noname frontend-tester, virtual device)\n"
              "test:1 (Noname frontend-tester, virtual device)");
    EXPECT_EQ(home.app.settings.read("Scan", "Source"), "test:1");

    const QString dir = home.dir() + "/scans";
    QDir().mkpath(dir);
    home.dialogs.clear();
    home.dialogs.answer_file(dir + "/first.page.tif");
    button("b_scan_get_image")->click();
    ASSERT_EQ(home.dialogs.asked().size(), 1u);
    EXPECT_EQ(home.dialogs.asked().front().title, "Select New Image File Name");
    EXPECT_EQ(home.dialogs.asked().front().default_text, "JPG (*.jpg)|*.jpg|All Files (*.*)|*.*");
    const QString saved = dir + "/first.jpg";
    QImageReader reader(saved);
    EXPECT_EQ(reader.format(), "jpeg");
    // The test device's defaults: 80 x 100 mm at 50 dots to the inch.
    EXPECT_NEAR(reader.size().width(), 157, 2);
    EXPECT_EQ(tab->files().items(), QStringList({saved}));
    EXPECT_EQ(home.app.last_directory, dir + u'/');

    // The same name in other letters is saved over and keeps its one row;
    // a name without "." gets ".jpg".
    home.dialogs.answer_file(dir + "/FIRST.jpg");
    button("b_scan_get_image")->click();
    home.dialogs.answer_file(dir + "/second");
    button("b_scan_get_image")->click();
    EXPECT_EQ(tab->files().items(), QStringList({saved, dir + "/second.jpg"}));

    // On to the catalog.
    wb.find<QComboBox>("o_scan_catalog")->setEditText("Scans");
    button("b_scan_update_database")->click();
    EXPECT_EQ(query_column(home.app,
                           "select filename from filenames where catalog='Scans' "
                           "order by filename"),
              QStringList({saved, dir + "/second.jpg"}));
}

// No scanner, and a scanner that fails during the transfer: a box each time,
// and the tab goes on working.
TEST_F(ScanFixture, ScannerFailuresEndInABox) {
    configure_scanner("", "");
    button("b_scan_get_device")->click();
    button("b_scan_get_image")->click();
    EXPECT_EQ(home.dialogs.messages(),
              QStringList({"An error occurred searching for a scanning device.",
                           "An error occurred searching for a scanning device."}));
    configure_scanner(kColourScanner + "read-status-code \"SANE_STATUS_JAMMED\"\n");
    if (const QString why = missing_test_device(); !why.isEmpty()) {
        GTEST_SKIP() << why.toStdString();
    }
    home.dialogs.clear();
    button("b_scan_get_image")->click();
    EXPECT_EQ(home.dialogs.messages(), QStringList({"Document feeder jammed"}));
    EXPECT_FALSE(home.ui.busy());
    EXPECT_TRUE(tab->files().empty());
}
