#include "catalog/same_info.h"
#include "core/item_list.h"

#include "support/pg_server.h"
#include "support/qt_print.h"
#include "support/test_home.h"

#include <gtest/gtest.h>

namespace {

ItemList& main_list_with(TestHome& home, int rows, std::initializer_list<int> selected) {
    QStringList paths;
    for (int i = 0; i < rows; ++i) {
        paths << home.path(QString("f%1.jpg").arg(i));
    }
    home.app.main_list.set_items(paths);
    for (int i : selected) {
        home.app.main_list.set_selected(i, true);
    }
    return home.app.main_list;
}

}  // namespace

class SameInformation : public EngineTest {};
QD_ON_BOTH_ENGINES(SameInformation);

TEST_P(SameInformation, WritesAllThreeFieldsToSelectedFilesAndLeavesOneRowSelected) {
    TestHome& home = *home_;
    ItemList& list = main_list_with(home, 8, {2, 5, 7});
    // Row 5 already has a row with a description that the empty control erases.
    home.app.database.execute(
        Sql("insert into filenames (filename, description, keywords) values ('%1', 'old', "
            "'kept')")
            .arg(list.item(5)));

    EXPECT_TRUE(apply_same_information(home.ctx, list, "Beach", "Holiday", ""));
    EXPECT_EQ(list.selected_rows(), QList<int>({2}));
    EXPECT_EQ(
        query_column(home.app,
                     "select filename || '|' || title || '|' || catalog || '|' || "
                     "description || '|' || coalesce(keywords, '-') from filenames "
                     "order by filename"),
        QStringList({list.item(2) + "|Beach|Holiday||-", list.item(5) + "|Beach|Holiday||kept",
                     list.item(7) + "|Beach|Holiday||-"}));
    EXPECT_EQ(query_column(home.app, "select catalog from catalog"), QStringList({"Holiday"}));

    ItemList& again = main_list_with(home, 6, {0, 4});
    apply_same_information(home.ctx, again, "x", "", "");
    EXPECT_EQ(again.selected_rows(), QList<int>({4}));
}

TEST_P(SameInformation, NothingToWriteSaysSoAndAnApostropheStopsTheCommand) {
    TestHome& home = *home_;
    ItemList& list = main_list_with(home, 4, {3});
    EXPECT_FALSE(apply_same_information(home.ctx, list, "", "", ""));
    EXPECT_EQ(home.dialogs.messages(),
              QStringList({"No changes were made.  No text or catalog selections were made."}));
    // Row 0 is selected as well.
    EXPECT_EQ(list.selected_rows(), QList<int>({0, 3}));
    EXPECT_EQ(query_column(home.app, "select count(*) from filenames"), QStringList({"0"}));

    // The rows before the failing one are written.
    list.set_items({home.path("a.jpg"), home.path("it's.jpg"), home.path("c.jpg")});
    for (int i = 0; i < 3; ++i) {
        list.set_selected(i, true);
    }
    EXPECT_THROW(apply_same_information(home.ctx, list, "T", "", ""), DbError);
    EXPECT_EQ(query_column(home.app, "select filename from filenames"),
              QStringList({home.path("a.jpg")}));
}
