#include "catalog/same_info.h"
#include "core/item_list.h"

#include "support/pg_server.h"
#include "support/qt_print.h"
#include "support/test_home.h"

#include <gtest/gtest.h>

class SameInformation : public EngineTest {};
QD_ON_BOTH_ENGINES(SameInformation);

TEST_P(SameInformation, WritesTheFieldsToSelectedFilesAndLeavesOneRowSelected) {
    TestHome& home = *home_;
    ItemList& list = home.app.main_list;
    for (int i = 0; i < 8; ++i) {
        list.add_many({home.path(QString("f%1.jpg").arg(i))});
    }
    // Nothing to write: said so, and row 0 is selected as well.
    list.set_selected(3, true);
    EXPECT_FALSE(apply_same_information(home.ctx, list, "", "", ""));
    EXPECT_EQ(home.dialogs.messages(),
              QStringList({"No changes were made.  No text or catalog selections were made."}));
    EXPECT_EQ(list.selected_rows(), QList<int>({0, 3}));

    // Row 5 already has a row with a description that the empty control erases.
    home.app.database.execute(
        Sql("insert into filenames (filename, description, keywords) values ('%1', 'old', "
            "'kept')")
            .arg(list.item(5)));
    list.clear_selection();
    for (int i : {2, 5, 7}) {
        list.set_selected(i, true);
    }
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

    // An apostrophe stops the command; the rows before it are written.
    list.set_items({home.path("a.jpg"), home.path("it's.jpg"), home.path("c.jpg")});
    for (int i = 0; i < 3; ++i) {
        list.set_selected(i, true);
    }
    EXPECT_THROW(apply_same_information(home.ctx, list, "T", "", ""), DbError);
    EXPECT_EQ(query_column(home.app, "select title from filenames where filename = '" +
                                         home.path("a.jpg") + "'"),
              QStringList({"T"}));
}
