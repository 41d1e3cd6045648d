#include "lists/load_tab.h"
#include "lists/main_tab.h"

#include "core/run_error.h"
#include "support/cli_run.h"
#include "support/plain_user.h"
#include "support/qt_print.h"
#include "support/test_home.h"
#include "support/test_workbench.h"
#include "ui/directory_box.h"
#include "ui/drive_box.h"
#include "ui/file_box.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QGroupBox>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

#include <gtest/gtest.h>

namespace {

class LoadTabTest : public ::testing::Test {
protected:
    void SetUp() override {
        wb.add_page<MainTab>("Main");
        page = wb.add_page<LoadTab>("Load");
        wb.window().show();
        for (const char* f : {"pics/a.jpg", "pics/B.gif", "pics/c.txt", "pics/sub/s.jpg",
                              "pics/sub/deeper/d.gif", "pics/other/o.jpg"}) {
            home.write_file(f);
        }
        pics = QDir(home.path("pics")).canonicalPath();
        home.app.last_directory = pics;
        dirs = wb.find<DirectoryBox>("o_load_dir_list");
        types = wb.find<QComboBox>("o_load_file_types");
        frame = wb.find<QGroupBox>("f_load");
        ASSERT_TRUE(dirs && types && frame);
        page->fill_file_types();
    }

    QPushButton* button(const char* name) { return wb.find<QPushButton>(name); }
    QString filter_key() { return home.app.settings.read("Current", "Last File Filter"); }
    QStringList in_pics(const QStringList& names) const {
        QStringList out;
        for (const QString& n : names) {
            out << pics + u'/' + n;
        }
        return out;
    }
    void click_row(int row, Qt::MouseButton button) {
        auto* view = wb.find<QListView>("o_load_filelist");
        QTest::mouseClick(view->viewport(), button, {},
                          view->visualRect(page->files().index(row)).center());
    }

    TestHome home;
    TestWorkbench wb{home};
    LoadTab* page = nullptr;
    QString pics;
    DirectoryBox* dirs = nullptr;
    QComboBox* types = nullptr;
    QGroupBox* frame = nullptr;
};

}  // namespace

TEST_F(LoadTabTest, RestoreThenBrowsingListsTheDirectoryByTheFilter) {
    EXPECT_EQ(types->count(), 32);
    EXPECT_EQ(types->currentText(), "");

    wb.enter("Load");
    EXPECT_EQ(types->currentText(), "*.*");
    EXPECT_EQ(filter_key(), "*.*");
    EXPECT_EQ(dirs->path(), pics);
    EXPECT_EQ(page->files().items(), in_pics({"a.jpg", "B.gif", "c.txt"}));
    EXPECT_EQ(frame->title(), "File Count: 3");
    // Neither option was on: entering turns on the first.
    EXPECT_TRUE(wb.find<QRadioButton>("o_load_update_list_0")->isChecked());

    types->setEditText("*.gif;*.jpg");
    EXPECT_EQ(filter_key(), "*.gif;*.jpg");
    EXPECT_EQ(page->files().items(), in_pics({"a.jpg", "B.gif"}));
    EXPECT_EQ(wb.find<FileBox>("o_load_file_list")->pattern(), "*.gif;*.jpg");
    // An empty box is not written to the settings.
    types->setEditText("");
    EXPECT_EQ(filter_key(), "*.gif;*.jpg");

    types->setEditText("*.jpg");
    dirs->set_path(pics + "/sub");
    EXPECT_EQ(page->files().items(), in_pics({"sub/s.jpg"}));
    EXPECT_EQ(frame->title(), "File Count: 1");

    // Choosing a row lists the directory once, also when the choice changes
    // the text; choosing the row already shown lists it again.
    int listings = 0;
    QObject::connect(&page->files(), &QAbstractItemModel::modelReset, [&] { ++listings; });
    types->setFocus();
    types->setCurrentIndex(types->findText("*.jpg"));
    QCoreApplication::processEvents();
    listings = 0;
    QTest::keyClick(types, Qt::Key_Up);
    EXPECT_EQ(types->currentText(), "*.img");
    EXPECT_EQ(listings, 1);
    QCoreApplication::processEvents();
    Q_EMIT types->activated(types->currentIndex());
    EXPECT_EQ(listings, 2);

    // A filter kept in the settings comes back at the next restore.
    page->files().clear();
    home.app.settings.write("Current", "Last File Filter", "*.gif");
    wb.enter("Load");
    EXPECT_EQ(types->currentText(), "*.gif");
    EXPECT_EQ(page->files().items(), in_pics({"B.gif"}));

    // A root that cannot be opened is a drive that is not available.
    auto* drives = wb.find<DriveBox>("o_load_drive_list");
    drives->set_roots({"/", home.path("no-such-root")});
    drives->setCurrentIndex(1);
    EXPECT_EQ(home.dialogs.messages(), QStringList({"The drive you selected is not available."}));
    EXPECT_EQ(home.dialogs.asked()[0].icon, Dialogs::Icon::Information);
}

TEST_F(LoadTabTest, ScanNowCountsAsItWalksAndAfterItBrowsingNoLongerFills) {
    wb.enter("Load");
    types->setEditText("*.jpg;*.gif");
    // At each turn, the caption counts the rows of the directories walked
    // before the last one, as the directory box's change showed it (the walk
    // starts where the box is: no change). The turns here are as far apart
    // as those of a slow disk.
    QStringList captions;
    home.ui.on_turn = [&](int) {
        captions << frame->title();
        QTest::qSleep(60);
    };
    button("b_load_scan")->click();
    EXPECT_EQ(captions,
              QStringList({"File Count: 2", "File Count: 2", "File Count: 2", "File Count: 3"}));
    EXPECT_EQ(page->files().items(),
              in_pics({"a.jpg", "B.gif", "other/o.jpg", "sub/s.jpg", "sub/deeper/d.gif"}));
    EXPECT_EQ(frame->title(), "File Count: 5");
    EXPECT_TRUE(button("b_load_scan")->isVisibleTo(page));
    EXPECT_FALSE(button("b_load_cancel_scan")->isVisibleTo(page));
    EXPECT_EQ(dirs->path(), pics + "/sub/deeper");
    EXPECT_EQ(home.app.last_directory, pics);
    EXPECT_FALSE(home.ui.busy());

    home.ui.on_turn = nullptr;
    dirs->set_path(pics + "/other");
    EXPECT_EQ(page->files().count(), 5);
    EXPECT_EQ(frame->title(), "File Count: 5");
    // Entering with rows leaves the boxes where they are.
    wb.enter("Load");
    EXPECT_EQ(dirs->path(), pics + "/other");
    button("b_load_cancel_scan")->click();
    EXPECT_TRUE(home.app.stop_scan);

    // A directory that goes away before its turn is passed over, as the
    // walk goes on.
    types->setEditText("*.*");
    dirs->set_path(pics);
    home.ui.on_turn = [&](int turn) {
        if (turn == 3) {
            QDir(pics + "/sub").removeRecursively();
        }
    };
    home.ui.yields = 0;
    EXPECT_NO_THROW(page->scan_now());
    EXPECT_EQ(page->files().items(), in_pics({"a.jpg", "B.gif", "c.txt", "other/o.jpg"}));
    EXPECT_EQ(frame->title(), "File Count: 4");
    EXPECT_TRUE(button("b_load_scan")->isVisibleTo(page));
    EXPECT_FALSE(home.ui.busy());
}

TEST_F(LoadTabTest, MainListAsksAndTheSelectionAddsNoDuplicate) {
    wb.enter("Load");
    auto* append = wb.find<QCheckBox>("o_load_append_files");
    auto* main_title = wb.find<QLineEdit>("o_main_file_title");
    ItemList& main = home.app.main_list;

    // The first pass asks nothing.
    button("b_load_file_list")->click();
    EXPECT_TRUE(home.dialogs.asked().empty());
    EXPECT_EQ(main.count(), 3);
    EXPECT_EQ(wb.find<QGroupBox>("f_main")->title(), "File Count: 3");

    // Appended twice, the whole list doubles.
    append->setChecked(true);
    home.dialogs.answer(Dialogs::Answer::Yes);
    button("b_load_file_list")->click();
    EXPECT_EQ(main.count(), 6);
    EXPECT_EQ(home.dialogs.messages(),
              QStringList({"Are you sure you want to append the main list of files with the "
                           "loaded results?"}));

    // A selection adds only what the main list lacks; No changes nothing.
    wb.find<QRadioButton>("o_load_update_list_1")->setChecked(true);
    page->files().set_selected(1, true);
    main_title->setText("stale");
    home.dialogs.answer(Dialogs::Answer::No);
    button("b_load_file_list")->click();
    EXPECT_EQ(main_title->text(), "stale");
    home.dialogs.answer(Dialogs::Answer::Yes);
    button("b_load_file_list")->click();
    EXPECT_EQ(main.count(), 6);
    EXPECT_EQ(main_title->text(), "");

    append->setChecked(false);
    home.dialogs.clear();
    home.dialogs.answer(Dialogs::Answer::Yes);
    button("b_load_file_list")->click();
    EXPECT_EQ(home.dialogs.messages(),
              QStringList({"Are you sure you want to replace the main list of files with the "
                           "loaded results?"}));
    EXPECT_EQ(main.items(), in_pics({"B.gif"}));

    // Clear Main List asks nothing and leaves the caption as it was.
    button("b_load_clear_main_list")->click();
    EXPECT_TRUE(main.empty());
    EXPECT_EQ(wb.find<QGroupBox>("f_main")->title(), "File Count: 1");

    // An empty source list does nothing at all.
    page->files().clear();
    main.add("/x");
    home.dialogs.clear();
    button("b_load_file_list")->click();
    EXPECT_TRUE(home.dialogs.asked().empty());
    EXPECT_EQ(main.items(), QStringList({"/x"}));
}

TEST_F(LoadTabTest, DatabaseSearchAndPressesOnTheGatheredList) {
    home.write_image("pics/owl.jpg", 30, 20);
    wb.enter("Load");
    auto* catalog = wb.find<QComboBox>("o_load_catalog");
    catalog->setEditText("Birds");
    button("b_load_update_database")->click();
    EXPECT_EQ(home.dialogs.messages(),
              QStringList({"Update statistics:\n       Total Files:  4\n       Total Files "
                           "Added:  4\n"}));
    EXPECT_EQ(query_column(home.app, "select count(*) from filenames where catalog='Birds'"),
              QStringList({"4"}));
    // The catalog names are filled again, on this tab and the Main tab.
    EXPECT_EQ(catalog->count(), 1);
    EXPECT_EQ(catalog->currentText(), "");
    EXPECT_EQ(wb.find<QComboBox>("o_main_category")->count(), 1);

    home.dialogs.answer_input("OWL");
    button("b_load_searchtext")->click();
    EXPECT_EQ(page->files().list_index(), 3);
    EXPECT_EQ(home.app.preview_file, pics + "/owl.jpg");
    EXPECT_EQ(home.app.selected_file, pics + "/owl.jpg");

    // The right button pops up the menu and leaves the selection alone.
    click_row(0, Qt::RightButton);
    EXPECT_EQ(wb.menu_popups, 1);
    EXPECT_EQ(page->files().selected_rows(), QList<int>({3}));
    click_row(0, Qt::LeftButton);
    EXPECT_EQ(home.app.selected_file, pics + "/a.jpg");
}

// The window's Scan Now and the command line's scan walk the same tree into
// the same list, past what cannot be opened: a directory that can be listed
// but not entered, names that are not UTF-8. A directory reached through two
// links is listed twice; a link back up the tree is cut.
TEST_F(LoadTabTest, ScanNowAndTheCommandLineGiveTheSameListPastWhatCannotBeOpened) {
    home.write_file("pics/locked/in.jpg");
    QFile::setPermissions(pics + "/locked", QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    ASSERT_TRUE(QFile::link(pics + "/other", pics + "/sub/to_other"));
    ASSERT_TRUE(QFile::link(pics + "/other", pics + "/sub/deeper/to_other"));
    ASSERT_TRUE(QFile::link(pics, pics + "/other/up"));
    for (const char* name : {"pics/\xe9t\xe9/", "pics/\xe9t\xe9.jpg", "pics/\xe9t\xe9/in.jpg"}) {
        home.make_raw(name);
    }
    const QStringList scan{"scan", pics, "--filter", "*.jpg"};
    auto window_scan = [&] {
        wb.enter("Load");
        types->setEditText("*.jpg");
        dirs->set_path(pics);
        button("b_load_scan")->click();
        return page->files().items();
    };
    const QStringList as_user = in_pics(
        {"a.jpg", "other/o.jpg", "sub/s.jpg", "sub/to_other/o.jpg", "sub/deeper/to_other/o.jpg"});
    // Root enters the locked directory.
    QStringList as_root = as_user;
    as_root.insert(1, pics + "/locked/in.jpg");
    EXPECT_EQ(window_scan(), as_root);
    EXPECT_EQ(run_cli(home.dir(), scan).lines, as_root);

    const CliRun cli = run_cli(home.dir(), scan, 120000, become_plain_user_in_child);
    PlainUserThread user;
    if (!user.why_not().isEmpty()) {
        GTEST_SKIP() << user.why_not().toStdString();
    }
    EXPECT_EQ(window_scan(), as_user);
    EXPECT_TRUE(home.dialogs.messages().isEmpty());
    ASSERT_NE(cli.code, kNoPlainUser) << "the command line could not run as a plain user";
    EXPECT_EQ(cli.lines, as_user) << cli.err.toStdString();
}
