#include "imaging/image_view.h"
#include "imaging/scan_command.h"
#include "imaging/scan_tab.h"
#include "imaging/scanner.h"
#include "support/page_checks.h"
#include "support/test_workbench.h"

#include <QComboBox>
#include <QFile>
#include <QImageReader>
#include <QPushButton>
#include <QRadioButton>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

// SANE's test backend as the machine's only scanner: a configuration
// directory whose dll.conf names `test`, with the device's defaults in
// test.conf. SANE keeps the directory it first found for the whole process
// but reads the files at each start of the library, so one directory serves
// every test and each test writes its own files.
class TestScannerConfig {
public:
    explicit TestScannerConfig(const QByteArray& test_conf, const QByteArray& dll = "test\n") {
        write("dll.conf", dll);
        write("test.conf", test_conf);
    }

private:
    static const QString& directory() {
        static QTemporaryDir dir;
        static const bool set = qputenv("SANE_CONFIG_DIR", dir.path().toLocal8Bit());
        (void)set;
        static const QString path = dir.path();
        return path;
    }
    static void write(const char* name, const QByteArray& bytes) {
        QFile f(directory() + u'/' + QLatin1String(name));
        if (f.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
            f.write(bytes);
        }
    }
};

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
            Scanner scanner;
            for (const Scanner::Source& s : scanner.sources()) {
                if (s.name == QLatin1String("test:0")) {
                    return {};
                }
            }
            return QStringLiteral("SANE's test backend lists no device test:0");
        } catch (const ScanError& e) {
            return e.text();
        }
    }
    ImageControl& viewer() { return wb.find<ImageView>("o_scan_image_view")->control(); }
    TestHome home;
    TestWorkbench wb{home};
    ScanTab* tab = nullptr;
};

}  // namespace

TEST(ScanFileName, FollowsTheFirstDotOfTheFileName) {
    struct Case {
        const char* chosen;
        const char* saved;
        const char* directory;  // "" when the last directory is left alone
    };
    const Case cases[] = {
        {"/p/a.b.tif", "/p/a.jpg", "/p/"},
        {"/p/scan.jpg", "/p/scan.jpg", "/p/"},
        {"/p.q/page", "/p.q/page", "/p.q/"},
        {"/p/page", "/p/page.jpg", ""},
    };
    for (const Case& c : cases) {
        QString dir;
        EXPECT_EQ(scan_file_name(c.chosen, &dir), c.saved) << c.chosen;
        EXPECT_EQ(dir, c.directory) << c.chosen;
    }
}

TEST_F(ScanFixture, ASourceIsChosenAndAScanIsSavedListedOnceAndPassedOnOrCancelled) {
    TestScannerConfig config(kColourScanner);
    if (const QString why = missing_test_device(); !why.isEmpty()) {
        GTEST_SKIP() << why.toStdString();
    }
    wb.enter("Scan");
    // The chooser lists both test devices; the second is remembered.
    home.dialogs.answer_input("test:1 (Noname frontend-tester, virtual device)");
    button("b_scan_get_device")->click();
    ASSERT_EQ(home.dialogs.asked().size(), 1u);
    EXPECT_EQ(home.dialogs.asked().front().kind, "choose");
    EXPECT_EQ(home.dialogs.asked().front().file_name,
              "test:0 (Noname frontend-tester, virtual device)\n"
              "test:1 (Noname frontend-tester, virtual device)");
    EXPECT_EQ(home.app.settings.read("Scan", "Source"), "test:1");

    // A cancelled name leaves the picture shown and nothing saved.
    home.dialogs.clear();
    button("b_scan_get_image")->click();
    EXPECT_TRUE(home.dialogs.messages().isEmpty());
    EXPECT_TRUE(viewer().has_picture());
    EXPECT_TRUE(tab->files().empty());
    EXPECT_EQ(QDir(home.dir()).entryList({"*.jpg"}), QStringList());

    const QString dir = home.dir() + "/scans";
    QDir().mkpath(dir);
    home.dialogs.clear();
    home.dialogs.answer_file(dir + "/first.page.tif");
    button("b_scan_get_image")->click();
    EXPECT_TRUE(home.dialogs.messages().isEmpty())
        << home.dialogs.messages().join("|").toStdString();
    ASSERT_EQ(home.dialogs.asked().size(), 1u);
    EXPECT_EQ(home.dialogs.asked().front().title, "Select New Image File Name");
    EXPECT_EQ(home.dialogs.asked().front().default_text, "JPG (*.jpg)|*.jpg|All Files (*.*)|*.*");
    EXPECT_EQ(home.dialogs.asked().front().initial_directory, home.dir() + u'/');
    const QString saved = dir + "/first.jpg";
    QImageReader reader(saved);
    EXPECT_EQ(reader.format(), "jpeg");
    // The test device's defaults: 80 x 100 mm at 50 dots to the inch.
    EXPECT_NEAR(reader.size().width(), 157, 2);
    EXPECT_NEAR(reader.size().height(), 196, 2);
    EXPECT_EQ(tab->files().items(), QStringList({saved}));
    EXPECT_EQ(home.app.last_directory, dir + u'/');
    EXPECT_EQ(home.app.preview_file, dir + "/first.page.tif");
    EXPECT_EQ(home.ui.status(), "");
    EXPECT_FALSE(home.ui.busy());

    // The same name in other letters is saved over and keeps its one row;
    // a name without "." gets ".jpg".
    home.dialogs.answer_file(dir + "/FIRST.jpg");
    button("b_scan_get_image")->click();
    home.dialogs.answer_file(dir + "/second");
    button("b_scan_get_image")->click();
    EXPECT_EQ(tab->files().items(), QStringList({saved, dir + "/second.jpg"}));
    EXPECT_TRUE(QFile::exists(dir + "/second.jpg"));
    tab->resize(627, 370);
    grab_if_asked(*tab, "scan_after_scanning");

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
    {
        TestScannerConfig none("", "");
        button("b_scan_get_device")->click();
        button("b_scan_get_image")->click();
        EXPECT_EQ(home.dialogs.messages(),
                  QStringList({"An error occurred searching for a scanning device.",
                               "An error occurred searching for a scanning device."}));
    }
    TestScannerConfig jammed(kColourScanner + "read-status-code \"SANE_STATUS_JAMMED\"\n");
    if (const QString why = missing_test_device(); !why.isEmpty()) {
        GTEST_SKIP() << why.toStdString();
    }
    home.dialogs.clear();
    button("b_scan_get_image")->click();
    EXPECT_EQ(home.dialogs.messages(), QStringList({"Document feeder jammed"}));
    EXPECT_FALSE(home.ui.busy());
    EXPECT_TRUE(tab->files().empty());
}
