#include "page_fixture.h"

#include "pages/template_commands.h"
#include "pages/template_editor.h"
#include "support/test_workbench.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDropEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <QtTest/QTest>

namespace {

struct EditorFixture : PageFixture {
    explicit EditorFixture(const QString& selected = "Alpha") : wb(home) {
        put_template({"Alpha", "<a-head>", "<a-pre>", "[imgsrc]", "[title]", "<a-post>", "<a-foot>",
                      "alpha text"});
        put_template({"Beta", "<b-head>", "", "", "", "", "<b-foot>", "beta text"});
        auto* list = wb.plant<QListWidget>("o_template_list");
        list->addItems({"Alpha", "Beta"});
        list->setCurrentItem(list->findItems(selected, Qt::MatchExactly).value(0));
        wb.plant<QPushButton>("b_html_create_html");
        wb.plant<QPushButton>("b_webpages_stop_create")->hide();
        editor = std::make_unique<TemplateEditor>(wb);
    }
    template <class T>
    T* child(const char* name) {
        return editor->findChild<T*>(QLatin1String(name));
    }
    QPlainTextEdit* box(const char* section) {
        return child<QPlainTextEdit>(("o_template_" + QByteArray(section)).constData());
    }
    bool pending() { return child<QPushButton>("b_template_update")->isEnabled(); }
    QString column(const QString& sql) { return query_column(home.app, sql).value(0); }
    void menu(int index) { editor->options_item(index)->trigger(); }

    TestWorkbench wb;
    std::unique_ptr<TemplateEditor> editor;
};

}  // namespace

TEST(TemplateEditor, LoadsTheSelectedTemplateAndShowsOneSectionAtATime) {
    EditorFixture f("Beta");
    auto* name = f.child<QComboBox>("o_template_name");
    EXPECT_EQ(name->currentText(), "Beta");
    EXPECT_EQ(f.box("header")->toPlainText(), "<b-head>");
    f.child<QRadioButton>("o_section_2")->click();
    EXPECT_TRUE(f.box("header")->isHidden());
    EXPECT_FALSE(f.box("image1")->isHidden());

    // An edit is pending until another template is chosen, which drops it
    // without a word and returns to the header.
    f.box("header")->setPlainText("<changed>");
    EXPECT_TRUE(f.pending());
    name->setCurrentText("Alpha");
    EXPECT_EQ(f.box("image2")->toPlainText(), "[title]");
    EXPECT_FALSE(f.box("header")->isHidden());
    EXPECT_EQ(f.column("select header from template where tname='Beta'"), "<b-head>");

    // A name with no row keeps the fields.
    name->setCurrentText("Alph");
    EXPECT_EQ(f.box("header")->toPlainText(), "<a-head>");
}

TEST(TemplateEditor, ClosingSavesAsTheUserChose) {
    EditorFixture f;
    f.box("footer")->setPlainText("<new-foot>");
    f.editor->unload();  // No to the question
    EXPECT_EQ(
        f.home.dialogs.messages(),
        QStringList{"You did not save changes to the template.  Do you want to save them now?"});
    EXPECT_EQ(f.column("select footer from template where tname='Alpha'"), "<a-foot>");
    f.home.dialogs.answer(Dialogs::Answer::Yes);
    f.editor->unload();
    EXPECT_EQ(f.column("select footer from template where tname='Alpha'"), "<new-foot>");
}

TEST(TemplateEditor, SaveClearAndDelete) {
    EditorFixture f;
    f.box("preimage")->setPlainText("<p2>");
    f.child<QLineEdit>("o_template_description")->setText("new text");
    f.child<QPushButton>("b_template_update")->click();
    EXPECT_FALSE(f.pending());
    EXPECT_EQ(
        f.column("select \"pre-image\" || '|' || description from template where tname='Alpha'"),
        "<p2>|new text");

    f.menu(5);  // Clear: the sections, not the description
    EXPECT_EQ(f.box("footer")->toPlainText(), "");
    EXPECT_EQ(f.child<QLineEdit>("o_template_description")->text(), "new text");
    EXPECT_TRUE(f.pending());

    f.menu(15);
    EXPECT_EQ(f.home.dialogs.messages().last(), "Are you sure you want to delete this template?");
    EXPECT_EQ(f.column("select count(*) from template where tname='Alpha'"), "1");
    f.home.dialogs.answer(Dialogs::Answer::Yes);
    f.menu(15);
    EXPECT_EQ(f.column("select count(*) from template where tname='Alpha'"), "0");
}

TEST(TemplateEditor, CopyRefusesApostrophesAndCutsLongNames) {
    EditorFixture f;
    f.box("header")->setPlainText("<unsaved head>");
    f.home.dialogs.answer_input("Bob's");
    f.home.dialogs.answer_input("Bobs copy");
    f.home.dialogs.answer_input("copied text");
    f.menu(10);
    const auto& asked = f.home.dialogs.asked();
    ASSERT_EQ(asked.size(), 4u);
    EXPECT_EQ(asked[0].text, "What is the name for the new template?");
    EXPECT_EQ(asked[1].text,
              "Single apostrophes are not allowed in the title of a template.  Please enter a "
              "different title.");
    EXPECT_EQ(asked[3].text, "What is the description for the new template?");
    // The copy takes the fields as shown and becomes the template on view.
    EXPECT_EQ(f.column("select ttype || '|' || header || '|' || image1 || '|' || description "
                       "from template where tname='Bobs copy'"),
              "C|<unsaved head>|[imgsrc]|copied text");
    EXPECT_EQ(f.child<QComboBox>("o_template_name")->currentText(), "Bobs copy");

    // A name over 100 characters: the row gets 100.
    f.home.dialogs.answer_input(QString(120, u'L'));
    f.home.dialogs.answer_input("long");
    f.menu(10);
    EXPECT_EQ(f.column("select length(tname) from template where description='long'"), "100");
}

TEST(TemplateEditor, PreviewFillsTheFileListWithThePreviewImage) {
    EditorFixture f;
    const QString image = f.home.write_image("source/preview.jpg", 8, 8);
    f.home.app.settings.write("Current", "Preview Image", image);
    f.box("image2")->setPlainText("[title]|[description]");  // unsaved: the preview shows it
    f.home.dialogs.answer_input("3");
    f.menu(20);
    EXPECT_EQ(f.home.dialogs.asked().back().text,
              "How many images do you want to use in the preview?");
    EXPECT_EQ(f.home.app.file_list.items(), QStringList({image, image, image}));
    const QString page = read_text(f.home.app.temp_directory() + "/temp.htm");
    EXPECT_EQ(page.count("This is the demo title text.|This is the demo demonstration text."), 3);
    EXPECT_EQ(f.column("select image2 from template where tname='Alpha'"), "[title]");

    // A missing preview image is told of; Save and Preview saves first,
    // writes beside the application, and leaves the change flag on.
    f.home.app.settings.write("Current", "Preview Image", f.source + "/gone.jpg");
    f.home.dialogs.answer_input("2");
    f.menu(30);
    EXPECT_EQ(
        f.home.dialogs.messages().last(),
        "The preview image, " + f.source +
            "/gone.jpg, does not exist.  Select a new 'Preview Image' using the 'Options' tab.");
    EXPECT_EQ(read_text(f.home.app.app_dir + "/temp.htm"), "<a-head>\r\n<a-foot>\r\n");
    EXPECT_EQ(f.column("select image2 from template where tname='Alpha'"), "[title]|[description]");
    EXPECT_TRUE(f.pending());
}

TEST(TemplateEditor, DoubleClickEditsASectionInTheNotepad) {
    EditorFixture f;
    QPlainTextEdit* footer = f.box("footer");
    f.editor->select_section(5);
    QStringList shown_tags;
    QTimer::singleShot(0, [&] {
        QWidget* pad = QApplication::activeModalWidget();
        ASSERT_TRUE(pad);
        EXPECT_EQ(pad->objectName(), "frm_template_notepad");
        auto* text = pad->findChild<QPlainTextEdit*>("o_notepad");
        EXPECT_EQ(text->toPlainText(), "<a-foot>");
        auto* tags = pad->findChild<QListWidget*>("o_tags");
        for (int i = 0; i < tags->count(); ++i) {
            shown_tags << tags->item(i)->text();
        }
        // Its own drop puts the bare include tag in, with no chooser.
        tags->setCurrentRow(static_cast<int>(shown_tags.indexOf(QStringLiteral("[include=]"))));
        QTest::mousePress(tags->viewport(), Qt::LeftButton, {}, QPoint(5, 5));
        tags->setCurrentRow(static_cast<int>(shown_tags.indexOf(QStringLiteral("[include=]"))));
        text->moveCursor(QTextCursor::End);
        // Dragged as the platform does: the box is entered, accepts, and takes the drop.
        std::unique_ptr<QMimeData> data(tags->model()->mimeData({tags->currentIndex()}));
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, data.get(), Qt::LeftButton, {});
        QApplication::sendEvent(text->viewport(), &enter);
        QDropEvent drop(QPointF(5, 5), Qt::CopyAction, data.get(), Qt::LeftButton, {});
        QApplication::sendEvent(text->viewport(), &drop);
        pad->findChild<QPushButton*>("b_save")->click();
    });
    QTest::mouseDClick(footer->viewport(), Qt::LeftButton);
    EXPECT_EQ(footer->toPlainText(), "<a-foot>[include=]");
    EXPECT_TRUE(f.pending());
    // The notepad's list lacks the four size tags of the editor's.
    EXPECT_EQ(shown_tags.join(' '),
              "[background] [bgcolor] [catalog] [counter] [date] [description] [filename] "
              "[filepath] [firstslide] [href_local_filename] [href_web_filename] [imgsrc] "
              "[include=] [lastslide] [leftframefilename] [nextslide] [previousslide] "
              "[rightframefilename] [slidenav] [textcolor] [thumbnail] [timgsrc] [time] [title] "
              "[topframefilename]");
    EXPECT_TRUE(f.home.dialogs.asked().empty());
}

// The editor gives back what the row holds, character for character: opened
// and closed with "Save Upon Exit" the row is written as it was, and an edit
// changes only what the user touched, new lines ending in CR LF.
TEST(TemplateEditor, SectionsKeepTheirTextByteForByte) {
    const QString kept = QString::fromUtf8(
        "<p>a\xC2\xA0"
        "b</p>\r\n<p>c\xE2\x80\xA8"
        "d</p>\n\r\nend");
    EditorFixture f;
    query_column(f.home.app,
                 "update template set header='" + kept + "', footer='x\ny' where tname='Alpha'");
    f.child<QComboBox>("o_template_name")->setCurrentText("Beta");
    f.child<QComboBox>("o_template_name")->setCurrentText("Alpha");
    ASSERT_EQ(f.editor->fields().header, kept);
    f.menu(0);  // Save Upon Exit: written without a question, changed or not
    f.editor->unload();
    EXPECT_TRUE(f.home.dialogs.asked().empty());
    EXPECT_EQ(f.column("select header from template where tname='Alpha'"), kept);
    EXPECT_EQ(f.column("select footer from template where tname='Alpha'"), "x\ny");

    // Enter at the end of the first line, then text and Enter at the end.
    const std::pair<int, const char*> edits[] = {{11, "\n"}, {26, "!\n"}};
    const QString wants[] = {QString(kept).insert(12, "\r\n"), kept + "!\r\n"};
    QPlainTextEdit* header = f.box("header");
    for (int i = 0; i < 2; ++i) {
        const auto [at, typed] = edits[i];
        SCOPED_TRACE(typed);
        f.child<QComboBox>("o_template_name")->setCurrentText("Beta");
        f.child<QComboBox>("o_template_name")->setCurrentText("Alpha");
        QTextCursor c = header->textCursor();
        c.setPosition(at);
        header->setTextCursor(c);
        for (const char* k = typed; *k; ++k) {
            if (*k == '\n') {
                QTest::keyClick(header, Qt::Key_Return);
            } else {
                QTest::keyClicks(header, QString(QChar(*k)));
            }
        }
        EXPECT_EQ(f.editor->fields().header, wants[i]);
    }
}
