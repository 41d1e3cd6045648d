#include "catalog/database.h"
#include "core/item_list.h"
#include "lists/directory_walk.h"
#include "lists/item_menu.h"
#include "lists/list_transfer.h"
#include "support/cli_run.h"
#include "support/qt_print.h"
#include "support/test_home.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <optional>

namespace {

struct Menu {
    explicit Menu(TestHome& home, const QString& caption, QStringList rows) : home(home) {
        list.set_items(rows);
        target.caption = caption;
        target.list = &list;
        target.show_count = [this](int n) { counts << n; };
        target.show_record_count = [this](const QString& c) { record_count = c; };
    }
    // Makes `row` the focused, selected row, then runs menu item `item`,
    // answering its question with `answer` when one is given.
    void run_on(int row, int item, std::optional<Dialogs::Answer> answer = std::nullopt) {
        list.set_list_index(row);
        list.set_selected(row, true);
        if (answer) {
            home.dialogs.answer(*answer);
        }
        run_item_menu(home.ctx, item, target);
    }
    TestHome& home;
    ItemList list;
    ItemMenuTarget target;
    QList<int> counts;
    QString record_count;
};

const QString kDeleteQuestion = "Are you sure you want to permanently delete '";

class DirectoryWalkTest : public ::testing::Test {
protected:
    void SetUp() override {
        for (const char* f :
             {"tree/top.jpg", "tree/Beta/b1.gif", "tree/alpha/a1.jpg", "tree/alpha/deep/d1.JPG",
              "tree/alpha/deep/skip.txt", "tree/Beta/inner/i1.jpg", "tree/gamma/notes.txt"}) {
            home.write_file(f);
        }
        root = QDir(home.path("tree")).canonicalPath();
    }
    QStringList under_root(const QStringList& names) const {
        QStringList out;
        for (const QString& n : names) {
            out << root + u'/' + n;
        }
        return out;
    }
    TestHome home{false};
    QString root;
};
}  // namespace

TEST(ItemMenu, RemoveTakesAllSelectedRowsExceptOnSearchWhereOnlyTheFocusedOneGoes) {
    TestHome home;
    for (const QString caption : {"Main", "Load", "Search", "Resize"}) {
        SCOPED_TRACE(caption.toStdString());
        Menu m(home, caption, {"a", "b", "c", "d", "e"});
        m.list.set_selected(1, true);
        m.list.set_selected(4, true);
        m.run_on(2, kRemoveFromList);
        EXPECT_EQ(m.list.items(), caption == "Search" ? QStringList({"a", "b", "d", "e"})
                                                      : QStringList({"a", "d"}));
        const bool counted = caption == "Load" || caption == "Resize";
        EXPECT_EQ(m.counts, counted ? QList<int>{2} : QList<int>{});
    }
}

TEST(ItemMenu, DeleteFromDiskAsksWithTheTabsEndingAndOpenTakesTheSelectedFocusedRow) {
    TestHome home;
    const QString a = home.write_file("pics/a.jpg");
    const QString b = home.write_file("pics/b.jpg");
    Menu main(home, "Main", {a, b});
    main.list.set_list_index(0);  // focused but not selected: no row
    run_item_menu(home.ctx, kDeleteFromDisk, main.target);
    run_item_menu(home.ctx, kOpenWithApplication, main.target);
    EXPECT_TRUE(home.dialogs.asked().empty());
    EXPECT_TRUE(home.shell.opened.isEmpty());
    main.run_on(1, kOpenWithApplication);
    EXPECT_EQ(home.shell.opened, QStringList({b}));
    main.list.clear_selection();
    main.run_on(0, kDeleteFromDisk, Dialogs::Answer::No);
    EXPECT_EQ(home.dialogs.messages().last(), kDeleteQuestion + a + "'?");
    EXPECT_TRUE(QFileInfo::exists(a));
    main.run_on(0, kDeleteFromDisk, Dialogs::Answer::Yes);
    EXPECT_FALSE(QFileInfo::exists(a));
    EXPECT_EQ(main.list.items(), QStringList({b}));

    Menu load(home, "Load", {b});
    load.run_on(0, kDeleteFromDisk, Dialogs::Answer::Yes);
    EXPECT_EQ(home.dialogs.messages().last(), kDeleteQuestion + b + "' from disk?");
    EXPECT_TRUE(load.list.empty());

    // The Resize tab's list neither deletes nor opens.
    home.dialogs.clear();
    home.shell.opened.clear();
    Menu resize(home, "Resize", {"x"});
    resize.run_on(0, kDeleteFromDisk);
    resize.run_on(0, kOpenWithApplication);
    EXPECT_TRUE(home.dialogs.asked().empty());
    EXPECT_TRUE(home.shell.opened.isEmpty());
}

TEST(ItemMenu, DeleteFromDiskAndDatabaseRemovesTheRowAndAlwaysRefreshesTheCount) {
    TestHome home;
    const QString a = home.write_file("a.jpg");
    const QString quote = home.write_file("it's.jpg");
    for (const QString& p : {a, home.path("other.jpg")}) {
        home.app.database.execute(Sql("insert into filenames (filename) values ('%1')").arg(p));
    }
    Menu search(home, "Search", {a, quote});
    search.run_on(0, kDeleteFromDiskAndDatabase, Dialogs::Answer::Yes);
    EXPECT_EQ(home.dialogs.messages().last(),
              kDeleteQuestion + a + "' from disk and the database?");
    EXPECT_FALSE(QFileInfo::exists(a));
    EXPECT_EQ(search.list.items(), QStringList({quote}));
    EXPECT_EQ(search.record_count, "Database Record Count:  1");
    // An apostrophe makes the statement fail: the file still goes.
    search.run_on(0, kDeleteFromDiskAndDatabase, Dialogs::Answer::Yes);
    EXPECT_FALSE(QFileInfo::exists(quote));
    EXPECT_TRUE(search.list.empty());

    // Another tab asks nothing but shows the count all the same.
    home.dialogs.clear();
    Menu load(home, "Load", {home.path("other.jpg")});
    load.run_on(0, kDeleteFromDiskAndDatabase);
    EXPECT_TRUE(home.dialogs.asked().empty());
    EXPECT_EQ(load.record_count, "Database Record Count:  1");
}

TEST_F(DirectoryWalkTest, BreadthFirstWithParentsBeforeChildrenAndPatternLists) {
    ItemList files;
    home.app.stop_scan = true;  // a former cancel does not stop a new walk
    const QString last = scan_directory_tree(home.ctx, root, "*.*", files);
    EXPECT_EQ(files.items(),
              under_root({"top.jpg", "alpha/a1.jpg", "Beta/b1.gif", "gamma/notes.txt",
                          "alpha/deep/d1.JPG", "alpha/deep/skip.txt", "Beta/inner/i1.jpg"}));
    EXPECT_EQ(last, root + "/Beta/inner");
    EXPECT_TRUE(home.app.scan_started);
    EXPECT_FALSE(home.app.stop_scan);
    EXPECT_TRUE(home.app.directory_list.empty());
    // One turn of the message loop per directory.
    EXPECT_EQ(home.ui.yields, 6);

    // A pattern list takes every kind it names, ignoring case.
    scan_directory_tree(home.ctx, root, "*.gif;*.jpg", files);
    EXPECT_EQ(files.items(), under_root({"top.jpg", "alpha/a1.jpg", "Beta/b1.gif",
                                         "alpha/deep/d1.JPG", "Beta/inner/i1.jpg"}));
    scan_directory_tree(home.ctx, root, "*.txt", files);
    EXPECT_EQ(files.items(), under_root({"gamma/notes.txt", "alpha/deep/skip.txt"}));
}

TEST_F(DirectoryWalkTest, CancelStopsAtTheNextDirectoryAndKeepsTheQueue) {
    RecordingUi cancel;
    cancel.on_turn = [&](int turn) {
        if (turn == 3) {
            home.app.stop_scan = true;  // as the Cancel button would
        }
    };
    Context ctx{home.app, home.dialogs, cancel, home.shell};
    ItemList files;
    files.add("/stale");
    scan_directory_tree(ctx, root, "*.*", files);
    // Two directories were walked before the stop was seen.
    EXPECT_EQ(files.items(), under_root({"top.jpg", "alpha/a1.jpg"}));
    EXPECT_EQ(home.app.directory_list.items(), under_root({"Beta", "gamma", "alpha/deep"}));
    EXPECT_EQ(cancel.yields, 3);
}

TEST_F(DirectoryWalkTest, OnlyLinksBackUpTheTreeAreCutAndUnreadableDirectoriesArePassed) {
    ASSERT_TRUE(QFile::link(root, root + "/alpha/loop"));
    ASSERT_TRUE(QFile::link(root + "/alpha", root + "/gamma/to_alpha"));
    // A directory that goes away after it was queued cannot be read.
    DirectoryWalk hooks;
    hooks.visiting = [&](const QString& dir) {
        if (dir == root) {
            QDir(root + "/Beta").removeRecursively();
        }
    };
    ItemList files;
    scan_directory_tree(home.ctx, root, "*.*", files, hooks);
    // The directory reached through a second link is walked again.
    EXPECT_EQ(files.items(),
              under_root({"top.jpg", "alpha/a1.jpg", "gamma/notes.txt", "alpha/deep/d1.JPG",
                          "alpha/deep/skip.txt", "gamma/to_alpha/a1.jpg",
                          "gamma/to_alpha/deep/d1.JPG", "gamma/to_alpha/deep/skip.txt"}));
}

TEST(PassToMainList, ASelectionNeverAddsAPathTwiceButCaseCounts) {
    TestHome home;
    ItemList source;
    source.add_many({"/p/A.jpg", "/p/b.jpg", "/p/c.jpg", "/p/b.jpg", "/p/d.jpg"});
    for (const int row : {0, 1, 3, 4}) {
        source.set_selected(row, true);
    }
    ItemList& main = home.app.main_list;
    main.add_many({"/p/a.jpg", "/p/d.jpg"});
    UpdateListOption option = UpdateListOption::SelectedFiles;
    home.dialogs.answer(Dialogs::Answer::Yes);
    EXPECT_TRUE(pass_to_main_list(home.ctx, source, main, true, option));
    EXPECT_EQ(main.items(), QStringList({"/p/a.jpg", "/p/d.jpg", "/p/A.jpg", "/p/b.jpg"}));
    EXPECT_EQ(option, UpdateListOption::SelectedFiles);

    // Replacing with nothing selected leaves an empty main list.
    source.clear_selection();
    home.dialogs.answer(Dialogs::Answer::Yes);
    EXPECT_TRUE(pass_to_main_list(home.ctx, source, main, false, option));
    EXPECT_TRUE(main.empty());
}

TEST(SearchFileList, FindsTheFirstRowHoldingTheTextIgnoringCase) {
    TestHome home;
    ItemList list;
    list.add_many({"/p/Owl.jpg", "/p/cat.gif", "/p/big owl.png", "/p/CAT2.gif"});
    list.set_selected(0, true);

    EXPECT_EQ(search_file_list(home.ctx, list), -1);
    ASSERT_EQ(home.dialogs.asked().size(), 1u);
    EXPECT_EQ(home.dialogs.asked()[0].kind, "input");
    EXPECT_EQ(home.dialogs.asked()[0].text, "Enter the search text.");
    EXPECT_EQ(home.dialogs.asked()[0].title, "Text Search");

    home.dialogs.answer_input("CAT");
    EXPECT_EQ(search_file_list(home.ctx, list), 1);
    EXPECT_EQ(list.selected_rows(), QList<int>({0, 1}));
    EXPECT_EQ(list.list_index(), 1);

    home.dialogs.answer_input("zebra");
    EXPECT_EQ(search_file_list(home.ctx, list), -1);
    EXPECT_EQ(list.selected_rows(), QList<int>({0, 1}));
    EXPECT_EQ(list.list_index(), 1);
    // Nothing is said when nothing is found.
    EXPECT_TRUE(home.dialogs.messages().isEmpty());
}

TEST(CliScan, PrintsThePathsOfTheWalkInItsOrder) {
    TestHome home;
    for (const char* f : {"tree/z.jpg", "tree/b/x.GIF", "tree/a/y.txt", "tree/a/in/w.jpg"}) {
        home.write_file(f);
    }
    const QString root = QDir(home.path("tree")).canonicalPath();
    ASSERT_TRUE(QFile::link(root, root + "/a/in/up"));

    const CliRun all = run_cli(home.dir(), {"scan", root + "/"});
    EXPECT_EQ(all.code, 0) << all.err.toStdString();
    EXPECT_EQ(all.lines, QStringList({root + "/z.jpg", root + "/a/y.txt", root + "/b/x.GIF",
                                      root + "/a/in/w.jpg"}));

    const CliRun missing = run_cli(home.dir(), {"scan", home.path("nowhere")});
    EXPECT_EQ(missing.code, 1);
    EXPECT_TRUE(missing.lines.isEmpty());
    EXPECT_TRUE(missing.err.contains("Path not found")) << missing.err.toStdString();
}

TEST(CliCatalogAdd, EntersThePathsAndPrintsTheStatistics) {
    TestHome home;
    const CliRun first = run_cli(home.dir(), {"catalog-add", "--catalog", "Birds", "/p/a.jpg",
                                              "/p/it's.jpg", "/p/b.jpg", "/p/c.jpg"});
    EXPECT_EQ(first.code, 0) << first.err.toStdString();
    EXPECT_EQ(first.out,
              "Update statistics:\n"
              "       Total Files:  4\n"
              "       Total Files Added:  2\n"
              "       Total Files Not Added:  1\n"
              "\n"
              "(files are not added because they already exist in the database or there was a "
              "problem)\n");
    EXPECT_EQ(query_column(home.app, "select filename || '|' || catalog from filenames order by 1"),
              QStringList({"/p/a.jpg|Birds", "/p/b.jpg|Birds", "/p/c.jpg|Birds"}));
    EXPECT_EQ(query_column(home.app, "select catalog from catalog"), QStringList({"Birds"}));

    const CliRun again = run_cli(home.dir(), {"catalog-add", "--catalog", "Trees", "/p/a.jpg"});
    EXPECT_EQ(again.code, 0);
    EXPECT_EQ(again.out,
              "Update statistics:\n       Total Files:  1\n       Total Files Added:  0\n");
    EXPECT_EQ(query_column(home.app, "select catalog from filenames where filename='/p/a.jpg'"),
              QStringList({"Birds"}));

    const CliRun no_name = run_cli(home.dir(), {"catalog-add", "/p/d.jpg"});
    EXPECT_EQ(no_name.code, 2);
    EXPECT_TRUE(no_name.out.isEmpty());
    EXPECT_EQ(query_column(home.app, "select count(*) from filenames"), QStringList({"3"}));
}
