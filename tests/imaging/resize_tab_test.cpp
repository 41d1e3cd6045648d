
#include "imaging/resize_tab.h"
#include "imaging/image_view.h"
#include "lists/panel_table.h"
#include "shell/run_error.h"
#include "support/page_checks.h"
#include "support/test_workbench.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QGroupBox>
#include <QImageReader>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

namespace {

struct ResizeFixture : ::testing::Test {
    ResizeFixture() { tab = wb.add_page<ResizeTab>("Resize"); }
    template <class T>
    T* w(const char* name) {
        T* p = wb.find<T>(QLatin1String(name));
        EXPECT_NE(p, nullptr) << name;
        return p;
    }
    QString ini(const QString& key, const QString& section = "Current") {
        return home.app.settings.read(section, key);
    }
    QByteArray ini_bytes() {
        QFile f(home.app.ini_path);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }
    void add_images(int n) {
        for (int i = 0; i < n; ++i) {
            home.app.main_list.add(
                home.write_image(QString("pics/p%1.png").arg(i), 300 + i * 10, 200));
        }
    }
    TestHome home;
    TestWorkbench wb{home};
    ResizeTab* tab = nullptr;
};

}  // namespace

TEST_F(ResizeFixture, EnteringFillsFromTheSettingsWithoutWritingThem) {
    add_images(3);
    auto& s = home.app.settings;
    s.write("Current", "Thumbnail Dither", "2");
    s.write("Current", "Thumbnail Optimize", "YES please");
    s.write("Current", "Thumbnail Quality", "80");
    s.write("Current", "Thumbnail Smoothing", "5");
    s.write("Current", "Resize File Type", "resize");
    s.write("Current", "Resize Thumbnail Type", "flat");
    s.write("Current", "Resize Selected Images", "sure, Yes");
    s.write("Current", "Thumbnail Target Directory", "/tmp/thumbs");
    s.write("Output", "Thumbnail Prefix", "y");
    const QByteArray before = ini_bytes();
    wb.enter("Resize");

    EXPECT_EQ(tab->thumbnail_list().items(), home.app.main_list.items());
    EXPECT_EQ(w<QGroupBox>("f_thumbnails")->title(), "File Count: 3");
    EXPECT_EQ(w<QComboBox>("o_thumbnail_dither")->currentText(), "High Quality");
    EXPECT_EQ(w<QComboBox>("o_thumbnail_dither")->count(), 3);
    EXPECT_EQ(w<QComboBox>("o_thumbnail_optimize")->currentText(),
              "Yes");  // holds "yes" in any case
    EXPECT_EQ(w<QComboBox>("o_thumbnail_quality")->currentText(), "80");
    EXPECT_EQ(w<QComboBox>("o_thumbnail_quality")->count(), 100);
    EXPECT_EQ(w<QComboBox>("o_thumbnail_smoothing")->currentText(), "5");
    EXPECT_EQ(w<QComboBox>("o_thumbnail_smoothing")->count(), 101);
    EXPECT_EQ(w<QComboBox>("o_resize_file_type")->currentText(), "Resize");
    EXPECT_EQ(w<QComboBox>("o_resize_thumbnail_type")->currentText(), "Flat");
    EXPECT_FALSE(w<QComboBox>("o_resize_thumbnail_type")->isEnabled());
    EXPECT_FALSE(w<QLabel>("l_resize_thumbnail_type")->isEnabled());
    EXPECT_FALSE(home.app.thumbnail_3d);
    EXPECT_EQ(w<QLineEdit>("o_thumbnail_size")->text(), "100");
    EXPECT_EQ(w<QLineEdit>("o_resize_max_size")->text(), "300");
    EXPECT_EQ(w<QLabel>("o_thumbnail_target_directory")->text(), "/tmp/thumbs");
    EXPECT_TRUE(w<QCheckBox>("o_resize_selected_only")->isChecked());
    EXPECT_TRUE(w<QCheckBox>("o_thumbnail_prefix")->isChecked());
    EXPECT_EQ(ini_bytes(), before);

    s.write("Current", "Thumbnail Optimize", "nope");
    wb.enter("Resize");
    EXPECT_EQ(w<QComboBox>("o_thumbnail_optimize")->currentText(), "No");

    // An empty file: defaults, nothing selected in the two type boxes (3D).
    QFile::remove(home.app.ini_path);
    home.app.main_list.clear();
    wb.enter("Resize");
    EXPECT_EQ(w<QGroupBox>("f_thumbnails")->title(), "File Count: 0");
    EXPECT_EQ(w<QComboBox>("o_thumbnail_dither")->currentText(), "Default");
    EXPECT_EQ(w<QComboBox>("o_thumbnail_quality")->currentText(), "75");
    EXPECT_EQ(w<QComboBox>("o_thumbnail_smoothing")->currentText(), "0");
    EXPECT_EQ(w<QComboBox>("o_resize_file_type")->currentText(), "");
    EXPECT_TRUE(w<QComboBox>("o_resize_thumbnail_type")->isEnabled());
    EXPECT_TRUE(home.app.thumbnail_3d);
    EXPECT_FALSE(w<QCheckBox>("o_thumbnail_prefix")->isChecked());
    EXPECT_FALSE(QFile::exists(home.app.ini_path));
}

TEST_F(ResizeFixture, TheLastFailingCheckIsTheMessageAndEmptyBoxesGetDefaults) {
    QFile::remove(home.app.ini_path);
    wb.enter("Resize");
    auto* create = w<QPushButton>("b_thumbnail_create");
    auto* quality = w<QComboBox>("o_thumbnail_quality");
    auto* dither = w<QComboBox>("o_thumbnail_dither");
    quality->blockSignals(true);
    quality->setCurrentIndex(-1);
    quality->blockSignals(false);
    create->click();
    EXPECT_EQ(home.dialogs.messages(),
              QStringList{"The file type must be selected to resize the image."});
    EXPECT_EQ(home.dialogs.asked().back().icon, Dialogs::Icon::Information);
    EXPECT_EQ(quality->currentText(), "75");
    EXPECT_EQ(dither->currentText(), "Default");
    EXPECT_EQ(ini("Thumbnail Quality"), "");  // filled, not stored

    w<QComboBox>("o_resize_file_type")->setCurrentIndex(1);  // Thumbnail, no thumbnail type
    w<QComboBox>("o_resize_thumbnail_type")->setCurrentIndex(-1);
    home.dialogs.clear();
    create->click();
    EXPECT_EQ(home.dialogs.messages(),
              QStringList{"The thumbnail type must be selected to create thumbnails."});

    w<QComboBox>("o_resize_thumbnail_type")->setCurrentIndex(0);
    home.dialogs.clear();
    create->click();
    EXPECT_EQ(home.dialogs.messages(), QStringList{"The target directory must be specified."});

    set_thumbnail_target_directory(wb, home.path("out"));
    home.dialogs.clear();
    create->click();
    EXPECT_EQ(home.dialogs.messages(),
              QStringList{"There are no file names in the list on the 'Main' tab."});
    EXPECT_TRUE(home.ui.statuses.isEmpty());
}

TEST_F(ResizeFixture, UserChangesStoreTheirSettings) {
    wb.enter("Resize");
    w<QComboBox>("o_thumbnail_dither")->setCurrentIndex(0);
    EXPECT_EQ(ini("Thumbnail Dither"), "0");
    EXPECT_EQ(home.app.thumbnail_dither, "0");
    w<QComboBox>("o_thumbnail_optimize")->setCurrentIndex(0);
    EXPECT_EQ(ini("Thumbnail Optimize"), "Yes");
    EXPECT_EQ(home.app.thumbnail_optimize, "Yes");
    w<QComboBox>("o_thumbnail_optimize")->setCurrentIndex(1);
    EXPECT_EQ(home.app.thumbnail_optimize, "No");
    w<QComboBox>("o_thumbnail_quality")->setCurrentIndex(41);
    EXPECT_EQ(ini("Thumbnail Quality"), "42");
    w<QComboBox>("o_thumbnail_smoothing")->setCurrentIndex(7);
    EXPECT_EQ(ini("Thumbnail smoothing"), "7");
    EXPECT_TRUE(home.app.settings.keys("Current").contains("Thumbnail Smoothing"));
    QTest::keyClicks(w<QLineEdit>("o_thumbnail_size"), "5");
    EXPECT_EQ(ini("Thumbnail Size"), "1005");
    EXPECT_EQ(home.app.thumbnail_size, "1005");
    w<QLineEdit>("o_resize_max_size")->setText("abc");  // stored without a check
    EXPECT_EQ(ini("Max Image Size"), "abc");

    w<QComboBox>("o_resize_thumbnail_type")->setCurrentIndex(0);
    EXPECT_FALSE(home.app.thumbnail_3d);
    EXPECT_EQ(ini("Resize Thumbnail Type"), "Flat");
    w<QComboBox>("o_resize_thumbnail_type")->setCurrentIndex(1);
    EXPECT_TRUE(home.app.thumbnail_3d);

    // The prefix goes to Current; a change of file type reads it from Output.
    auto* prefix = w<QCheckBox>("o_thumbnail_prefix");
    prefix->click();
    EXPECT_TRUE(home.app.thumbnail_prefix);
    EXPECT_EQ(ini("Thumbnail Prefix"), "Yes");
    w<QComboBox>("o_resize_file_type")->setCurrentIndex(0);
    EXPECT_EQ(ini("Resize File Type"), "Resize");
    EXPECT_FALSE(w<QComboBox>("o_resize_thumbnail_type")->isEnabled());
    EXPECT_FALSE(prefix->isChecked());
    EXPECT_EQ(ini("Thumbnail Prefix"), "Yes");
    w<QComboBox>("o_resize_file_type")->setCurrentIndex(1);
    EXPECT_TRUE(w<QComboBox>("o_resize_thumbnail_type")->isEnabled());

    w<QCheckBox>("o_resize_selected_only")->click();
    EXPECT_EQ(ini("Resize Selected Images"), "Yes");

    // The colour dialog: a choice is stored and painted, a cancel changes nothing.
    home.dialogs.answer_color(0x00FF00);
    w<QPushButton>("b_thumbnail_background_color")->click();
    EXPECT_EQ(ini("Thumbnail Background Color"), "65280");
    EXPECT_EQ(home.app.thumbnail_background_color, "65280");
    EXPECT_TRUE(w<QPushButton>("b_thumbnail_background_color")->styleSheet().contains("#00ff00"));
    home.dialogs.answer_color(std::nullopt);
    w<QPushButton>("b_thumbnail_background_color")->click();
    EXPECT_EQ(ini("Thumbnail Background Color"), "65280");
    EXPECT_EQ(home.dialogs.asked().back().text, "65280");

    // The directory chooser starts at the last directory and sets both.
    home.app.last_directory = "/start/here";
    home.dialogs.answer_directory("/chosen/dir");
    w<QPushButton>("b_thumbnail_select_target_directory")->click();
    EXPECT_EQ(home.dialogs.asked().back().initial_directory, "/start/here");
    EXPECT_EQ(w<QLabel>("o_thumbnail_target_directory")->text(), "/chosen/dir");
    EXPECT_EQ(home.app.last_directory, "/chosen/dir");
    EXPECT_EQ(ini("Thumbnail Target Directory"), "/chosen/dir");
    EXPECT_EQ(home.app.thumbnail_target_directory, "/chosen/dir");

    home.dialogs.clear();
    QTest::mouseDClick(w<QLabel>("o_thumbnail_target_directory"), Qt::LeftButton);
    ASSERT_EQ(home.dialogs.messages(), QStringList{"X"});
    EXPECT_EQ(home.dialogs.asked().back().icon, Dialogs::Icon::None);
}

TEST_F(ResizeFixture, CreateMakesThumbnailsAndResizedCopiesOfTheListInOrder) {
    add_images(3);
    home.app.main_list.add(home.write_image("pics/tiny.png", 40, 30));
    home.app.thumbnail_size = "100";
    home.app.thumbnail_quality = "75";
    home.app.thumbnail_dither = "1";
    wb.enter("Resize");
    home.dialogs.answer_directory(home.path("out"));
    QDir().mkpath(home.path("out"));
    w<QPushButton>("b_thumbnail_select_target_directory")->click();
    w<QComboBox>("o_resize_file_type")->setCurrentIndex(1);
    w<QComboBox>("o_resize_thumbnail_type")->setCurrentIndex(1);
    w<QPushButton>("b_thumbnail_create")->click();
    EXPECT_TRUE(home.dialogs.messages().isEmpty())
        << home.dialogs.messages().join("|").toStdString();
    const QString out = home.path("out");
    EXPECT_EQ(home.ui.statuses,
              QStringList({"Creating " + out + "/p0_tn.jpg", "Creating " + out + "/p1_tn.jpg",
                           "Creating " + out + "/p2_tn.jpg", ""}));
    EXPECT_TRUE(QFile::exists(out + "/tiny.png"));
    EXPECT_EQ(QImageReader(out + "/p1_tn.jpg").size(), QSize(100, 100));
    EXPECT_EQ(home.app.worker.file_name(), home.path("pics/tiny.png"));

    // Resized copies of the selected rows only, with the prefix ignored.
    w<QComboBox>("o_resize_file_type")->setCurrentIndex(0);
    w<QLineEdit>("o_resize_max_size")->setText("150");
    w<QCheckBox>("o_resize_selected_only")->click();
    tab->thumbnail_list().set_selected(1, true);
    tab->thumbnail_list().set_selected(3, true);
    home.ui.statuses.clear();
    w<QPushButton>("b_thumbnail_create")->click();
    EXPECT_EQ(home.ui.statuses,
              QStringList({"Creating " + out + "/p1.jpg", "Creating " + out + "/tiny.jpg", ""}));
    EXPECT_EQ(QImageReader(out + "/p1.jpg").size(), QSize(150, 97));
    EXPECT_EQ(QImageReader(out + "/tiny.jpg").size(), QSize(40, 30));
    EXPECT_FALSE(QFile::exists(out + "/p0.jpg"));
}

TEST_F(ResizeFixture, AFileTheWorkerCannotLoadEndsTheCommand) {
    add_images(2);
    home.app.main_list.add(home.write_file("pics/notes.jpg", "words"));
    home.app.main_list.add(home.write_image("pics/later.png", 300, 300));
    wb.enter("Resize");
    set_thumbnail_target_directory(wb, home.path("out"));
    QDir().mkpath(home.path("out"));
    w<QComboBox>("o_resize_file_type")->setCurrentIndex(1);
    w<QComboBox>("o_resize_thumbnail_type")->setCurrentIndex(0);
    EXPECT_THROW(w<QPushButton>("b_thumbnail_create")->click(), RunError);
    EXPECT_TRUE(QFile::exists(home.path("out/p1_tn.jpg")));
    EXPECT_FALSE(QFile::exists(home.path("out/later_tn.jpg")));
}

TEST_F(ResizeFixture, ListClicksShowRemoveAndOfferTheMenu) {
    add_images(3);
    wb.window().show();
    wb.enter("Resize");
    auto* view = w<QListView>("o_thumbnail_list");
    auto* viewer = w<ImageView>("o_thumbnail_image_view");
    ItemList& list = tab->thumbnail_list();
    const QRect row1 = view->visualRect(list.index(1));
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, row1.center());
    EXPECT_EQ(viewer->control().file_name(), list.item(1));
    EXPECT_EQ(home.app.preview_file, list.item(1));
    EXPECT_EQ(home.app.selected_file, list.item(1));
    // Moving the current row with the keyboard shows that row's file too.
    QTest::keyClick(view, Qt::Key_Down);
    EXPECT_EQ(list.list_index(), 2);
    EXPECT_EQ(viewer->control().file_name(), list.item(2));
    EXPECT_EQ(home.app.preview_file, list.item(2));
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, row1.center());

    // A right press pops the menu up and selects nothing.
    list.clear_selection();
    QTest::mousePress(view->viewport(), Qt::RightButton, {},
                      view->visualRect(list.index(2)).center());
    EXPECT_EQ(wb.menu_popups, 1);
    EXPECT_TRUE(list.selected_rows().isEmpty());

    const QString second = list.item(1);
    const QString third = list.item(2);
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, {},
                       view->visualRect(list.index(1)).center());
    EXPECT_EQ(list.count(), 2);
    EXPECT_FALSE(list.items().contains(second));
    EXPECT_EQ(list.list_index(), 0);
    EXPECT_TRUE(viewer->control().file_name().isEmpty());
    EXPECT_EQ(viewer->control().width(), 1815);
    EXPECT_EQ(w<QGroupBox>("f_thumbnails")->title(), "File Count: 3");
    // The first row removed: the row now in its place is selected.
    list.set_list_index(0);
    Q_EMIT view->doubleClicked(list.index(0));
    EXPECT_EQ(list.items(), QStringList{third});
    EXPECT_EQ(list.list_index(), 0);

    // The Resize list's click is not guarded: a file that cannot be read
    // reaches the caller.
    const QString bad = home.write_file("pics/bad.tif", "not a picture");
    EXPECT_THROW(show_panel_file(wb, "thumbnail", bad, false), RunError);
}

TEST(ResizeTabPage, CarriesItsNamedControlsWithinThePage) {
    WindowFont font;
    TestHome home;
    TestWorkbench wb(home);
    wb.add_page<ResizeTab>("Resize");
    EXPECT_TRUE(has_controls(wb, {
                                     {"f_thumbnails", "QGroupBox"},
                                     {"o_thumbnail_list", "QListView"},
                                     {"f_thumbnail_image_view", "QGroupBox", "Image Preview"},
                                     {"o_thumbnail_image_view", "ImageView"},
                                     {"o_thumbnail_dither", "QComboBox"},
                                     {"o_thumbnail_optimize", "QComboBox"},
                                     {"o_thumbnail_quality", "QComboBox"},
                                     {"o_thumbnail_smoothing", "QComboBox"},
                                     {"o_thumbnail_size", "QLineEdit"},
                                     {"o_resize_max_size", "QLineEdit"},
                                     {"o_thumbnail_target_directory", "QLabel"},
                                     {"o_resize_file_type", "QComboBox"},
                                     {"o_resize_thumbnail_type", "QComboBox"},
                                     {"l_resize_thumbnail_type", "QLabel"},
                                     {"o_resize_selected_only", "QCheckBox"},
                                     {"o_thumbnail_prefix", "QCheckBox"},
                                     {"b_thumbnail_background_color", "QPushButton"},
                                     {"b_thumbnail_select_target_directory", "QPushButton"},
                                     {"b_thumbnail_create", "QPushButton"},
                                 }));
    EXPECT_EQ(wb.find<QListView>("o_thumbnail_list")->selectionMode(),
              QAbstractItemView::ExtendedSelection);
    ResizeTab alone(wb);
    EXPECT_TRUE(fits_page_area(alone));
    grab_if_asked(alone, "resize");
}
