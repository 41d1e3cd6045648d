#include "catalog/catalog_names.h"
#include "catalog/catalogs_tab.h"

#include "catalog/database.h"
#include "support/pg_server.h"
#include "support/qt_print.h"
#include "support/test_home.h"
#include "support/test_workbench.h"

#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

#include <gtest/gtest.h>

namespace {

// The rows of a list box or of a combo box's list.
QStringList rows_of(const QAbstractItemModel* model) {
    QStringList out;
    for (int i = 0; i < model->rowCount(); ++i) {
        out << model->index(i, 0).data().toString();
    }
    return out;
}

void add_catalogs(TestHome& home, const QStringList& names) {
    for (const QString& name : names) {
        home.app.database.execute(Sql("insert into catalog (catalog) values ('%1')").arg(name));
    }
}

}  // namespace

class CatalogNames : public EngineTest {};
QD_ON_BOTH_ENGINES(CatalogNames);

TEST_P(CatalogNames, NamesFoldDuplicatesAndDeleteAsksThenClearsEveryFileThatUsedIt) {
    TestHome& home = *home_;
    EXPECT_TRUE(catalog_names(home.ctx).isEmpty());
    add_catalogs(home, {"Trees", "Birds", "Trees"});
    EXPECT_EQ(catalog_names(home.ctx), QStringList({"Birds", "Trees"}));
    EXPECT_FALSE(home.app.shared_recordset.is_open());
    home.app.database.execute(
        Sql("insert into filenames (filename, catalog) values ('/a.jpg', 'Birds'), "
            "('/b.jpg', 'Trees'), ('/c.jpg', 'Gone')"));

    // An empty name asks nothing.
    EXPECT_FALSE(delete_catalog_name(home.ctx, ""));
    EXPECT_TRUE(home.dialogs.asked().empty());

    // No keeps everything.
    EXPECT_FALSE(delete_catalog_name(home.ctx, "Birds"));
    ASSERT_EQ(home.dialogs.asked().size(), 1u);
    EXPECT_EQ(home.dialogs.asked()[0].text,
              "Are you sure you want to delete the catalog 'Birds'?  The catalog field for each "
              "file using this catalog name will be cleared.");
    EXPECT_EQ(home.dialogs.asked()[0].buttons, Dialogs::Buttons::YesNo);
    EXPECT_EQ(query_column(home.app, "select count(*) from catalog"), QStringList({"3"}));

    home.dialogs.answer(Dialogs::Answer::Yes);
    EXPECT_TRUE(delete_catalog_name(home.ctx, "Birds"));
    EXPECT_EQ(query_column(home.app, "select catalog from catalog"),
              QStringList({"Trees", "Trees"}));
    // A name that is not in the table still clears the files that carry it.
    home.dialogs.answer(Dialogs::Answer::Yes);
    EXPECT_TRUE(delete_catalog_name(home.ctx, "Gone"));
    EXPECT_EQ(query_column(home.app,
                           "select coalesce(catalog, '<null>') from filenames order by filename"),
              QStringList({"<null>", "Trees", "<null>"}));

    // Nothing passes a failing statement over here.
    home.dialogs.answer(Dialogs::Answer::Yes);
    EXPECT_THROW(delete_catalog_name(home.ctx, "It's"), RunError);
    EXPECT_FALSE(home.ui.busy());
}

TEST(CatalogsTab, AddAndDeleteThroughTheWidgetsRefillTheListAndTheMainTabsBox) {
    TestHome home;
    TestWorkbench wb(home);
    wb.add_page<CatalogsTab>("Catalogs");
    auto* main_category = wb.plant<QComboBox>("o_main_category");
    auto* list = wb.find<QListWidget>("o_category_list");
    auto* name = wb.find<QLineEdit>("o_category_name");
    add_catalogs(home, {"Trees"});
    wb.enter("Catalogs");

    name->setText("Birds");
    wb.find<QPushButton>("b_category_add")->click();
    EXPECT_EQ(rows_of(list->model()), QStringList({"Birds", "Trees"}));
    EXPECT_EQ(rows_of(main_category->model()), QStringList({"Birds", "Trees"}));
    // A name the statement cannot take: nothing added, nothing said.
    name->setText("It's");
    wb.find<QPushButton>("b_category_add")->click();
    EXPECT_EQ(query_column(home.app, "select count(*) from catalog"), QStringList({"2"}));
    EXPECT_TRUE(home.dialogs.asked().empty());

    list->setCurrentRow(1);
    home.dialogs.answer(Dialogs::Answer::Yes);
    wb.find<QPushButton>("b_category_delete")->click();
    EXPECT_EQ(rows_of(list->model()), QStringList({"Birds"}));
    EXPECT_EQ(home.dialogs.asked().size(), 1u);
}
