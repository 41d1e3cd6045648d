#include "catalog/database.h"
#include "core/item_list.h"
#include "shell/main_window.h"
#include "shell/tab_strip.h"

#include "support/qt_print.h"
#include "support/test_home.h"

#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTimer>
#include <QToolButton>

#include <gtest/gtest.h>

namespace {

struct Window {
    explicit Window(TestHome& home) : window(home.app, home.dialogs, home.shell) {
        window.set_end_process([] {});
    }
    QAction* item(int row) {
        for (QAction* a : window.item_menu().actions()) {
            if (a->objectName() == QString("rightmousemenuitems_%1").arg(row)) {
                return a;
            }
        }
        return nullptr;
    }
    ItemList& list(const char* name) {
        return *qobject_cast<ItemList*>(window.findChild<QAbstractItemView*>(name)->model());
    }
    // Selects `rows` of the list and puts the focus on `focus`.
    void select(ItemList& l, QList<int> rows, int focus) {
        l.clear_selection();
        l.set_list_index(focus);
        l.clear_selection();
        for (int r : rows) {
            l.set_selected(r, true);
        }
    }
    void go(int tab) { window.tabs().tab_button(tab)->click(); }
    MainWindow window;
};

const QString kDelete = "Are you sure you want to permanently delete '";

}  // namespace

TEST(ItemMenuWindow, SearchAndMainListsFollowTheTableAndRow50OpensCommonInformation) {
    TestHome home;
    const QString a = home.write_file("pics/a.jpg");
    const QString b = home.write_file("pics/b.jpg");
    const QString c = home.write_file("pics/c.jpg");
    for (const QString& p : {a, b, c}) {
        query_column(home.app, QString("insert into filenames (filename, keywords) values "
                                       "('%1', 'kept')")
                                   .arg(p));
    }
    Window w(home);
    ASSERT_TRUE(w.window.start_application({}));

    w.go(4);
    ASSERT_EQ(w.window.current_tab_caption(), "Search");
    EXPECT_FALSE(w.item(50)->isEnabled());
    w.window.findChild<QLineEdit*>("o_search_value")->setText("pics");
    w.window.findChild<QPushButton*>("b_search_database")->click();
    ItemList& found = w.list("o_search_list");
    ASSERT_EQ(found.items(), QStringList({a, b, c}));

    // On Search, "Remove" takes only the row with the focus.
    w.select(found, {0, 1, 2}, 1);
    w.item(5)->trigger();
    EXPECT_EQ(found.items(), QStringList({a, c}));

    // Delete from disk asks with the Search ending; No leaves the file.
    w.select(found, {1}, 1);
    w.item(10)->trigger();
    EXPECT_EQ(home.dialogs.messages().last(), kDelete + c + "' from disk?");
    EXPECT_TRUE(QFileInfo::exists(c));

    // Delete from disk and database, then the record count afresh.
    w.select(found, {0}, 0);
    home.dialogs.answer(Dialogs::Answer::Yes);
    w.item(15)->trigger();
    EXPECT_EQ(home.dialogs.messages().last(), kDelete + a + "' from disk and the database?");
    EXPECT_FALSE(QFileInfo::exists(a));
    EXPECT_EQ(found.items(), QStringList({c}));
    EXPECT_EQ(w.window.findChild<QLabel*>("l_search_db_record_count")->text(),
              "Database Record Count:  2");

    // On Main: row 50 is enabled; delete asks with "'?" and spares the
    // catalog the program holds, whose row still leaves the list.
    w.go(0);
    EXPECT_TRUE(w.item(50)->isEnabled());
    ItemList& main_list = home.app.main_list;
    main_list.set_items({b, c, home.app.database_path});
    w.select(main_list, {2}, 2);
    home.dialogs.answer(Dialogs::Answer::Yes);
    w.item(10)->trigger();
    EXPECT_EQ(home.dialogs.messages().last(), kDelete + home.app.database_path + "'?");
    EXPECT_TRUE(QFileInfo::exists(home.app.database_path));
    EXPECT_EQ(main_list.items(), QStringList({b, c}));

    // Row 50: the form writes all three fields to the selected files, with
    // the typed catalog new, and the Main tab's fields are emptied after it.
    w.window.findChild<QLineEdit*>("o_main_file_title")->setText("left over");
    w.select(main_list, {0, 1}, 1);
    QString info;
    QTimer::singleShot(0, [&] {
        auto* form = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(form, nullptr);
        info = form->findChild<QLabel*>("l_info")->text();
        form->findChild<QLineEdit*>("o_file_title")->setText("Beach");
        form->findChild<QComboBox*>("o_catalog")->setEditText("Coast");
        form->findChild<QPushButton*>("b_update")->click();
    });
    w.item(50)->trigger();
    EXPECT_EQ(info,
              "The information below will be applied to all selected file names on the 'Main' "
              "tab.  Once the 'Update Now' button is selected, the changes cannot be reversed.");
    EXPECT_EQ(query_column(home.app,
                           "select title || '|' || catalog || '|' || description || "
                           "'|' || keywords from filenames order by filename"),
              QStringList({"Beach|Coast||kept", "Beach|Coast||kept"}));
    EXPECT_EQ(w.window.findChild<QLineEdit*>("o_main_file_title")->text(), "");
    // The row left selected is the first selected one above row 0.
    EXPECT_EQ(main_list.selected_rows(), QList<int>({1}));
    EXPECT_EQ(query_column(home.app, "select catalog from catalog"), QStringList({"Coast"}));

    // Off the Main tab, row 50 is disabled again.
    w.go(2);
    EXPECT_FALSE(w.item(50)->isEnabled());
}
