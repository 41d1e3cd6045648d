#include "lists/item_menu.h"
#include "catalog/database.h"
#include "shell/item_list.h"

#include "support/qt_print.h"
#include "support/test_home.h"

#include <QFileInfo>

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
    void run(int row) { run_item_menu(home.ctx, row, target); }
    TestHome& home;
    ItemList list;
    ItemMenuTarget target;
    QList<int> counts;
    QString record_count;
};

}  // namespace

TEST(ItemMenu, RemoveTakesAllSelectedRowsExceptOnSearchWhereOnlyTheFocusedOneGoes) {
    TestHome home;
    for (const char* caption : {"Main", "Load", "Search", "Resize"}) {
        Menu m(home, caption, {"a", "b", "c", "d", "e"});
        for (int i : {1, 2, 4}) {
            m.list.set_selected(i, true);
        }
        m.list.set_list_index(2);
        m.run(kRemoveFromList);
        if (QString(caption) == "Search") {
            EXPECT_EQ(m.list.items(), QStringList({"a", "b", "d", "e"}));
        } else {
            EXPECT_EQ(m.list.items(), QStringList({"a", "d"})) << caption;
        }
        const bool counted = QString(caption) == "Load" || QString(caption) == "Resize";
        EXPECT_EQ(m.counts, counted ? QList<int>{2} : QList<int>{}) << caption;
    }
}

TEST(ItemMenu, DeleteFromDiskAsksWithTheTabsEndingAndKeepsTheCatalogRow) {
    TestHome home;
    const QString a = home.write_file("pics/a.jpg");
    const QString b = home.write_file("pics/b.jpg");
    {
        Menu m(home, "Main", {a, b});
        m.list.set_list_index(0);  // focused but not selected: no row
        m.run(kDeleteFromDisk);
        EXPECT_TRUE(home.dialogs.asked().empty());
        m.list.set_selected(0, true);
        home.dialogs.answer(Dialogs::Answer::No);
        m.run(kDeleteFromDisk);
        EXPECT_EQ(home.dialogs.messages().last(),
                  "Are you sure you want to permanently delete '" + a + "'?");
        EXPECT_TRUE(QFileInfo::exists(a));
        home.dialogs.answer(Dialogs::Answer::Yes);
        m.run(kDeleteFromDisk);
        EXPECT_FALSE(QFileInfo::exists(a));
        EXPECT_EQ(m.list.items(), QStringList({b}));
    }
    {
        Menu m(home, "Load", {b});
        m.list.set_list_index(0);
        m.list.set_selected(0, true);
        home.dialogs.answer(Dialogs::Answer::Yes);
        m.run(kDeleteFromDisk);
        EXPECT_EQ(home.dialogs.messages().last(),
                  "Are you sure you want to permanently delete '" + b + "' from disk?");
        EXPECT_TRUE(m.list.empty());
    }
    {
        home.dialogs.clear();
        Menu m(home, "Resize", {"x"});
        m.list.set_list_index(0);
        m.list.set_selected(0, true);
        m.run(kDeleteFromDisk);
        m.run(kOpenWithApplication);
        EXPECT_TRUE(home.dialogs.asked().empty());
        EXPECT_TRUE(home.shell.opened.isEmpty());
    }
}

TEST(ItemMenu, DeleteFromDiskAndDatabaseRemovesTheRowAndAlwaysRefreshesTheCount) {
    TestHome home;
    const QString a = home.write_file("a.jpg");
    const QString quote = home.write_file("it's.jpg");
    for (const QString& p : {a, home.path("other.jpg")}) {
        home.app.database.execute(Sql("delete * from filenames where filename='%1'").arg(p));
        Recordset rs;
        rs.open(home.app.database, Sql("select * from filenames where filename='trash'"));
        rs.add_new();
        rs.set_field("filename", p);
        rs.update();
    }
    {
        Menu m(home, "Search", {a, quote});
        m.list.set_list_index(0);
        m.list.set_selected(0, true);
        home.dialogs.answer(Dialogs::Answer::Yes);
        m.run(kDeleteFromDiskAndDatabase);
        EXPECT_EQ(home.dialogs.messages().last(), "Are you sure you want to permanently delete '" +
                                                      a + "' from disk and the database?");
        EXPECT_FALSE(QFileInfo::exists(a));
        EXPECT_EQ(m.list.items(), QStringList({quote}));
        EXPECT_EQ(m.record_count, "Database Record Count:  1");
        // An apostrophe makes the statement fail: the file still goes.
        m.list.set_list_index(0);
        m.list.set_selected(0, true);
        home.dialogs.answer(Dialogs::Answer::Yes);
        m.run(kDeleteFromDiskAndDatabase);
        EXPECT_FALSE(QFileInfo::exists(quote));
        EXPECT_TRUE(m.list.empty());
    }
    {
        home.dialogs.clear();
        Menu m(home, "Load", {home.path("other.jpg")});
        m.list.set_list_index(0);
        m.list.set_selected(0, true);
        m.run(kDeleteFromDiskAndDatabase);
        EXPECT_TRUE(home.dialogs.asked().empty());
        EXPECT_EQ(m.record_count, "Database Record Count:  1");
    }
}

TEST(ItemMenu, OpenUsesTheSelectedFocusedRow) {
    TestHome home;
    Menu m(home, "Search", {"/p/a.jpg", "/p/b.jpg"});
    m.run(kOpenWithApplication);
    EXPECT_TRUE(home.shell.opened.isEmpty());
    m.list.set_list_index(1);
    m.list.set_selected(1, true);
    m.run(kOpenWithApplication);
    EXPECT_EQ(home.shell.opened, QStringList({"/p/b.jpg"}));
}
