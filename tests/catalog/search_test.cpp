#include "catalog/search.h"
#include "catalog/database.h"
#include "core/item_list.h"

#include "support/pg_server.h"
#include "support/qt_print.h"
#include "support/test_home.h"

#include <gtest/gtest.h>

namespace {

const QString kRefused = "You must enter a value to search.";
const QString kOneMissing =
    "There was 1 record in the database matching your search criteria.\n1 of which could not be "
    "found.";
const QString kTwoMissing = "There were 2 records in the database.\n1 of which could not be found.";

class Search : public EngineTest {};
QD_ON_BOTH_ENGINES(Search);

}  // namespace

TEST_P(Search, KindsFindBySubstringWithTheDialectsWildcardAndReportWhatIsMissing) {
    TestHome& home = *home_;
    // A catalog of five rows: three files on disk, two gone.
    const QString sunset = home.write_file("pics/Sunset Beach.jpg");
    const QString cafe = home.write_file("pics/cafe.jpg");
    for (const QString& row :
         {sunset + "', 'Red sky', 'Holidays', 'warm evening'", cafe + "', 'Café Noir', null, null",
          home.write_file("other/blank.png") + "', '', 'Family', ''",
          home.path("gone/one.jpg") + "', null, 'Holidays', 'gone'",
          home.path("gone/two.jpg") + "', 'Sunset again', null, null"}) {
        query_column(home.app,
                     "insert into filenames (filename, title, catalog, description) "
                     "values ('" +
                         row + ")");
    }
    const QStringList previous = {"previous"};
    const struct {
        const char* kind;
        QString value;
        QStringList listed;    // the list afterwards
        QStringList messages;  // the boxes shown
    } cases[] = {
        {"Search File Name", "PICS/su*et", {sunset}, {}},  // a wildcard inside the value
        {"Search File Name", "", previous, {kRefused}},
        {"Search File Name", "*jpg", previous, {kRefused}},
        {"Search File Name", "nothing like it", previous, {"No files found."}},
        {"Search File Title", "CAF", {cafe}, {}},  // folding beyond plain letters
        {"Search File Title", "sunset", {}, {kOneMissing}},
        {"Search Catalog Names", "holi", {sunset}, {kTwoMissing}},
        {"Search Description", "warm", {sunset}, {}},
        // The blank kinds find nulls, never empty text, and take no value.
        {"Search Blank Titles", "", {}, {kOneMissing}},
        {"Search Blank Catalogs", "**", {cafe}, {kTwoMissing}},
        {"Search Blank Descriptions", "x", {cafe}, {kTwoMissing}},
    };
    for (const auto& k : cases) {
        SCOPED_TRACE(QString("%1 '%2'").arg(k.kind, k.value).toStdString());
        ItemList results;
        results.set_items(previous);
        home.dialogs.clear();
        const bool listed = search_database(home.ctx, k.kind, k.value, results);
        EXPECT_EQ(results.items(), k.listed);
        EXPECT_EQ(listed, k.listed != previous);
        EXPECT_EQ(home.dialogs.messages(), k.messages);
        EXPECT_EQ(home.ui.statuses.mid(home.ui.statuses.size() - 2),
                  QStringList({"Searching database...", ""}));
    }
    // An apostrophe fails the statement, in the dialect's words.
    ItemList results;
    try {
        search_database(home.ctx, "Search File Title", "it's", results);
        ADD_FAILURE() << "no error";
    } catch (const DbError& e) {
        EXPECT_EQ(e.text(),
                  "Syntax error (missing operator) in query expression 'select * from "
                  "filenames where title like '*it's*''.");
    }
    EXPECT_FALSE(home.ui.busy());
    // Trailing blanks of a stored path are trimmed in the list.
    const QString trailing = home.write_file("pics/x.jpg");
    query_column(home.app, "insert into filenames (filename) values ('" + trailing + "   ')");
    ASSERT_TRUE(search_database(home.ctx, "Search File Name", "x.jpg", results));
    EXPECT_EQ(results.items(), QStringList({trailing}));

    // The results replace the main list: at once where it is empty, after a
    // question where it is not; selected only, the selected rows.
    results.set_items({sunset, cafe});
    results.set_selected(1, true);
    EXPECT_TRUE(search_to_main_list(home.ctx, results, false));
    EXPECT_EQ(home.app.main_list.items(), results.items());
    home.dialogs.clear();
    home.dialogs.answer(Dialogs::Answer::Yes);
    EXPECT_TRUE(search_to_main_list(home.ctx, results, true));
    EXPECT_EQ(home.dialogs.messages(),
              QStringList({"Are you sure you want to replace the main list of files with the "
                           "search results?"}));
    EXPECT_EQ(home.app.main_list.items(), QStringList({cafe}));
}

TEST(CopyFoundFiles, AsksBeforeReplacingAndCountsWhatWasCopied) {
    TestHome home;
    ItemList found;
    found.set_items({home.write_file("one/a.jpg", "first"), home.write_file("one/b.jpg"),
                     home.write_file("two/a.jpg", "second"), home.write_file("two/c.jpg")});
    const QString target = home.dir() + "/target";
    QDir().mkpath(target);
    const QString asked = "This file, a.jpg, already exists in the target directory (" + target +
                          "/).  Do you want to copy it anyway and replace the current file?";
    auto copy = [&](QList<Dialogs::Answer> answers, const QString& to, bool selected_only) {
        home.dialogs.clear();
        for (Dialogs::Answer answer : answers) {
            home.dialogs.answer(answer);
        }
        home.dialogs.answer_directory(to);
        copy_found_files(home.ctx, found, selected_only);
        QFile f(target + "/a.jpg");
        return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
    };
    using A = Dialogs::Answer;
    // All new, then the second a.jpg meets the first one's copy.
    EXPECT_EQ(copy({A::No}, target, false), "first");
    EXPECT_EQ(home.dialogs.messages(),
              QStringList({asked, "3 files were copied to " + target + "/."}));
    // Yes replaces; Cancel is a No that goes on.
    EXPECT_EQ(copy({A::No, A::No, A::Yes, A::Cancel}, target, false), "second");
    EXPECT_EQ(home.dialogs.messages().size(), 5);
    EXPECT_EQ(home.dialogs.messages().last(), "1 file was copied to " + target + "/.");
    // The files' own directory in another case: selected files only, nothing asked.
    found.set_selected(0, true);
    copy({}, home.dir() + "/ONE", true);
    EXPECT_EQ(home.dialogs.messages(),
              QStringList({"No files were copied to " + home.dir() + "/ONE/."}));
    // An empty list asks for no directory and says nothing.
    home.dialogs.clear();
    copy_found_files(home.ctx, ItemList(), false);
    EXPECT_TRUE(home.dialogs.asked().empty());
}
