#include "catalog/database.h"
#include "core/run_error.h"
#include "imaging/image_view.h"
#include "lists/load_tab.h"
#include "lists/main_tab.h"
#include "support/cli_run.h"
#include "support/plain_user.h"
#include "support/qt_print.h"
#include "support/test_home.h"
#include "support/test_workbench.h"
#include "ui/directory_box.h"
#include "ui/drive_box.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QGroupBox>
#include <QLineEdit>
#include <QListView>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

#include <gtest/gtest.h>

namespace {

class MainTabTest : public ::testing::Test {
protected:
    void SetUp() override {
        page = wb.add_page<MainTab>("Main");
        // The Save command reads the Load tab's catalog box.
        load_catalog = wb.plant<QComboBox>("o_load_catalog");
        load_catalog->setEditable(true);
        wb.window().show();
    }
    QListView* list() { return wb.find<QListView>("o_main_itemlist"); }
    QLineEdit* title() { return wb.find<QLineEdit>("o_main_file_title"); }
    QPlainTextEdit* description() { return wb.find<QPlainTextEdit>("o_main_image_description"); }
    QComboBox* category() { return wb.find<QComboBox>("o_main_category"); }
    QPushButton* save() { return wb.find<QPushButton>("b_main_save"); }
    ItemList& main_list() { return home.app.main_list; }
    void press_row(int row, Qt::MouseButton button = Qt::LeftButton) {
        const QRect r = list()->visualRect(main_list().index(row));
        QTest::mouseClick(list()->viewport(), button, {}, r.center());
    }
    QStringList fields() {
        return {title()->text(), description()->toPlainText(), category()->currentText()};
    }

    TestHome home;
    TestWorkbench wb{home};
    MainTab* page = nullptr;
    QComboBox* load_catalog = nullptr;
};

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
        page->fill_file_types();
    }

    QPushButton* button(const char* name) { return wb.find<QPushButton>(name); }
    DirectoryBox* dirs() { return wb.find<DirectoryBox>("o_load_dir_list"); }
    QComboBox* types() { return wb.find<QComboBox>("o_load_file_types"); }
    QGroupBox* frame() { return wb.find<QGroupBox>("f_load"); }
    QStringList in_pics(const QStringList& names) const {
        QStringList out;
        for (const QString& n : names) {
            out << pics + u'/' + n;
        }
        return out;
    }

    TestHome home;
    TestWorkbench wb{home};
    LoadTab* page = nullptr;
    QString pics;
};
}  // namespace

TEST_F(MainTabTest, SelectingARowShowsItsFileAndCatalogRowAndSaveWritesIt) {
    const QString owl = home.write_image("pics/owl.jpg", 40, 30);
    const QString notes = home.write_file("pics/notes.txt");
    home.app.database.execute(
        Sql("insert into filenames (filename, title, description, catalog) values "
            "('%1', 'Owl', 'At night', 'Birds')")
            .arg(owl));
    main_list().add_many({owl, notes, home.write_file("pics/it's.txt")});
    wb.enter("Main");
    auto* viewer = wb.find<ImageView>("o_main_image_view");
    press_row(0);
    EXPECT_EQ(fields(), QStringList({"Owl", "At night", "Birds"}));
    EXPECT_EQ(viewer->control().file_name(), owl);

    // An edit enables Save; moving on drops it without a word.
    QTest::keyClicks(title(), " edited");
    EXPECT_TRUE(save()->isEnabled());
    press_row(1);
    EXPECT_EQ(fields(), QStringList({"", "", ""}));
    EXPECT_FALSE(save()->isEnabled());
    EXPECT_EQ(home.app.selected_file, notes);
    // A file that is no image clears the viewer but keeps the preview file.
    EXPECT_EQ(home.app.preview_file, owl);
    EXPECT_EQ(viewer->control().file_name(), "");
    EXPECT_EQ(query_column(home.app, "select title from filenames"), QStringList({"Owl"}));

    // Empty controls write empty texts, not nulls.
    const QString birds = "select count(*) from catalog where catalog='Birds'";
    title()->setText("First");
    category()->setEditText("Birds");
    save()->click();
    EXPECT_FALSE(save()->isEnabled());
    EXPECT_EQ(query_column(home.app,
                           "select filename || '|' || title || '|' || ifnull(description, "
                           "'<null>') || '|' || catalog from filenames where title <> 'Owl'"),
              QStringList({notes + "|First||Birds"}));
    // The lookup reads the Load tab's empty box, so every save adds the name
    // again; the lists fold the copies. A later save edits the same row.
    title()->setText("Again");
    save()->click();
    EXPECT_EQ(query_column(home.app, birds), QStringList({"2"}));
    EXPECT_EQ(category()->count(), 1);
    load_catalog->setEditText("Birds");
    description()->setPlainText("Two\nlines");
    save()->click();
    EXPECT_EQ(query_column(home.app, birds), QStringList({"2"}));
    EXPECT_EQ(query_column(home.app, "select title || '|' || description from filenames"),
              QStringList({"Owl|At night", "Again|Two\nlines"}));

    // A path with an apostrophe is neither looked up (the former values stay)
    // nor saved.
    press_row(2);
    EXPECT_EQ(fields(), QStringList({"Again", "Two\nlines", "Birds"}));
    title()->setText("Never");
    save()->click();
    EXPECT_EQ(query_column(home.app, "select count(*) from filenames"), QStringList({"2"}));
    EXPECT_TRUE(home.dialogs.asked().empty());
}

TEST_F(MainTabTest, DoubleClickRemovesAndMovesKeepTheSelectionOnTheMovedRow) {
    main_list().add_many({"/p/a", "/p/b", "/p/c", "/p/d"});
    press_row(2);
    category()->setEditText("Kept");
    title()->setText("Gone");
    const QRect r = list()->visualRect(main_list().index(2));
    QTest::mouseDClick(list()->viewport(), Qt::LeftButton, {}, r.center());
    EXPECT_EQ(main_list().items(), QStringList({"/p/a", "/p/b", "/p/d"}));
    EXPECT_EQ(main_list().list_index(), 1);
    EXPECT_EQ(main_list().selected_rows(), QList<int>({1}));
    EXPECT_EQ(fields(), QStringList({"", "", "Kept"}));
    EXPECT_EQ(home.app.selected_file, "/p/c");

    // Up and down stop at the ends.
    auto* up = wb.find<QPushButton>("Command2");
    up->click();
    EXPECT_EQ(main_list().items(), QStringList({"/p/b", "/p/a", "/p/d"}));
    EXPECT_EQ(main_list().selected_rows(), QList<int>({0}));
    up->click();
    EXPECT_EQ(main_list().items(), QStringList({"/p/b", "/p/a", "/p/d"}));
    for (int i = 0; i < 3; ++i) {
        wb.find<QPushButton>("b_main_move_down")->click();
    }
    EXPECT_EQ(main_list().items(), QStringList({"/p/a", "/p/d", "/p/b"}));
    EXPECT_EQ(main_list().selected_rows(), QList<int>({2}));
    EXPECT_EQ(main_list().list_index(), 2);
}

TEST_F(MainTabTest, SortByNameIgnoresCaseByDateIsOldestFirstAndBothClearTheFields) {
    auto sort_by = [&](int option) {
        wb.find<QRadioButton>(QString("o_main_sort_by_%1").arg(option))->setChecked(true);
        wb.find<QPushButton>("b_main_sort_file_list")->click();
    };
    main_list().add_many({"/p/b.jpg", "/p/C.jpg", "/p/a.jpg", "/p/A.jpg", "/p/B.jpg"});
    press_row(0);
    title()->setText("x");
    sort_by(0);
    // Equal names keep the order they had.
    EXPECT_EQ(main_list().items(),
              QStringList({"/p/a.jpg", "/p/A.jpg", "/p/b.jpg", "/p/B.jpg", "/p/C.jpg"}));
    EXPECT_EQ(fields(), QStringList({"", "", ""}));
    EXPECT_TRUE(main_list().selected_rows().isEmpty());

    const QDateTime base(QDate(2002, 7, 4), QTime(9, 5, 31));
    auto dated = [&](const QString& name, int seconds) {
        const QString p = home.write_file(name);
        QFile f(p);
        f.open(QIODevice::ReadWrite);
        f.setFileTime(base.addSecs(seconds), QFileDevice::FileModificationTime);
        return p;
    };
    const QString newest = dated("a.txt", 3600);
    const QString same_b = dated("N1.txt", 0);
    const QString same_a = dated("m0.txt", 0);
    const QString oldest = dated("z.txt", -86400);
    main_list().set_items({newest, same_b, oldest, same_a});
    sort_by(1);
    // Equal times keep the order of their paths.
    EXPECT_EQ(main_list().items(), QStringList({oldest, same_a, same_b, newest}));
    // A missing file stops the sort before the list changes.
    main_list().add(home.path("missing.txt"));
    EXPECT_THROW(page->sort_list(), RunError);
    EXPECT_EQ(main_list().count(), 5);
}

TEST_F(LoadTabTest, RestoreThenBrowsingListsTheDirectoryByTheFilter) {
    auto filter_key = [&] { return home.app.settings.read("Current", "Last File Filter"); };
    wb.enter("Load");
    EXPECT_EQ(types()->currentText(), "*.*");
    EXPECT_EQ(filter_key(), "*.*");
    EXPECT_EQ(dirs()->path(), pics);
    EXPECT_EQ(page->files().items(), in_pics({"a.jpg", "B.gif", "c.txt"}));
    EXPECT_EQ(frame()->title(), "File Count: 3");

    types()->setEditText("*.gif;*.jpg");
    EXPECT_EQ(filter_key(), "*.gif;*.jpg");
    EXPECT_EQ(page->files().items(), in_pics({"a.jpg", "B.gif"}));
    types()->setEditText("*.jpg");
    dirs()->set_path(pics + "/sub");
    EXPECT_EQ(page->files().items(), in_pics({"sub/s.jpg"}));
    EXPECT_EQ(frame()->title(), "File Count: 1");

    // A root that cannot be opened is a drive that is not available.
    auto* drives = wb.find<DriveBox>("o_load_drive_list");
    drives->set_roots({"/", home.path("no-such-root")});
    drives->setCurrentIndex(1);
    EXPECT_EQ(home.dialogs.messages(), QStringList({"The drive you selected is not available."}));
}

TEST_F(LoadTabTest, ScanNowCountsAsItWalksAndAfterItBrowsingNoLongerFills) {
    wb.enter("Load");
    types()->setEditText("*.jpg;*.gif");
    // At each turn, the caption counts the rows of the directories walked
    // before the last one, as the directory box's change showed it (the walk
    // starts where the box is: no change). The turns here are as far apart
    // as those of a slow disk.
    QStringList captions;
    QList<int> listed;  // the list itself fills a few times a second
    home.ui.on_turn = [&](int) {
        captions << frame()->title();
        listed << page->files().count();
        QTest::qSleep(60);
    };
    button("b_load_scan")->click();
    EXPECT_EQ(captions,
              QStringList({"File Count: 2", "File Count: 2", "File Count: 2", "File Count: 3"}));
    EXPECT_GT(listed.last(), 0);
    EXPECT_EQ(page->files().items(),
              in_pics({"a.jpg", "B.gif", "other/o.jpg", "sub/s.jpg", "sub/deeper/d.gif"}));
    EXPECT_EQ(frame()->title(), "File Count: 5");
    EXPECT_FALSE(button("b_load_cancel_scan")->isVisibleTo(page));
    EXPECT_EQ(dirs()->path(), pics + "/sub/deeper");
    EXPECT_FALSE(home.ui.busy());

    dirs()->set_path(pics + "/other");
    EXPECT_EQ(page->files().count(), 5);

    // A directory that goes away before its turn is passed over, as the
    // walk goes on.
    types()->setEditText("*.*");
    dirs()->set_path(pics);
    home.ui.on_turn = [&](int turn) {
        if (turn == 3) {
            QDir(pics + "/sub").removeRecursively();
        }
    };
    home.ui.yields = 0;
    EXPECT_NO_THROW(page->scan_now());
    EXPECT_EQ(page->files().items(), in_pics({"a.jpg", "B.gif", "c.txt", "other/o.jpg"}));
    EXPECT_EQ(frame()->title(), "File Count: 4");
}

TEST_F(LoadTabTest, MainListAsksAndTheSelectionAddsNoDuplicate) {
    wb.enter("Load");
    auto* append = wb.find<QCheckBox>("o_load_append_files");
    auto* main_title = wb.find<QLineEdit>("o_main_file_title");
    ItemList& main = home.app.main_list;

    button("b_load_file_list")->click();
    EXPECT_TRUE(home.dialogs.asked().empty());
    EXPECT_EQ(main.count(), 3);
    EXPECT_EQ(wb.find<QGroupBox>("f_main")->title(), "File Count: 3");

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
    EXPECT_EQ(wb.find<QComboBox>("o_main_category")->count(), 1);

    home.dialogs.answer_input("OWL");
    button("b_load_searchtext")->click();
    EXPECT_EQ(home.dialogs.asked().back().text, "Enter the search text.");
    EXPECT_EQ(home.dialogs.asked().back().title, "Text Search");
    EXPECT_EQ(page->files().list_index(), 3);
    EXPECT_EQ(home.app.selected_file, pics + "/owl.jpg");
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
    const QStringList scan{"scan", pics + "/", "--filter", "*.jpg"};
    auto window_scan = [&] {
        wb.enter("Load");
        types()->setEditText("*.jpg");
        dirs()->set_path(pics);
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
