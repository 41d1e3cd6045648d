#include "catalog/catalog_names.h"
#include "catalog/database.h"
#include "catalog/same_info.h"
#include "catalog/update_database.h"

#include "support/pg_server.h"
#include "support/qt_print.h"
#include "support/test_home.h"

#include <gtest/gtest.h>

// The commands that write file and catalog rows, on both engines.
namespace {

struct ListOf : ItemList {
    explicit ListOf(const QStringList& rows) { add_many(rows); }
};

QString message(int total, int added, int failed = 0) {
    const QString m =
        QString("Update statistics:\n       Total Files:  %1\n       Total Files Added:  %2\n")
            .arg(total)
            .arg(added);
    return failed == 0 ? m
                       : m + QString(
                                 "       Total Files Not Added:  %1\n\n(files are not added "
                                 "because they already exist in the database or there was a "
                                 "problem)\n")
                                 .arg(failed);
}

}  // namespace

class UpdateDatabase : public EngineTest {};
QD_ON_BOTH_ENGINES(UpdateDatabase);

TEST_P(UpdateDatabase, AddsOnlyNewFilesAndASecondRunAddsNothing) {
    TestHome& home = *home_;
    run_update_database(home.ctx, ItemList(), "Birds", true);
    ASSERT_EQ(home.dialogs.messages(), QStringList({message(0, 0)}));

    // A file catalogued before keeps its catalog and title.
    home.app.database.execute(
        Sql("insert into filenames (filename, title, catalog) values "
            "('/p/old.jpg', 'Old', 'Trees')"));
    const ListOf list({"/p/a.jpg", "/p/old.jpg", "/p/b.gif"});
    home.dialogs.clear();
    home.ui.progress.clear();
    run_update_database(home.ctx, list, "Birds", true);
    EXPECT_EQ(home.dialogs.messages(), QStringList({message(3, 2)}));
    EXPECT_EQ(
        query_column(home.app,
                     "select filename || '|' || coalesce(catalog, '<null>') || '|' || "
                     "coalesce(title, '<null>') from filenames order by filename"),
        QStringList({"/p/a.jpg|Birds|<null>", "/p/b.gif|Birds|<null>", "/p/old.jpg|Trees|Old"}));
    EXPECT_EQ(home.ui.statuses,
              QStringList({"Processing /p/a.jpg", "Processing /p/old.jpg", "Processing /p/b.gif"}));
    EXPECT_EQ(home.ui.progress, QStringList({"0/3", "1/3", "2/3", "end"}));
    EXPECT_FALSE(home.ui.busy());

    home.dialogs.clear();
    run_update_database(home.ctx, list, "Birds", true);
    EXPECT_EQ(home.dialogs.messages(), QStringList({message(3, 0)}));
    // The catalog row is made once, even for the empty list.
    EXPECT_EQ(query_column(home.app, "select count(*) from catalog where catalog='Birds'"),
              QStringList({"1"}));
}

TEST_P(UpdateDatabase, AnApostropheFailsItsFileOnceAndTwoHundredCharacterPathsArePassedOver) {
    TestHome& home = *home_;
    const ListOf quoted({"/p/a.jpg", "/p/it's.jpg", "/p/b.jpg", "/p/c'd.jpg", "/p/e.jpg"});
    // The added count is taken down by the failures a second time.
    EXPECT_EQ(update_statistics_message(update_database_from_list(home.ctx, quoted, "Birds", true)),
              message(5, 1, 2));
    auto path_of = [](int length) { return "/p/" + QString(length - 7, u'x') + ".jpg"; };
    const ListOf lengths({path_of(199), path_of(200), path_of(201)});
    EXPECT_EQ(
        update_statistics_message(update_database_from_list(home.ctx, lengths, "Birds", true)),
        message(3, 2));
    EXPECT_EQ(query_column(home.app, "select length(filename) from filenames order by 1"),
              QStringList({"8", "8", "8", "199", "201"}));
}

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
}

class CatalogNames : public EngineTest {};
QD_ON_BOTH_ENGINES(CatalogNames);

TEST_P(CatalogNames, NamesFoldDuplicatesAndDeleteAsksThenClearsEveryFileThatUsedIt) {
    TestHome& home = *home_;
    EXPECT_TRUE(catalog_names(home.ctx).isEmpty());
    for (const char* name : {"Trees", "Birds", "Trees"}) {
        home.app.database.execute(Sql("insert into catalog (catalog) values ('%1')").arg(name));
    }
    EXPECT_EQ(catalog_names(home.ctx), QStringList({"Birds", "Trees"}));
    home.app.database.execute(
        Sql("insert into filenames (filename, catalog) values ('/a.jpg', 'Birds'), "
            "('/b.jpg', 'Trees'), ('/c.jpg', 'Gone')"));

    // No keeps everything.
    EXPECT_FALSE(delete_catalog_name(home.ctx, "Birds"));
    ASSERT_EQ(home.dialogs.asked().size(), 1u);
    EXPECT_EQ(home.dialogs.asked()[0].text,
              "Are you sure you want to delete the catalog 'Birds'?  The catalog field for each "
              "file using this catalog name will be cleared.");
    EXPECT_EQ(query_column(home.app, "select count(*) from catalog"), QStringList({"3"}));

    home.dialogs.answer(Dialogs::Answer::Yes);
    EXPECT_TRUE(delete_catalog_name(home.ctx, "Birds"));
    EXPECT_EQ(query_column(home.app, "select catalog from catalog"),
              QStringList({"Trees", "Trees"}));
    EXPECT_EQ(query_column(home.app,
                           "select coalesce(catalog, '<null>') from filenames order by filename"),
              QStringList({"<null>", "Trees", "Gone"}));

    // Nothing passes a failing statement over here.
    home.dialogs.answer(Dialogs::Answer::Yes);
    EXPECT_THROW(delete_catalog_name(home.ctx, "It's"), RunError);
    EXPECT_FALSE(home.ui.busy());
}
