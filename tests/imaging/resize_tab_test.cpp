#include "imaging/resize_tab.h"
#include "core/run_error.h"
#include "imaging/image_view.h"
#include "lists/panel_table.h"
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
        return wb.find<T>(QLatin1String(name));
    }
    QComboBox* box(const char* name) { return w<QComboBox>(name); }
    QString shown(const char* name) { return box(name)->currentText(); }
    QString ini(const QString& key) { return home.app.settings.read("Current", key); }
    void add_images(int n) {
        for (int i = 0; i < n; ++i) {
            home.app.main_list.add(
                home.write_image(QString("pics/p%1.png").arg(i), 300 + i * 10, 200));
        }
    }
    // Clicks Create and returns the messages it gave.
    QStringList create() {
        home.dialogs.clear();
        w<QPushButton>("b_thumbnail_create")->click();
        return home.dialogs.messages();
    }
    TestHome home;
    TestWorkbench wb{home};
    ResizeTab* tab = nullptr;
};

}  // namespace

TEST_F(ResizeFixture, EnteringFillsFromTheSettingsAndCreateNamesTheLastFailingCheck) {
    add_images(3);
    auto& s = home.app.settings;
    s.write("Current", "Thumbnail Dither", "2");
    s.write("Current", "Thumbnail Optimize", "YES please");
    s.write("Current", "Resize File Type", "resize");
    s.write("Output", "Thumbnail Prefix", "y");
    wb.enter("Resize");
    EXPECT_EQ(w<QGroupBox>("f_thumbnails")->title(), "File Count: 3");
    // Optimize holds "yes" in any case; the types are matched in any case.
    EXPECT_EQ(shown("o_thumbnail_dither"), "High Quality");
    EXPECT_EQ(shown("o_thumbnail_optimize"), "Yes");
    EXPECT_EQ(shown("o_resize_file_type"), "Resize");
    EXPECT_TRUE(w<QCheckBox>("o_thumbnail_prefix")->isChecked());

    // An empty file: defaults, nothing selected in the two type boxes (3D),
    // and nothing written.
    QFile::remove(home.app.ini_path);
    home.app.main_list.clear();
    wb.enter("Resize");
    EXPECT_EQ(w<QGroupBox>("f_thumbnails")->title(), "File Count: 0");
    EXPECT_EQ(shown("o_resize_file_type"), "");
    EXPECT_TRUE(home.app.thumbnail_3d);
    EXPECT_FALSE(QFile::exists(home.app.ini_path));

    // Create with checks failing: the last failing one is the message, and
    // empty boxes get their defaults without storing them.
    {
        const QSignalBlocker quiet(box("o_thumbnail_quality"));
        box("o_thumbnail_quality")->setCurrentIndex(-1);
    }
    EXPECT_EQ(create(), QStringList{"The file type must be selected to resize the image."});
    EXPECT_EQ(home.dialogs.asked().back().icon, Dialogs::Icon::Information);
    EXPECT_EQ(shown("o_thumbnail_quality"), "75");
    EXPECT_EQ(ini("Thumbnail Quality"), "");  // filled, not stored

    box("o_resize_file_type")->setCurrentIndex(1);  // Thumbnail, no thumbnail type
    box("o_resize_thumbnail_type")->setCurrentIndex(-1);
    EXPECT_EQ(create(), QStringList{"The thumbnail type must be selected to create thumbnails."});
    box("o_resize_thumbnail_type")->setCurrentIndex(0);
    EXPECT_EQ(create(), QStringList{"The target directory must be specified."});
    set_thumbnail_target_directory(wb, home.path("out"));
    EXPECT_EQ(create(), QStringList{"There are no file names in the list on the 'Main' tab."});
}

TEST_F(ResizeFixture, UserChangesStoreTheirSettings) {
    wb.enter("Resize");
    box("o_thumbnail_optimize")->setCurrentIndex(0);
    EXPECT_EQ(ini("Thumbnail Optimize"), "Yes");
    box("o_thumbnail_quality")->setCurrentIndex(41);
    EXPECT_EQ(ini("Thumbnail Quality"), "42");
    QTest::keyClicks(w<QLineEdit>("o_thumbnail_size"), "5");
    EXPECT_EQ(ini("Thumbnail Size"), "1005");
    EXPECT_EQ(home.app.thumbnail_size, "1005");
    box("o_resize_thumbnail_type")->setCurrentIndex(0);
    EXPECT_FALSE(home.app.thumbnail_3d);

    // The prefix goes to Current; a change of file type reads it from Output.
    auto* prefix = w<QCheckBox>("o_thumbnail_prefix");
    prefix->click();
    EXPECT_TRUE(home.app.thumbnail_prefix);
    EXPECT_EQ(ini("Thumbnail Prefix"), "Yes");
    box("o_resize_file_type")->setCurrentIndex(0);
    EXPECT_EQ(ini("Resize File Type"), "Resize");
    EXPECT_FALSE(box("o_resize_thumbnail_type")->isEnabled());
    EXPECT_FALSE(prefix->isChecked());
    EXPECT_EQ(ini("Thumbnail Prefix"), "Yes");

    // The colour dialog: a choice is stored and painted, a cancel changes nothing.
    auto* colour = w<QPushButton>("b_thumbnail_background_color");
    home.dialogs.answer_color(0x00FF00);
    colour->click();
    EXPECT_EQ(ini("Thumbnail Background Color"), "65280");
    EXPECT_TRUE(colour->styleSheet().contains("#00ff00"));
    home.dialogs.answer_color(std::nullopt);
    colour->click();
    EXPECT_EQ(home.dialogs.asked().back().text, "65280");
    EXPECT_EQ(ini("Thumbnail Background Color"), "65280");

    // The directory chooser starts at the last directory and sets both.
    home.app.last_directory = "/start/here";
    home.dialogs.answer_directory("/chosen/dir");
    w<QPushButton>("b_thumbnail_select_target_directory")->click();
    EXPECT_EQ(home.dialogs.asked().back().initial_directory, "/start/here");
    EXPECT_EQ(w<QLabel>("o_thumbnail_target_directory")->text(), "/chosen/dir");
    EXPECT_EQ(ini("Thumbnail Target Directory"), "/chosen/dir");

    home.dialogs.clear();
    QTest::mouseDClick(w<QLabel>("o_thumbnail_target_directory"), Qt::LeftButton);
    ASSERT_EQ(home.dialogs.messages(), QStringList{"X"});
    EXPECT_EQ(home.dialogs.asked().back().icon, Dialogs::Icon::None);
}

TEST_F(ResizeFixture, CreateMakesThumbnailsAndResizedCopiesOfTheListInOrder) {
    add_images(3);
    home.app.main_list.add(home.write_image("pics/tiny.png", 40, 30));
    home.app.thumbnail_size = "100";
    wb.enter("Resize");
    const QString out = home.path("out");
    QDir().mkpath(out);
    set_thumbnail_target_directory(wb, out);
    box("o_resize_file_type")->setCurrentIndex(1);
    box("o_resize_thumbnail_type")->setCurrentIndex(1);
    EXPECT_EQ(create(), QStringList());
    EXPECT_EQ(home.ui.statuses,
              QStringList({"Creating " + out + "/p0_tn.jpg", "Creating " + out + "/p1_tn.jpg",
                           "Creating " + out + "/p2_tn.jpg", ""}));
    EXPECT_TRUE(QFile::exists(out + "/tiny.png"));
    EXPECT_EQ(QImageReader(out + "/p1_tn.jpg").size(), QSize(100, 100));

    // Resized copies of the selected rows only, with the prefix ignored.
    box("o_resize_file_type")->setCurrentIndex(0);
    w<QLineEdit>("o_resize_max_size")->setText("150");
    w<QCheckBox>("o_resize_selected_only")->click();
    tab->thumbnail_list().set_selected(1, true);
    tab->thumbnail_list().set_selected(3, true);
    home.ui.statuses.clear();
    EXPECT_EQ(create(), QStringList());
    EXPECT_EQ(home.ui.statuses,
              QStringList({"Creating " + out + "/p1.jpg", "Creating " + out + "/tiny.jpg", ""}));
    EXPECT_EQ(QImageReader(out + "/p1.jpg").size(), QSize(150, 97));
    EXPECT_EQ(QImageReader(out + "/tiny.jpg").size(), QSize(40, 30));

    // A file the worker cannot load is not caught: it ends the command there.
    home.app.main_list.add(home.write_file("pics/notes.jpg", "words"));
    home.app.main_list.add(home.write_image("pics/later.png", 300, 300));
    wb.enter("Resize");
    box("o_resize_file_type")->setCurrentIndex(0);
    w<QCheckBox>("o_resize_selected_only")->setChecked(false);
    EXPECT_THROW(create(), RunError);
    EXPECT_TRUE(QFile::exists(out + "/p2.jpg"));
    EXPECT_FALSE(QFile::exists(out + "/later.jpg"));
}

TEST_F(ResizeFixture, ListClicksShowTheRowAndDoubleClicksRemoveIt) {
    add_images(3);
    wb.window().show();
    wb.enter("Resize");
    auto* view = w<QListView>("o_thumbnail_list");
    auto* viewer = w<ImageView>("o_thumbnail_image_view");
    ItemList& list = tab->thumbnail_list();
    const auto row_centre = [&](int row) { return view->visualRect(list.index(row)).center(); };
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, row_centre(1));
    EXPECT_EQ(viewer->control().file_name(), list.item(1));
    EXPECT_EQ(home.app.selected_file, list.item(1));
    // A right press pops the menu up and selects nothing.
    list.clear_selection();
    QTest::mousePress(view->viewport(), Qt::RightButton, {}, row_centre(2));
    EXPECT_EQ(wb.menu_popups, 1);
    EXPECT_TRUE(list.selected_rows().isEmpty());
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, row_centre(1));

    // A double click removes the row and clears the viewer; the count stays.
    const QString third = list.item(2);
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, row_centre(1));
    EXPECT_EQ(list.count(), 2);
    EXPECT_EQ(list.list_index(), 0);
    EXPECT_TRUE(viewer->control().file_name().isEmpty());
    EXPECT_EQ(w<QGroupBox>("f_thumbnails")->title(), "File Count: 3");
    // The first row removed: the row now in its place is selected.
    list.set_list_index(0);
    Q_EMIT view->doubleClicked(list.index(0));
    EXPECT_EQ(list.items(), QStringList{third});
    EXPECT_EQ(list.list_index(), 0);
    // The Resize list's click is not guarded: a file that cannot be read
    // reaches the caller.
    EXPECT_THROW(show_panel_file(wb, "thumbnail", home.write_file("bad.tif", "x"), false),
                 RunError);
}
