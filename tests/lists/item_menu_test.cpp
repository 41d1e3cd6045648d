#include "lists/item_menu.h"
#include "catalog/database.h"
#include "core/item_list.h"

#include "support/qt_print.h"
#include "support/test_home.h"

#include <QFileInfo>

#include <optional>

#include <gtest/gtest.h>

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
