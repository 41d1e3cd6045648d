#include "page_fixture.h"

#include "pages/template_lists.h"
#include "pages/templates_tab.h"
#include "support/test_workbench.h"

#include <QComboBox>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>

namespace {

struct TabFixture : PageFixture {
    TabFixture() : wb(home) {
        for (const char* name : {"o_index_no_frame", "o_index_left_frame", "o_index_right_frame",
                                 "o_index_top_frame"}) {
            wb.plant<QComboBox>(QLatin1String(name));
        }
        wb.add_page<TemplatesTab>("Templates");
        wb.enter("Templates");
        list = wb.find<QListWidget>("o_template_list");
        description = wb.find<QPlainTextEdit>("o_template_description");
    }
    QStringList rows() const {
        QStringList out;
        for (int i = 0; i < list->count(); ++i) {
            out << list->item(i)->text();
        }
        return out;
    }
    void select(const QString& name) {
        list->setCurrentItem(list->findItems(name, Qt::MatchExactly).value(0));
    }
    QString column(const QString& sql) { return query_column(home.app, sql).value(0); }

    TestWorkbench wb;
    QListWidget* list = nullptr;
    QPlainTextEdit* description = nullptr;
};

}  // namespace

TEST(TemplatesTab, EnteringListsTheTableDeleteAsksAndTheIndexBoxesKeepTheirChoice) {
    TabFixture f;
    const QStringList names = query_column(f.home.app, "select tname from template");
    ASSERT_FALSE(names.isEmpty());
    EXPECT_EQ(f.rows(), names);

    auto* top = f.wb.find<QComboBox>("o_index_top_frame");
    auto* left = f.wb.find<QComboBox>("o_index_left_frame");
    f.put_template({"Going", "", "", "", "", "", "", "x"});
    fill_template_lists(f.wb);
    top->setCurrentIndex(top->findText("Going"));
    left->setCurrentIndex(left->findText(names.first()));

    // Delete asks with its doubled verb; No keeps the row.
    f.select("Going");
    f.wb.find<QPushButton>("o_template_delete")->click();
    EXPECT_EQ(f.home.dialogs.messages(),
              QStringList{"Are you sure you want to delete this permanently delete this template "
                          "(Going)?"});
    EXPECT_EQ(f.column("select count(*) from template where tname='Going'"), "1");
    // A template that is gone leaves its box with no choice.
    f.home.dialogs.answer(Dialogs::Answer::Yes);
    f.wb.find<QPushButton>("o_template_delete")->click();
    EXPECT_EQ(f.column("select count(*) from template where tname='Going'"), "0");
    EXPECT_EQ(f.rows(), names);
    EXPECT_EQ(top->currentIndex(), -1);
    EXPECT_EQ(left->currentText(), names.first());
}

TEST(TemplatesTab, AddNewStripsApostrophesAndRefusesAnEmptyTitle) {
    TabFixture f;
    f.home.dialogs.answer_input("O'Neil's");
    f.wb.find<QPushButton>("b_template_new")->click();
    EXPECT_EQ(f.home.dialogs.asked().back().text, "What is the title of the new template?");
    EXPECT_EQ(query_column(f.home.app,
                           "select ttype || '|' || description || '|' || coalesce(header, 'null') "
                           "from template where tname='ONeils'"),
              QStringList{"C|{custom}|null"});
    // The new row is selected, its description shown.
    EXPECT_EQ(f.description->toPlainText(), "{custom}");

    // A title of apostrophes alone is empty.
    const int before = f.list->count();
    f.home.dialogs.clear();
    f.home.dialogs.answer_input("'''");
    f.wb.find<QPushButton>("b_template_new")->click();
    EXPECT_EQ(f.home.dialogs.messages(),
              QStringList{"You must enter a title to add a new template."});
    EXPECT_EQ(f.list->count(), before);
}
