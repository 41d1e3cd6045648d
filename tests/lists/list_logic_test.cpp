#include "catalog/database.h"
#include "core/item_list.h"
#include "lists/item_menu.h"
#include "support/qt_print.h"
#include "support/test_home.h"

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

TEST(ItemMenu, DeleteAsksWithTheTabsEndingAndOpenTakesTheSelectedFocusedRow) {
    TestHome home;
    const QString a = home.write_file("pics/a.jpg");
    const QString b = home.write_file("pics/b.jpg");
    const QString c = home.write_file("pics/c.jpg");
    for (const QString& p : {c, home.path("other.jpg")}) {
        home.app.database.execute(Sql("insert into filenames (filename) values ('%1')").arg(p));
    }
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

    // From the database as well: the row goes and the count is shown again.
    Menu search(home, "Search", {c});
    search.run_on(0, kDeleteFromDiskAndDatabase, Dialogs::Answer::Yes);
    EXPECT_EQ(home.dialogs.messages().last(),
              kDeleteQuestion + c + "' from disk and the database?");
    EXPECT_FALSE(QFileInfo::exists(c));
    EXPECT_TRUE(search.list.empty());
    EXPECT_EQ(search.record_count, "Database Record Count:  1");
}
