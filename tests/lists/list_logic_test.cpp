#include "catalog/database.h"
#include "core/item_list.h"
#include "lists/directory_walk.h"
#include "lists/item_menu.h"
#include "support/cli_run.h"
#include "support/qt_print.h"
#include "support/test_home.h"

#include <QDir>
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
}

TEST(ItemMenu, DeleteFromDiskAndDatabaseRemovesTheRowAndAlwaysRefreshesTheCount) {
    TestHome home;
    const QString a = home.write_file("a.jpg");
    for (const QString& p : {a, home.path("other.jpg")}) {
        home.app.database.execute(Sql("insert into filenames (filename) values ('%1')").arg(p));
    }
    Menu search(home, "Search", {a});
    search.run_on(0, kDeleteFromDiskAndDatabase, Dialogs::Answer::Yes);
    EXPECT_EQ(home.dialogs.messages().last(),
              kDeleteQuestion + a + "' from disk and the database?");
    EXPECT_FALSE(QFileInfo::exists(a));
    EXPECT_TRUE(search.list.empty());
    EXPECT_EQ(search.record_count, "Database Record Count:  1");

    // Another tab asks nothing but shows the count all the same.
    home.dialogs.clear();
    Menu load(home, "Load", {home.path("other.jpg")});
    load.run_on(0, kDeleteFromDiskAndDatabase);
    EXPECT_TRUE(home.dialogs.asked().empty());
    EXPECT_EQ(load.record_count, "Database Record Count:  1");
}

TEST(DirectoryWalk, CancelStopsAtTheNextDirectoryAndKeepsTheQueue) {
    TestHome home{false};
    for (const char* f : {"tree/top.jpg", "tree/Beta/b1.gif", "tree/alpha/a1.jpg",
                          "tree/alpha/deep/d1.JPG", "tree/gamma/notes.txt"}) {
        home.write_file(f);
    }
    const QString root = QDir(home.path("tree")).canonicalPath();
    home.ui.on_turn = [&](int turn) {
        if (turn == 3) {
            home.app.stop_scan = true;  // as the Cancel button would
        }
    };
    ItemList files;
    files.add("/stale");
    scan_directory_tree(home.ctx, root, "*.*", files);
    // Two directories were walked before the stop was seen.
    EXPECT_EQ(files.items(), QStringList({root + "/top.jpg", root + "/alpha/a1.jpg"}));
    EXPECT_EQ(home.app.directory_list.items(),
              QStringList({root + "/Beta", root + "/gamma", root + "/alpha/deep"}));
    EXPECT_EQ(home.ui.yields, 3);
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
    EXPECT_EQ(again.out,
              "Update statistics:\n       Total Files:  1\n       Total Files Added:  0\n");
    EXPECT_EQ(query_column(home.app, "select catalog from filenames where filename='/p/a.jpg'"),
              QStringList({"Birds"}));
    const CliRun no_name = run_cli(home.dir(), {"catalog-add", "/p/d.jpg"});
    EXPECT_EQ(no_name.code, 2);
    EXPECT_EQ(query_column(home.app, "select count(*) from filenames"), QStringList({"3"}));
}
