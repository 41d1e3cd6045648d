#include "catalog/search.h"
#include "catalog/database.h"
#include "catalog/search_tab.h"
#include "core/item_list.h"
#include "shell/application.h"

#include "support/page_checks.h"
#include "support/pg_server.h"
#include "support/qt_print.h"
#include "support/test_home.h"
#include "support/test_workbench.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QComboBox>
#include <QFileInfo>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

namespace {

// A catalog of five rows: three files on disk, two gone.
struct Catalog {
    explicit Catalog(TestHome& home) : home(home) {
        sunset = home.write_file("pics/Sunset Beach.jpg");
        cafe = home.write_file("pics/cafe.jpg");
        blank = home.write_file("other/blank.png");
        add(sunset, "'Red sky'", "'Holidays'", "'warm evening'");
        add(cafe, "'Café Noir'", "null", "null");
        add(blank, "''", "'Family'", "''");
        add(home.path("gone/one.jpg"), "null", "'Holidays'", "'gone'");
        add(home.path("gone/two.jpg"), "'Sunset again'", "null", "null");
    }
    void add(const QString& path, const char* title, const char* catalog, const char* text) {
        query_column(home.app, QString("insert into filenames (filename, title, catalog, "
                                       "description) values ('%1', %2, %3, %4)")
                                   .arg(path, title, catalog, text));
    }
    TestHome& home;
    QString sunset, cafe, blank;
};

const QString kRefused = "You must enter a value to search.";

class Search : public EngineTest {};
QD_ON_BOTH_ENGINES(Search);

}  // namespace

TEST_P(Search, KindsFindBySubstringWithTheDialectsWildcardAndReportWhatIsMissing) {
    TestHome& home = *home_;
    Catalog c(home);
    struct Case {
        const char* kind;
        QString value;
        QStringList listed;    // the list afterwards
        QStringList messages;  // the boxes shown
    };
    const QString both_missing =
        "There were 2 records in the database.\n1 of which could not be found.";
    const QStringList previous = {"previous"};
    const Case cases[] = {
        {"Search File Name", "sunset", {c.sunset}, {}},
        {"Search File Name", "PICS/su*et", {c.sunset}, {}},  // a wildcard inside the value
        {"Search File Name", "", previous, {kRefused}},
        {"Search File Name", "*jpg", previous, {kRefused}},
        {"Search File Title", "a**b", previous, {kRefused}},
        {"Search File Name", "nothing like it", previous, {"No files found."}},
        {"Search File Title", "CAF", {c.cafe}, {}},  // folding beyond plain letters
        {"Search File Title", "café n", {c.cafe}, {}},
        {"Search File Title",
         "sunset",
         {},
         {"There was 1 record in the database matching "
          "your search criteria.\n1 of which could not be "
          "found."}},
        {"Search Catalog Names", "holi", {c.sunset}, {both_missing}},
        {"Search Description", "warm", {c.sunset}, {}},
        // The blank kinds find nulls, never empty text, and take no value.
        {"Search Blank Titles",
         "",
         {},
         {"There was 1 record in the database matching your "
          "search criteria.\n1 of which could not be found."}},
        {"Search Blank Catalogs", "**", {c.cafe}, {both_missing}},
        {"Search Blank Descriptions", "x", {c.cafe}, {both_missing}},
    };
    for (const Case& k : cases) {
        SCOPED_TRACE(QString("%1 '%2'").arg(k.kind, k.value).toStdString());
        ItemList results;
        results.set_items(previous);
        home.dialogs.clear();
        const bool listed = search_database(home.ctx, k.kind, k.value, results);
        EXPECT_EQ(results.items(), k.listed);
        EXPECT_EQ(listed, k.listed != previous);
        EXPECT_EQ(home.dialogs.messages(), k.messages);
        EXPECT_FALSE(home.ui.busy());
        EXPECT_EQ(home.ui.status(), "");
        EXPECT_EQ(home.ui.statuses.value(home.ui.statuses.size() - 2), "Searching database...");
    }
    // An apostrophe makes the statement fail; the error reaches the caller
    // and the pointer is not left busy.
    ItemList results;
    EXPECT_THROW(search_database(home.ctx, "Search File Title", "it's", results), DbError);
    EXPECT_FALSE(home.ui.busy());
    // A kind typed into the box that is none of the seven builds no statement.
    try {
        search_database(home.ctx, "Search Keywords", "x", results);
        ADD_FAILURE() << "no error";
    } catch (const DbError& e) {
        EXPECT_TRUE(e.text().startsWith("Invalid SQL statement")) << e.text().toStdString();
    }
    EXPECT_EQ(record_count_caption(home.ctx), "Database Record Count:  5");
}

TEST_P(Search, TrailingBlanksOfAStoredPathAreTrimmedInTheList) {
    TestHome& home = *home_;
    const QString path = home.write_file("pics/a.jpg");
    query_column(home.app, QString("insert into filenames (filename) values ('%1   ')").arg(path));
    ItemList results;
    ASSERT_TRUE(search_database(home.ctx, "Search File Name", "a.jpg", results));
    EXPECT_EQ(results.items(), QStringList({path}));
}

TEST_P(Search, TabRunsFromItsControlsAndUpdatesTheMainListAfterItsQuestion) {
    TestHome& home = *home_;
    Catalog c(home);
    TestWorkbench wb(home);
    auto* tab = wb.add_page<SearchTab>("Search");
    auto* kind = wb.find<QComboBox>("o_search_item");
    auto* value = wb.find<QLineEdit>("o_search_value");
    auto* frame = wb.find<QGroupBox>("f_search");
    auto* only_selected = wb.find<QCheckBox>("o_search_copy_files");
    kind->addItem("Search Blank Titles");
    wb.enter("Search");
    ASSERT_EQ(kind->count(), 7);
    EXPECT_EQ(kind->itemText(0), "Search Blank Catalogs");
    EXPECT_EQ(kind->currentText(), "Search File Name");
    EXPECT_EQ(wb.find<QLabel>("l_search_db_record_count")->text(), "Database Record Count:  5");

    value->setText("pics");
    wb.find<QPushButton>("b_search_database")->click();
    EXPECT_EQ(tab->results().items(), QStringList({c.sunset, c.cafe}));
    EXPECT_EQ(frame->title(), "File Count: 2");
    grab_if_asked(*tab, "search_tab_found");
    // The right button pops up the file list menu and leaves the selection.
    auto* view = wb.find<QAbstractItemView>("o_search_list");
    QTest::mousePress(view->viewport(), Qt::RightButton, {},
                      view->visualRect(tab->results().index(1)).center());
    EXPECT_EQ(wb.menu_popups, 1);
    EXPECT_TRUE(tab->results().selected_rows().isEmpty());
    // A search that finds nothing keeps the list and its caption.
    value->setText("zzz");
    wb.find<QPushButton>("b_search_database")->click();
    EXPECT_EQ(frame->title(), "File Count: 2");
    EXPECT_EQ(home.dialogs.messages().last(), "No files found.");
    // An apostrophe fails the statement: the error is shown, the list stays
    // and the program goes on.
    auto* application = qobject_cast<QuilldexApplication*>(QCoreApplication::instance());
    ASSERT_NE(application, nullptr);
    application->set_error_dialogs(&home.dialogs);
    value->setText("it's");
    QTest::mouseClick(wb.find<QPushButton>("b_search_database"), Qt::LeftButton);
    application->set_error_dialogs(nullptr);
    EXPECT_EQ(home.dialogs.messages().last(),
              "Syntax error (missing operator) in query expression 'select * from filenames "
              "where filename like '*it's*''.");
    EXPECT_EQ(tab->results().count(), 2);
    EXPECT_FALSE(home.ui.busy());

    // An empty main list is replaced without a question; a full one asks.
    auto* update = wb.find<QPushButton>("b_search_add_to_main_list");
    home.dialogs.clear();
    update->click();
    EXPECT_EQ(home.app.main_list.items(), QStringList({c.sunset, c.cafe}));
    EXPECT_TRUE(home.dialogs.asked().empty());
    only_selected->setChecked(true);
    tab->results().set_selected(1, true);
    update->click();  // answered No
    EXPECT_EQ(home.dialogs.messages(),
              QStringList({"Are you sure you want to replace the main list of files with the "
                           "search results?"}));
    EXPECT_EQ(home.app.main_list.count(), 2);
    home.dialogs.answer(Dialogs::Answer::Yes);
    update->click();
    EXPECT_EQ(home.app.main_list.items(), QStringList({c.cafe}));
    // Selected only, with nothing selected: the main list is left empty.
    tab->results().clear_selection();
    home.dialogs.answer(Dialogs::Answer::Yes);
    update->click();
    EXPECT_TRUE(home.app.main_list.empty());
}

TEST(CopyFoundFiles, AsksBeforeReplacingAndCountsWhatWasCopied) {
    TestHome home;
    const QString a = home.write_file("one/a.jpg", "first");
    const QString b = home.write_file("one/b.jpg", "b");
    const QString a2 = home.write_file("two/a.jpg", "second");
    const QString c = home.write_file("two/c.jpg", "c");
    const QString target = home.dir() + "/target";
    QDir().mkpath(target);
    ItemList found;
    found.set_items({a, b, a2, c});
    using A = Dialogs::Answer;
    struct Case {
        const char* what;
        QString target;
        bool selected_only;
        QList<A> answers;  // to the replace questions
        int questions;
        QString result;
        QStringList in_target;  // contents of a.jpg in the target
    };
    const Case cases[] = {
        {"all new, then the second a.jpg meets the first one's copy",
         target,
         false,
         {A::No},
         1,
         "3 files were copied to " + target + "/.",
         {"first"}},
        {"Cancel is a No that goes on",
         target,
         false,
         {A::Cancel, A::Cancel, A::Cancel, A::Cancel},
         4,
         "No files were copied to " + target + "/.",
         {"first"}},
        {"Yes replaces",
         target,
         false,
         {A::No, A::No, A::Yes, A::No},
         4,
         "1 file was copied to " + target + "/.",
         {"second"}},
        {"the files' own directory in another case",
         home.dir() + "/ONE",
         true,
         {},
         0,
         "No files were copied to " + home.dir() + "/ONE/.",
         {"second"}},
    };
    for (const Case& k : cases) {
        SCOPED_TRACE(k.what);
        home.dialogs.clear();
        for (A answer : k.answers) {
            home.dialogs.answer(answer);
        }
        home.dialogs.answer_directory(k.target);
        found.clear_selection();
        found.set_selected(0, true);
        found.set_selected(1, true);
        copy_found_files(home.ctx, found, k.selected_only);
        int questions = 0;
        for (const auto& asked : home.dialogs.asked()) {
            questions += asked.buttons == Dialogs::Buttons::YesNoCancel;
        }
        EXPECT_EQ(questions, k.questions);
        if (questions > 0) {
            EXPECT_EQ(home.dialogs.messages().first(),
                      "This file, a.jpg, already exists in the target directory (" + target +
                          "/).  Do you want to copy it anyway and replace the current file?");
        }
        EXPECT_EQ(home.dialogs.messages().last(), k.result);
        QFile f(target + "/a.jpg");
        ASSERT_TRUE(f.open(QIODevice::ReadOnly));
        EXPECT_EQ(QStringList({QString::fromUtf8(f.readAll())}), k.in_target);
        EXPECT_EQ(home.ui.status(), "");
    }
    // Cancel wrote its status line for each row it answered.
    EXPECT_TRUE(home.ui.statuses.contains("Processing " + a));
    // An empty list asks for no directory and says nothing.
    home.dialogs.clear();
    copy_found_files(home.ctx, ItemList(), false);
    EXPECT_TRUE(home.dialogs.asked().empty());
}
