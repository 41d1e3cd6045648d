#include "lists/main_tab.h"

#include "lists/main_list.h"

#include "catalog/database.h"
#include "core/run_error.h"
#include "imaging/image_view.h"
#include "support/qt_print.h"
#include "support/test_home.h"
#include "support/test_workbench.h"

#include <QComboBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QListView>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

#include <gtest/gtest.h>

namespace {

class MainTabTest : public ::testing::Test {
protected:
    void SetUp() override {
        page = wb.add_page<MainTab>("Main");
        // The Save command reads the Load tab's catalog box.
        load_catalog = wb.plant<QComboBox>("o_load_catalog");
        load_catalog->setEditable(true);
        wb.window().show();
        list = wb.find<QListView>("o_main_itemlist");
        title = wb.find<QLineEdit>("o_main_file_title");
        description = wb.find<QPlainTextEdit>("o_main_image_description");
        category = wb.find<QComboBox>("o_main_category");
        save = wb.find<QPushButton>("b_main_save");
        viewer = wb.find<ImageView>("o_main_image_view");
        ASSERT_TRUE(list && title && description && category && save && viewer);
    }

    ItemList& main_list() { return home.app.main_list; }

    void press_row(int row, Qt::MouseButton button = Qt::LeftButton) {
        const QRect r = list->visualRect(main_list().index(row));
        QTest::mouseClick(list->viewport(), button, {}, r.center());
    }

    QStringList fields() const {
        return {title->text(), description->toPlainText(), category->currentText()};
    }

    TestHome home;
    TestWorkbench wb{home};
    MainTab* page = nullptr;
    QComboBox* load_catalog = nullptr;
    QListView* list = nullptr;
    QLineEdit* title = nullptr;
    QPlainTextEdit* description = nullptr;
    QComboBox* category = nullptr;
    QPushButton* save = nullptr;
    ImageView* viewer = nullptr;
};

}  // namespace

TEST_F(MainTabTest, EntryAndSelectingARowShowItsFileAndItsCatalogRowAndDropEdits) {
    const QString owl = home.write_image("pics/owl.jpg", 40, 30);
    const QString notes = home.write_file("pics/notes.txt");
    const QString odd = home.write_file("pics/it's.txt");
    home.app.database.execute(
        Sql("insert into filenames (filename, title, description, catalog) values "
            "('%1', 'Owl', 'At night', 'Birds')")
            .arg(owl));
    home.app.database.execute(Sql("insert into catalog (catalog) values ('Birds')"));
    main_list().add_many({owl, notes, owl, odd});
    wb.enter("Main");
    EXPECT_EQ(wb.find<QGroupBox>("f_main")->title(), "File Count: 4");
    EXPECT_EQ(category->count(), 1);

    press_row(0);
    EXPECT_EQ(fields(), QStringList({"Owl", "At night", "Birds"}));
    EXPECT_FALSE(save->isEnabled());
    EXPECT_EQ(home.app.selected_file, owl);
    EXPECT_EQ(home.app.preview_file, owl);
    EXPECT_EQ(viewer->control().file_name(), owl);
    EXPECT_TRUE(viewer->isVisible());

    // An edit enables Save; moving on drops it without a word.
    QTest::keyClicks(title, " edited");
    EXPECT_TRUE(save->isEnabled());
    press_row(1);
    EXPECT_EQ(fields(), QStringList({"", "", ""}));
    EXPECT_FALSE(save->isEnabled());
    EXPECT_EQ(home.app.selected_file, notes);
    // A file that is no image clears the viewer but keeps the preview file.
    EXPECT_EQ(home.app.preview_file, owl);
    EXPECT_EQ(viewer->control().file_name(), "");
    EXPECT_EQ(viewer->control().width(), 1815.0f);
    EXPECT_EQ(query_column(home.app, "select title from filenames"), QStringList({"Owl"}));
    EXPECT_TRUE(home.dialogs.asked().empty());

    // Two rows of one path show the same data.
    press_row(2);
    EXPECT_EQ(fields(), QStringList({"Owl", "At night", "Birds"}));

    // A path with an apostrophe cannot be looked up: the former values stay.
    press_row(3);
    EXPECT_EQ(home.app.selected_file, odd);
    EXPECT_EQ(fields(), QStringList({"Owl", "At night", "Birds"}));

    // A key move of the current row selects as a click does.
    QTest::keyClick(list, Qt::Key_Up);
    EXPECT_EQ(home.app.selected_file, owl);

    // The right button shows the current row, not the one under the pointer,
    // and pops up the menu.
    title->clear();
    press_row(3, Qt::RightButton);
    EXPECT_EQ(wb.menu_popups, 1);
    EXPECT_EQ(home.app.selected_file, owl);
    EXPECT_EQ(fields(), QStringList({"Owl", "At night", "Birds"}));
    EXPECT_EQ(main_list().selected_rows(), QList<int>({2}));
    // The count is the one of the last entry.
    main_list().add("/p/d");
    EXPECT_EQ(wb.find<QGroupBox>("f_main")->title(), "File Count: 4");
}

TEST_F(MainTabTest, SaveWritesTheRowAndLooksUpTheLoadTabsCatalogBox) {
    // With no row ever selected there is no file to write for.
    title->setText("Orphan");
    save->click();
    EXPECT_EQ(query_column(home.app, "select count(*) from filenames"), QStringList({"0"}));

    const QString a = home.write_file("a.txt");
    const QString b = home.write_file("b's.txt");
    main_list().add_many({a, b});
    wb.enter("Main");
    press_row(0);
    title->setText("First");
    category->setEditText("Birds");
    ASSERT_TRUE(save->isEnabled());
    save->click();
    EXPECT_FALSE(save->isEnabled());
    EXPECT_EQ(category->currentText(), "Birds");
    // Empty controls write empty texts, not nulls.
    EXPECT_EQ(query_column(home.app,
                           "select filename || '|' || title || '|' || "
                           "ifnull(description, '<null>') || '|' || catalog from filenames"),
              QStringList({a + "|First||Birds"}));
    // The lookup reads the Load tab's empty box, so every save adds the name
    // again; the lists fold the copies.
    title->setText("Again");
    save->click();
    EXPECT_EQ(query_column(home.app, "select count(*) from catalog where catalog='Birds'"),
              QStringList({"2"}));
    EXPECT_EQ(category->count(), 1);
    load_catalog->setEditText("Birds");
    description->setPlainText("Two\nlines");
    save->click();
    EXPECT_EQ(query_column(home.app, "select count(*) from catalog where catalog='Birds'"),
              QStringList({"2"}));
    // A later save edits the same row.
    EXPECT_EQ(query_column(home.app, "select title || '|' || description from filenames"),
              QStringList({"Again|Two\nlines"}));

    // A path with an apostrophe gets no row.
    press_row(1);
    title->setText("Never");
    save->click();
    EXPECT_EQ(query_column(home.app, "select count(*) from filenames"), QStringList({"1"}));
    EXPECT_TRUE(home.dialogs.asked().empty());
}

TEST_F(MainTabTest, DoubleClickRemovesAndMovesKeepTheSelectionOnTheMovedRow) {
    main_list().add_many({"/p/a", "/p/b", "/p/c", "/p/d"});
    press_row(2);
    category->setEditText("Kept");
    title->setText("Gone");
    const QRect r = list->visualRect(main_list().index(2));
    QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, r.center());
    EXPECT_EQ(main_list().items(), QStringList({"/p/a", "/p/b", "/p/d"}));
    EXPECT_EQ(main_list().list_index(), 1);
    EXPECT_EQ(main_list().selected_rows(), QList<int>({1}));
    EXPECT_EQ(fields(), QStringList({"", "", "Kept"}));
    EXPECT_EQ(home.app.selected_file, "/p/c");
    EXPECT_TRUE(home.dialogs.asked().empty());

    // Up from row 1, then up again at the top does nothing.
    auto* up = wb.find<QPushButton>("Command2");
    up->click();
    EXPECT_EQ(main_list().items(), QStringList({"/p/b", "/p/a", "/p/d"}));
    EXPECT_EQ(main_list().selected_rows(), QList<int>({0}));
    up->click();
    EXPECT_EQ(main_list().items(), QStringList({"/p/b", "/p/a", "/p/d"}));
    // Down twice carries the row to the bottom, and stops there.
    for (int i = 0; i < 3; ++i) {
        wb.find<QPushButton>("b_main_move_down")->click();
    }
    EXPECT_EQ(main_list().items(), QStringList({"/p/a", "/p/d", "/p/b"}));
    EXPECT_EQ(main_list().selected_rows(), QList<int>({2}));
    EXPECT_EQ(main_list().list_index(), 2);

    // With no current row, up does nothing and down fails on row -1, an error
    // for the last-resort handler; on an empty list down does nothing.
    main_list().set_list_index(-1);
    page->move_up();
    EXPECT_THROW(page->move_down(), RunError);
    EXPECT_EQ(main_list().items(), QStringList({"/p/a", "/p/d", "/p/b"}));
    main_list().clear();
    EXPECT_NO_THROW(page->move_down());
}

TEST_F(MainTabTest, SortByNameIgnoresCaseByDateIsOldestFirstAndBothClearTheFields) {
    auto sort_by = [&](int option) {
        wb.find<QRadioButton>(QString("o_main_sort_by_%1").arg(option))->setChecked(true);
        wb.find<QPushButton>("b_main_sort_file_list")->click();
    };
    main_list().add_many({"/p/b.jpg", "/p/C.jpg", "/p/a.jpg", "/p/A.jpg", "/p/B.jpg"});
    press_row(0);
    category->setEditText("Birds");
    title->setText("x");
    sort_by(0);
    // Equal names keep the order they had.
    EXPECT_EQ(main_list().items(),
              QStringList({"/p/a.jpg", "/p/A.jpg", "/p/b.jpg", "/p/B.jpg", "/p/C.jpg"}));
    EXPECT_EQ(fields(), QStringList({"", "", ""}));
    EXPECT_TRUE(main_list().selected_rows().isEmpty());
    EXPECT_EQ(home.app.selected_file, "/p/b.jpg");

    const QDateTime base(QDate(2002, 7, 4), QTime(9, 5, 31));
    auto dated = [&](const QString& name, int seconds) {
        const QString p = home.write_file(name);
        QFile f(p);
        f.open(QIODevice::ReadWrite);
        f.setFileTime(base.addSecs(seconds), QFileDevice::FileModificationTime);
        return p;
    };
    const QString newest = dated("a.txt", 3600);
    const QString same_b = dated("N1.txt", 0);
    const QString same_a = dated("m0.txt", 0);
    const QString oldest = dated("z.txt", -86400);
    EXPECT_EQ(date_sort_key(newest), "2002/07/04 10:05:31-");
    main_list().set_items({newest, same_b, oldest, same_a});
    sort_by(1);
    // Equal times keep the order of their paths.
    EXPECT_EQ(main_list().items(), QStringList({oldest, same_a, same_b, newest}));

    // A missing file stops the sort before the list changes.
    main_list().add(home.path("missing.txt"));
    EXPECT_THROW(page->sort_list(), RunError);
    EXPECT_EQ(main_list().count(), 5);
    EXPECT_FALSE(home.ui.busy());

    // A file deleted after its key was made (at a turn of the message loop)
    // drops out.
    RecordingUi hooks;
    hooks.on_turn = [&](int turn) {
        if (turn == 2) {
            QFile::remove(same_a);
        }
    };
    Context ctx{home.app, home.dialogs, hooks, home.shell};
    ItemList keyed;
    keyed.add_many({same_b, same_a, oldest});
    EXPECT_EQ(sort_by_date(ctx, keyed).size(), 3);
    EXPECT_EQ(keyed.items(), QStringList({oldest, same_b}));
}
