#include "image_samples.h"
#include "imaging/scan_tab.h"
#include "imaging/scanner.h"
#include "support/test_workbench.h"

#include <QComboBox>
#include <QImageReader>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

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

TEST_F(ScanFixture, ASourceIsChosenAndAScanIsSavedListedOnceAndPassedOnOrCancelled) {
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
    EXPECT_FALSE(home.ui.busy());

    // The same name in other letters is saved over and keeps its one row;
    // a name without "." gets ".jpg".
    home.dialogs.answer_file(dir + "/FIRST.jpg");
    button("b_scan_get_image")->click();
    home.dialogs.answer_file(dir + "/second");
    button("b_scan_get_image")->click();
    EXPECT_EQ(tab->files().items(), QStringList({saved, dir + "/second.jpg"}));

    // On to the main list and the catalog.
    wb.find<QRadioButton>("o_scan_update_list_0")->setChecked(true);
    button("b_scan_update_main_list")->click();
    EXPECT_EQ(home.app.main_list.items(), QStringList({saved, dir + "/second.jpg"}));
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
