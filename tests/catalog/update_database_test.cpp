#include "catalog/update_database.h"

#include "support/pg_server.h"
#include "support/qt_print.h"
#include "support/test_home.h"

#include <gtest/gtest.h>

namespace {

// A list holding `rows`.
struct ListOf : ItemList {
    explicit ListOf(const QStringList& rows) { add_many(rows); }
};

const QString kSentence = QStringLiteral(
    "(files are not added because they already exist in the database or there was a problem)");

QString message(int total, int added) {
    return QStringLiteral(
               "Update statistics:\n       Total Files:  %1\n       Total Files Added:  %2\n")
        .arg(total)
        .arg(added);
}

QString message_with_failures(int total, int added, int failed) {
    return message(total, added) +
           QStringLiteral("       Total Files Not Added:  %1\n\n").arg(failed) + kSentence + u'\n';
}

}  // namespace

class UpdateDatabase : public EngineTest {};
QD_ON_BOTH_ENGINES(UpdateDatabase);

TEST_P(UpdateDatabase, AddsOnlyNewFilesAndASecondRunAddsNothing) {
    TestHome& home = *home_;
    ItemList empty;
    run_update_database(home.ctx, empty, "Birds", true);
    ASSERT_EQ(home.dialogs.messages(), QStringList({message(0, 0)}));
    // The catalog row is made even for an empty list.
    EXPECT_EQ(query_column(home.app, "select count(*) from catalog where catalog='Birds'"),
              QStringList({"1"}));

    // A file catalogued before keeps its catalog and title.
    home.app.database.execute(
        Sql("insert into filenames (filename, title, catalog) values "
            "('/p/old.jpg', 'Old', 'Trees')"));
    const ListOf list({"/p/a.jpg", "/p/old.jpg", "/p/b.gif"});
    home.dialogs.clear();
    run_update_database(home.ctx, list, "Birds", true);
    EXPECT_EQ(home.dialogs.messages(), QStringList({message(3, 2)}));
    ASSERT_EQ(home.dialogs.asked().size(), 1u);
    EXPECT_EQ(home.dialogs.asked()[0].icon, Dialogs::Icon::Information);
    EXPECT_EQ(
        query_column(home.app,
                     "select filename || '|' || coalesce(catalog, '<null>') || '|' || "
                     "coalesce(title, '<null>') from filenames order by filename"),
        QStringList({"/p/a.jpg|Birds|<null>", "/p/b.gif|Birds|<null>", "/p/old.jpg|Trees|Old"}));
    EXPECT_EQ(home.ui.statuses,
              QStringList({"Processing /p/a.jpg", "Processing /p/old.jpg", "Processing /p/b.gif"}));
    EXPECT_FALSE(home.ui.busy());

    home.dialogs.clear();
    run_update_database(home.ctx, list, "Birds", true);
    EXPECT_EQ(home.dialogs.messages(), QStringList({message(3, 0)}));
    EXPECT_EQ(query_column(home.app, "select count(*) from filenames"), QStringList({"3"}));
    EXPECT_EQ(query_column(home.app, "select count(*) from catalog where catalog='Birds'"),
              QStringList({"1"}));
}

TEST_P(UpdateDatabase, AnApostropheFailsItsFileOnceAndIsSubtractedAgain) {
    TestHome& home = *home_;
    const ListOf list({"/p/a.jpg", "/p/it's.jpg", "/p/b.jpg", "/p/c'd.jpg", "/p/e.jpg"});
    const UpdateStatistics stats = update_database_from_list(home.ctx, list, "Birds", true);
    EXPECT_EQ(stats.total_files, 5);
    EXPECT_EQ(stats.files_added, 3);
    EXPECT_EQ(stats.files_failed, 2);
    // The added count is taken down by the failures a second time.
    EXPECT_EQ(update_statistics_message(stats), message_with_failures(5, 1, 2));
    EXPECT_EQ(query_column(home.app, "select filename from filenames order by filename"),
              QStringList({"/p/a.jpg", "/p/b.jpg", "/p/e.jpg"}));

    // Below zero the line says 0.
    const ListOf bad({"/p/x'.jpg", "/p/y'.jpg"});
    const UpdateStatistics worse = update_database_from_list(home.ctx, bad, "Birds", true);
    EXPECT_EQ(update_statistics_message(worse), message_with_failures(2, 0, 2));

    // A catalog name with an apostrophe fails its own row only: the field
    // takes the text as it is.
    const ListOf one({"/p/f.jpg"});
    const UpdateStatistics named = update_database_from_list(home.ctx, one, "O'Brien", true);
    EXPECT_EQ(update_statistics_message(named), message(1, 1));
    EXPECT_EQ(query_column(home.app, "select catalog from catalog"), QStringList({"Birds"}));
    EXPECT_EQ(query_column(home.app, "select catalog from filenames where filename='/p/f.jpg'"),
              QStringList({"O'Brien"}));
}

TEST_P(UpdateDatabase, SelectedFilesTakePartAndTwoHundredCharacterPathsArePassedOver) {
    TestHome& home = *home_;
    ListOf list({"/p/a.jpg", "/p/b.jpg", "/p/c.jpg"});
    const UpdateStatistics none = update_database_from_list(home.ctx, list, "Birds", false);
    EXPECT_EQ(update_statistics_message(none), message(3, 0));
    EXPECT_EQ(query_column(home.app, "select count(*) from filenames"), QStringList({"0"}));
    // The total is the whole list.
    list.set_selected(0, true);
    list.set_selected(2, true);
    const UpdateStatistics some = update_database_from_list(home.ctx, list, "Birds", false);
    EXPECT_EQ(update_statistics_message(some), message(3, 2));
    EXPECT_EQ(query_column(home.app, "select filename from filenames order by filename"),
              QStringList({"/p/a.jpg", "/p/c.jpg"}));
    // Only the whole list reports its progress in the status bar.
    EXPECT_TRUE(home.ui.statuses.isEmpty());
    EXPECT_GE(home.ui.yields, 6);

    auto path_of = [](int length) { return "/p/" + QString(length - 7, u'x') + ".jpg"; };
    ASSERT_EQ(path_of(200).size(), 200);
    const ListOf lengths({path_of(199), path_of(200), path_of(201)});
    const UpdateStatistics stats = update_database_from_list(home.ctx, lengths, "", true);
    EXPECT_EQ(update_statistics_message(stats), message(3, 2));
    EXPECT_EQ(query_column(home.app, "select length(filename) from filenames order by 1"),
              QStringList({"8", "8", "199", "201"}));
    // An empty catalog text still makes its row.
    EXPECT_EQ(query_column(home.app, "select count(*) from catalog where catalog=''"),
              QStringList({"1"}));
}
