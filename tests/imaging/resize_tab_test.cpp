
#include "imaging/resize_tab.h"
#include "core/run_error.h"
#include "imaging/image_view.h"
#include "lists/panel_table.h"
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
    QComboBox* box(const char* name) { return w<QComboBox>(name); }
    // Each named box shows its text.
    void expect_shown(const std::vector<std::pair<const char*, const char*>>& texts) {
        for (const auto& [name, text] : texts) {
            EXPECT_EQ(box(name)->currentText(), text) << name;
        }
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
    // Optimize holds "yes" in any case; the types are matched in any case.
    expect_shown({{"o_thumbnail_dither", "High Quality"},
                  {"o_thumbnail_optimize", "Yes"},
                  {"o_thumbnail_quality", "80"},
                  {"o_thumbnail_smoothing", "5"},
                  {"o_resize_file_type", "Resize"},
                  {"o_resize_thumbnail_type", "Flat"}});
    EXPECT_EQ(box("o_thumbnail_quality")->count(), 100);
    EXPECT_EQ(box("o_thumbnail_smoothing")->count(), 101);
    EXPECT_FALSE(box("o_resize_thumbnail_type")->isEnabled());
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
    expect_shown({{"o_thumbnail_optimize", "No"}});

    // An empty file: defaults, nothing selected in the two type boxes (3D).
    QFile::remove(home.app.ini_path);
    home.app.main_list.clear();
    wb.enter("Resize");
    EXPECT_EQ(w<QGroupBox>("f_thumbnails")->title(), "File Count: 0");
    expect_shown({{"o_thumbnail_dither", "Default"},
                  {"o_thumbnail_quality", "75"},
                  {"o_thumbnail_smoothing", "0"},
                  {"o_resize_file_type", ""}});
    EXPECT_TRUE(box("o_resize_thumbnail_type")->isEnabled());
    EXPECT_TRUE(home.app.thumbnail_3d);
    EXPECT_FALSE(w<QCheckBox>("o_thumbnail_prefix")->isChecked());
    EXPECT_FALSE(QFile::exists(home.app.ini_path));

    // Create with checks failing: the last failing one is the message, and
    // empty boxes get their defaults without storing them.
    {
        const QSignalBlocker quiet(box("o_thumbnail_quality"));
        box("o_thumbnail_quality")->setCurrentIndex(-1);
    }
    EXPECT_EQ(create(), QStringList{"The file type must be selected to resize the image."});
    EXPECT_EQ(home.dialogs.asked().back().icon, Dialogs::Icon::Information);
    expect_shown({{"o_thumbnail_quality", "75"}, {"o_thumbnail_dither", "Default"}});
    EXPECT_EQ(ini("Thumbnail Quality"), "");  // filled, not stored

    box("o_resize_file_type")->setCurrentIndex(1);  // Thumbnail, no thumbnail type
    box("o_resize_thumbnail_type")->setCurrentIndex(-1);
    EXPECT_EQ(create(), QStringList{"The thumbnail type must be selected to create thumbnails."});
    box("o_resize_thumbnail_type")->setCurrentIndex(0);
    EXPECT_EQ(create(), QStringList{"The target directory must be specified."});
    set_thumbnail_target_directory(wb, home.path("out"));
    EXPECT_EQ(create(), QStringList{"There are no file names in the list on the 'Main' tab."});
    EXPECT_TRUE(home.ui.statuses.isEmpty());
}

TEST_F(ResizeFixture, UserChangesStoreTheirSettings) {
    wb.enter("Resize");
    box("o_thumbnail_dither")->setCurrentIndex(0);
    EXPECT_EQ(ini("Thumbnail Dither"), "0");
    EXPECT_EQ(home.app.thumbnail_dither, "0");
    box("o_thumbnail_optimize")->setCurrentIndex(0);
    EXPECT_EQ(ini("Thumbnail Optimize"), "Yes");
    EXPECT_EQ(home.app.thumbnail_optimize, "Yes");
    box("o_thumbnail_optimize")->setCurrentIndex(1);
    EXPECT_EQ(home.app.thumbnail_optimize, "No");
    box("o_thumbnail_quality")->setCurrentIndex(41);
    EXPECT_EQ(ini("Thumbnail Quality"), "42");
    box("o_thumbnail_smoothing")->setCurrentIndex(7);
    EXPECT_EQ(ini("Thumbnail smoothing"), "7");
    EXPECT_TRUE(home.app.settings.keys("Current").contains("Thumbnail Smoothing"));
    QTest::keyClicks(w<QLineEdit>("o_thumbnail_size"), "5");
    EXPECT_EQ(ini("Thumbnail Size"), "1005");
    EXPECT_EQ(home.app.thumbnail_size, "1005");
    w<QLineEdit>("o_resize_max_size")->setText("abc");  // stored without a check
    EXPECT_EQ(ini("Max Image Size"), "abc");

    box("o_resize_thumbnail_type")->setCurrentIndex(0);
    EXPECT_FALSE(home.app.thumbnail_3d);
    EXPECT_EQ(ini("Resize Thumbnail Type"), "Flat");
    box("o_resize_thumbnail_type")->setCurrentIndex(1);
    EXPECT_TRUE(home.app.thumbnail_3d);

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
    box("o_resize_file_type")->setCurrentIndex(1);
    EXPECT_TRUE(box("o_resize_thumbnail_type")->isEnabled());

    w<QCheckBox>("o_resize_selected_only")->click();
    EXPECT_EQ(ini("Resize Selected Images"), "Yes");

    // The colour dialog: a choice is stored and painted, a cancel changes nothing.
    auto* colour = w<QPushButton>("b_thumbnail_background_color");
    home.dialogs.answer_color(0x00FF00);
    colour->click();
    EXPECT_EQ(ini("Thumbnail Background Color"), "65280");
    EXPECT_EQ(home.app.thumbnail_background_color, "65280");
    EXPECT_TRUE(colour->styleSheet().contains("#00ff00"));
    home.dialogs.answer_color(std::nullopt);
    colour->click();
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
    EXPECT_EQ(home.app.worker->file_name(), home.path("pics/tiny.png"));

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
    EXPECT_FALSE(QFile::exists(out + "/p0.jpg"));

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

TEST_F(ResizeFixture, ListClicksAndPanelShowsFitTheViewerAndRemoveRows) {
    add_images(3);
    wb.window().show();
    wb.enter("Resize");
    auto* view = w<QListView>("o_thumbnail_list");
    auto* viewer = w<ImageView>("o_thumbnail_image_view");
    ItemList& list = tab->thumbnail_list();
    const auto row_centre = [&](int row) { return view->visualRect(list.index(row)).center(); };
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, row_centre(1));
    EXPECT_EQ(viewer->control().file_name(), list.item(1));
    EXPECT_EQ(home.app.preview_file, list.item(1));
    EXPECT_EQ(home.app.selected_file, list.item(1));
    // Moving the current row with the keyboard shows that row's file too.
    QTest::keyClick(view, Qt::Key_Down);
    EXPECT_EQ(list.list_index(), 2);
    EXPECT_EQ(viewer->control().file_name(), list.item(2));
    EXPECT_EQ(home.app.preview_file, list.item(2));
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, row_centre(1));

    // A right press pops the menu up and selects nothing.
    list.clear_selection();
    QTest::mousePress(view->viewport(), Qt::RightButton, {}, row_centre(2));
    EXPECT_EQ(wb.menu_popups, 1);
    EXPECT_TRUE(list.selected_rows().isEmpty());

    // A double click removes the row and clears the viewer; the count stays.
    const QString second = list.item(1);
    const QString third = list.item(2);
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, row_centre(1));
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

    // A picture larger than the frame is fitted on it.
    auto* frame = w<QGroupBox>("f_thumbnail_image_view");
    const QString big = home.write_image("big.png", 900, 100);
    show_panel_file(wb, "thumbnail", big);
    EXPECT_EQ(home.app.preview_file, big);
    EXPECT_EQ(home.app.selected_file, big);
    EXPECT_EQ(viewer->control().view_mode(), 2);
    EXPECT_FLOAT_EQ(viewer->control().width(), float(frame->width()) * 15 - 300);
    EXPECT_EQ(viewer->width(), (frame->width() * 15 - 300) / 15);

    // A file that is no image: the viewer is cleared, the preview file kept.
    show_panel_file(wb, "thumbnail", home.write_file("notes.txt", "x"));
    EXPECT_TRUE(viewer->control().file_name().isEmpty());
    EXPECT_FLOAT_EQ(viewer->control().height(), 1215);
    EXPECT_EQ(home.app.preview_file, big);

    // ".tif" in a directory name makes an image of a text file; with the
    // resuming handler the load fails quietly and the rest still runs.
    const QString text = home.write_file("x.tif.d/readme", "text");
    show_panel_file(wb, "thumbnail", text);
    EXPECT_EQ(home.app.preview_file, text);
    EXPECT_TRUE(viewer->control().file_name().isEmpty());
    // The Resize list's click is not guarded: a file that cannot be read
    // reaches the caller.
    EXPECT_THROW(show_panel_file(wb, "thumbnail", home.write_file("bad.tif", "x"), false),
                 RunError);

    // Any other word does nothing.
    fit_panel(wb, "elsewhere");
    show_panel_file(wb, "elsewhere", big);
    EXPECT_EQ(home.app.preview_file, text);
}
