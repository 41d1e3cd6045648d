#include "catalog/database.h"
#include "core/options_commands.h"
#include "core/pick_helpers.h"
#include "shell/about_box.h"
#include "shell/dialog_filter.h"
#include "shell/directory_chooser.h"
#include "shell/qt_dialogs.h"
#include "shell/setup_dialog.h"
#include "support/page_checks.h"
#include "support/qt_print.h"
#include "support/test_home.h"
#include "ui/centre_form.h"
#include "ui/directory_box.h"
#include "ui/drive_box.h"

#include <QAbstractButton>
#include <QApplication>
#include <QColorDialog>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>

namespace {

using Asked = ScriptedDialogs::Asked;

const ScriptedDialogs::Asked& last_asked(const ScriptedDialogs& d) {
    return d.asked().back();
}

QString current(TestHome& home, const char* key) {
    return home.app.settings.read("Current", key);
}

// A copy of the delivered catalog whose version row names another product.
QString refused_catalog(TestHome& home) {
    const QString path = home.path("other.mdb");
    EXPECT_TRUE(QFile::copy(QStringLiteral(QD_TEST_CATALOG), path));
    QFile(path).setPermissions(QFile(path).permissions() | QFileDevice::WriteOwner);
    {
        QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", "refused-catalog");
        db.setDatabaseName(path);
        EXPECT_TRUE(db.open());
        QSqlQuery q(db);
        EXPECT_TRUE(q.exec("update version set name='Someoneelse'"));
    }
    QSqlDatabase::removeDatabase("refused-catalog");
    return path;
}

// Runs `act` on the modal dialog that the next call opens, once it is up.
void when_modal(std::function<void(QWidget*)> act) {
    auto tries = std::make_shared<int>(0);
    auto poll = std::make_shared<std::function<void()>>();
    *poll = [act, tries, poll]() {
        if (QWidget* w = QApplication::activeModalWidget()) {
            act(w);
        } else if (++*tries < 200) {
            QTimer::singleShot(10, *poll);
        }
    };
    QTimer::singleShot(0, *poll);
}

// Records the box's caption, text and icon, then presses the button with `button_text`.
struct BoxSeen {
    QString title, text;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    QStringList buttons;
};
void press_in_box(BoxSeen& seen, const QString& button_text) {
    when_modal([&seen, button_text](QWidget* w) {
        auto* box = qobject_cast<QMessageBox*>(w);
        if (!box) {
            w->close();
            return;
        }
        seen = {box->windowTitle(), box->text(), box->icon(), {}};
        QAbstractButton* chosen = nullptr;
        for (QAbstractButton* b : box->buttons()) {
            seen.buttons << b->text().remove(u'&');
            chosen = seen.buttons.last() == button_text ? b : chosen;
        }
        chosen ? chosen->click() : QTest::keyClick(box, Qt::Key_Escape);
    });
}

QStringList rows(TestHome& home) {
    return query_column(home.app,
                        "select filename || '|' || ifnull(title, '<null>') || '|' || "
                        "replace(replace(ifnull(description, '<null>'), char(13), '\\r'), "
                        "char(10), '\\n') || '|' || ifnull(catalog, '<null>') from filenames "
                        "order by filename");
}
}  // namespace

TEST(PickHelpers, EachOpensItsOwnTitleAndFilterAtTheLastDirectory) {
    TestHome home;
    home.app.settings.write("Current", "Preview Image", "/old/preview.gif");
    home.app.last_directory = home.dir() + "/pics/";
    struct Case {
        QString (*helper)(Context&);
        QString title;
        QString filter;
    };
    const Case cases[] = {
        {select_background_image, "Select Background Image",
         "GIF (*.gif)|*.gif|JPG (*.jpg)|*.jpg|All Files (*.*)|*.*"},
        {select_preview_image, "Select Preview Image",
         "GIF (*.gif)|*.gif|JPG (*.jpg)|*.jpg|All Files (*.*)|*.*"},
        {select_include_file, "Select Include File",
         "TXT (*.txt)|*.txt|HTM (*.htm)|*.htm|Include (*.inc)|*.inc|All Files (*.*)|*.*"},
        {select_music, "Select Music/MP3s", "MP3 (*.mp3)|*.mp3"},
    };
    for (const Case& c : cases) {
        home.dialogs.answer_file("/music/one/a file.mp3");
        EXPECT_EQ(c.helper(home.ctx), "/music/one/a file.mp3");
        const Asked& a = last_asked(home.dialogs);
        EXPECT_EQ(a.kind, "open_file");
        EXPECT_EQ(a.title, c.title);
        EXPECT_EQ(a.default_text, c.filter);
        EXPECT_EQ(a.initial_directory,
                  c.title == "Select Music/MP3s" ? home.dir() + "/pics/" : home.app.last_directory);
        // A cancelled dialog gives "" and changes nothing.
        const QString before = home.app.last_directory;
        EXPECT_EQ(c.helper(home.ctx), "");
        EXPECT_EQ(home.app.last_directory, before);
    }
    // Only the music pick moved the last directory, to the file's own.
    EXPECT_EQ(home.app.last_directory, "/music/one/");
    // Only a chosen preview image is stored (a cancel keeps it); the
    // background image is the caller's to store.
    EXPECT_EQ(current(home, "Preview Image"), "/music/one/a file.mp3");
    EXPECT_EQ(current(home, "HTML Background Image"), "");
    EXPECT_TRUE(home.dialogs.messages().isEmpty());
}

TEST(PickHelpers, HtmlBackgroundTakesOnlyGifOrJpgAndKeepsItsOwnDirectory) {
    TestHome home;
    home.app.last_directory = "/somewhere/else/";
    QString initial;
    const QString refusal = "GIF and JPG are the only valid file formats for HTML background.";

    home.dialogs.answer_file("/web/back/Tile.JPG");
    EXPECT_EQ(select_html_background(home.ctx, initial), "/web/back/Tile.JPG");
    EXPECT_EQ(last_asked(home.dialogs).title, "Select HTML Background");
    EXPECT_EQ(last_asked(home.dialogs).default_text,
              "All Files (*.*)|*.*|GIF Files|*.gif|JPG Files|*.jpg");
    EXPECT_EQ(last_asked(home.dialogs).initial_directory, "");
    EXPECT_EQ(initial, "/web/back/");

    // Another type is refused, yet the directory follows the chosen file.
    home.dialogs.answer_file("/web/other/photo.png");
    EXPECT_EQ(select_html_background(home.ctx, initial), "");
    EXPECT_EQ(home.dialogs.asked().end()[-2].initial_directory, "/web/back/");
    EXPECT_EQ(home.dialogs.messages(), QStringList({refusal}));
    EXPECT_EQ(initial, "/web/other/");

    // The test is for the text anywhere in the name.
    home.dialogs.answer_file("/web/x/image.gif.txt");
    EXPECT_EQ(select_html_background(home.ctx, initial), "/web/x/image.gif.txt");

    // Cancelling gives an empty name, which is no GIF or JPG either.
    EXPECT_EQ(select_html_background(home.ctx, initial), "");
    EXPECT_EQ(home.dialogs.messages(), QStringList({refusal, refusal}));
    EXPECT_EQ(initial, "/web/x/");
    EXPECT_EQ(home.app.last_directory, "/somewhere/else/");
}

TEST(OptionsCommands, FileCopyDirectoryStoresTheChoiceAndAfterCancelTheFormerDirectory) {
    TestHome home;
    home.app.last_directory = "/start/here";
    home.app.thumbnail_target_directory = "/thumbs";

    home.dialogs.answer_directory("/picked/dir");
    EXPECT_EQ(choose_file_copy_directory(home.ctx), "/picked/dir");
    EXPECT_EQ(last_asked(home.dialogs).kind, "directory");
    EXPECT_EQ(last_asked(home.dialogs).initial_directory, "/start/here");
    EXPECT_EQ(home.app.thumbnail_target_directory, "/start/here");
    EXPECT_EQ(home.app.last_directory, "/picked/dir");
    EXPECT_EQ(current(home, "File Copy Directory"), "/picked/dir");
    EXPECT_FALSE(home.app.directory_chooser_cancelled);

    // Cancel: the chooser still shows where it opened, and that is stored.
    home.dialogs.answer_directory("/picked/dir", true);
    EXPECT_EQ(choose_file_copy_directory(home.ctx), "/picked/dir");
    EXPECT_TRUE(home.app.directory_chooser_cancelled);
    EXPECT_EQ(home.app.settings.read("Current", "File Copy Directory", "<none>"), "/picked/dir");

    // An empty path is stored as an empty value, not as a removed key.
    home.dialogs.answer_directory("", true);
    EXPECT_EQ(choose_file_copy_directory(home.ctx), "");
    EXPECT_TRUE(home.app.settings.contains("Current", "File Copy Directory"));
}

TEST(DirectoryChooser, OpensAtTheStartMovesWithTheListAndMakesDirectories) {
    TestHome home;
    const QString start = QDir(home.dir()).canonicalPath();
    QDir().mkpath(start + "/b/c");
    DirectoryChooser chooser(home.dialogs, start + "/b/");
    auto* dir = chooser.findChild<DirectoryBox*>("o_dir");
    auto* drive = chooser.findChild<DriveBox*>("o_drive");
    auto* label = chooser.findChild<QLabel*>("o_directory");
    ASSERT_TRUE(dir && drive && label);
    EXPECT_EQ(dir->path(), start + "/b");
    EXPECT_EQ(label->text(), start + "/b");
    EXPECT_EQ(drive->drive(), "/");
    EXPECT_EQ(chooser.size(), QSize(390, 429));
    EXPECT_EQ(chooser.minimumSize(), chooser.maximumSize());
    {
        WindowFont font;
        DirectoryChooser shown(home.dialogs, start + "/b/");
        EXPECT_TRUE(fits_page_area(shown, QSize(390, 429)));
        grab_if_asked(shown, "frm_tempdir");
    }
    // A start that has gone opens at its nearest parent.
    EXPECT_EQ(DirectoryChooser(home.dialogs, start + "/b/missing/deeper").chosen_path(),
              start + "/b");

    // Moving in the list moves the label.
    dir->set_path(start + "/b/c");
    EXPECT_EQ(chooser.chosen_path(), start + "/b/c");
    // Choosing a drive moves the list to it.
    drive->set_roots({"/", start});
    drive->set_drive(start);
    EXPECT_EQ(dir->path(), start);
    EXPECT_EQ(chooser.chosen_path(), start);

    SCOPED_TRACE("make directory");
    auto* make = chooser.findChild<QPushButton*>("b_make_directory");
    make->click();  // an empty name asks nothing more
    ASSERT_EQ(home.dialogs.asked().size(), 1u);
    EXPECT_EQ(home.dialogs.asked().at(0).title, "Make New Directory");
    EXPECT_EQ(home.dialogs.asked().at(0).text,
              "Enter the name of the directory you want to create under " + start + ".");
    home.dialogs.answer_input("Holiday 2024");
    home.dialogs.answer(Dialogs::Answer::Yes);
    make->click();
    EXPECT_EQ(home.dialogs.messages(),
              QStringList({"Is " + start + "/Holiday 2024 the directory you want to create?"}));
    EXPECT_EQ(last_asked(home.dialogs).buttons, Dialogs::Buttons::YesNo);
    EXPECT_TRUE(QDir(start + "/Holiday 2024").exists());
    EXPECT_EQ(dir->path(), start + "/Holiday 2024");
    EXPECT_EQ(chooser.chosen_path(), start + "/Holiday 2024");

    // A name with a separator under a missing parent: nothing is made, no
    // word is said, the label names the new path and the list stays.
    home.dialogs.clear();
    home.dialogs.answer_input("no/such");
    home.dialogs.answer(Dialogs::Answer::Yes);
    make->click();
    EXPECT_FALSE(QDir(start + "/Holiday 2024/no").exists());
    EXPECT_EQ(chooser.chosen_path(), start + "/Holiday 2024/no/such");
    EXPECT_EQ(dir->path(), start + "/Holiday 2024");
    EXPECT_EQ(home.dialogs.messages().size(), 1);

    // No leaves everything as it was.
    home.dialogs.answer_input("later");
    home.dialogs.answer(Dialogs::Answer::No);
    make->click();
    EXPECT_FALSE(QDir(start + "/Holiday 2024/later").exists());
    EXPECT_EQ(chooser.chosen_path(), start + "/Holiday 2024/no/such");

    // An existing directory is no error: the list moves to it.
    dir->set_path(start);
    home.dialogs.answer_input("Holiday 2024");
    home.dialogs.answer(Dialogs::Answer::Yes);
    make->click();
    EXPECT_EQ(dir->path(), start + "/Holiday 2024");
}

TEST(DirectoryChooser, OkCancelMenuRowsAndTheCloseBox) {
    TestHome home;
    const QString start = QDir(home.dir()).canonicalPath();
    DirectoryChooser chooser(home.dialogs, start);
    chooser.findChild<QPushButton*>("Command2")->click();
    EXPECT_TRUE(chooser.cancelled());
    EXPECT_EQ(chooser.result(), QDialog::Rejected);
    EXPECT_EQ(chooser.chosen_path(), start);
    chooser.findChild<QPushButton*>("Command1")->click();
    EXPECT_FALSE(chooser.cancelled());
    EXPECT_EQ(chooser.result(), QDialog::Accepted);
    chooser.findChild<QAction*>("menuFileItem_98")->trigger();
    EXPECT_TRUE(chooser.cancelled());
    chooser.findChild<QAction*>("menuFileItem_99")->trigger();
    EXPECT_FALSE(chooser.cancelled());
    EXPECT_EQ(chooser.findChild<QAction*>("menuFileItem_99")->text(), "&OK");
    chooser.show();
    chooser.reject();  // Escape
    EXPECT_TRUE(chooser.cancelled());
    // The close box is no cancel.
    chooser.show();
    EXPECT_TRUE(chooser.close());
    EXPECT_FALSE(chooser.cancelled());
    EXPECT_EQ(chooser.result(), QDialog::Accepted);
}

TEST(SetupDialog, ShowsTheStoredValuesAndChangesThemAtOnce) {
    TestHome home;
    home.app.settings.write("Current", "Preview Image", "/p/preview.gif");
    home.app.last_directory = QDir(home.dir()).canonicalPath();
    WindowFont font;
    SetupDialog dialog(home.ctx);
    auto label = [&](const char* name) { return dialog.findChild<QLabel*>(name)->text(); };
    auto press = [&](const char* name) { dialog.findChild<QPushButton*>(name)->click(); };
    EXPECT_EQ(label("o_options_database"), home.app.database_path);
    EXPECT_EQ(label("o_options_file_copy_directory"), "");
    EXPECT_EQ(label("o_options_preview_image"), "/p/preview.gif");
    EXPECT_EQ(label("o_options_browser"), "");
    EXPECT_TRUE(fits_page_area(dialog, dialog.size()));
    grab_if_asked(dialog, "frm_setup");

    home.dialogs.answer_directory("/copy/to");
    press("b_options_file_copy_directory");
    EXPECT_EQ(label("o_options_file_copy_directory"), "/copy/to");

    press("b_options_preview_image");  // cancelled: the label stays
    EXPECT_EQ(label("o_options_preview_image"), "/p/preview.gif");
    home.dialogs.answer_file("/p/new.jpg");
    press("b_options_preview_image");
    EXPECT_EQ(label("o_options_preview_image"), "/p/new.jpg");

    // The database button: a cancelled pick says why and changes nothing; a
    // refused file empties the label.
    const QString db = home.app.database_path;
    press("b_options_database");
    EXPECT_EQ(home.dialogs.messages().last(), "The database must be an Access Database (*.mdb).");
    EXPECT_EQ(label("o_options_database"), db);
    const QString other = refused_catalog(home);
    home.dialogs.answer_file(other);
    press("b_options_database");
    EXPECT_EQ(label("o_options_database"), "");
    home.dialogs.answer_file(db);
    press("b_options_database");
    EXPECT_EQ(label("o_options_database"), db);

    // The browser button has no command; the Vellumark button asks for the
    // file to import.
    const size_t asked = home.dialogs.asked().size();
    press("b_options_browser");
    EXPECT_EQ(home.dialogs.asked().size(), asked);
    press("b_options_load_vlk_images");
    ASSERT_EQ(home.dialogs.asked().size(), asked + 1);
    EXPECT_EQ(home.dialogs.asked().back().title, "Select Vellumark's Ini File");
}

TEST(AboutBox, ShowsTheTitleAndTheFiveLines) {
    WindowFont font;
    AboutBox about("Quilldex v1.62");
    EXPECT_EQ(about.findChild<QLabel*>("l_about_title")->text(), "Quilldex v1.62");
    const QString text = about.findChild<QLabel*>("l_about_description")->text();
    EXPECT_EQ(text.split('\n'),
              QStringList({"The Quilldex allows you to store file names into a library so that "
                           "meta ",
                           "data can be associated with the file names.  Quickly and easily create",
                           "web pages that can be copied directly to a web site without "
                           "modification. ",
                           "Use templates to create various output in your HTML pages. ",
                           "You resize or create thumbnail images from the list of selected "
                           "files."}));
    EXPECT_TRUE(fits_page_area(about, about.size()));
    grab_if_asked(about, "about");
    about.findChild<QPushButton*>("b_about_close")->click();
    EXPECT_FALSE(about.isVisible());
    about.show();
    about.findChild<QPushButton*>("b_about_ok")->click();
    EXPECT_FALSE(about.isVisible());
}

TEST(DialogFilter, PairsBecomeQtFiltersWithEveryFileAsStar) {
    EXPECT_EQ(qt_name_filters("Database (*.mdb)|*.mdb|All Files (*.*)|*.*"),
              QStringList({"Database (*.mdb)", "All Files (*)"}));
    EXPECT_EQ(qt_name_filters("All Files (*.*)|*.*|GIF Files|*.gif|JPG Files|*.jpg"),
              QStringList({"All Files (*)", "GIF Files (*.gif)", "JPG Files (*.jpg)"}));
    EXPECT_EQ(qt_name_filters("Pictures|*.gif;*.jpg; *.png"),
              QStringList({"Pictures (*.gif *.jpg *.png)"}));
    // The patterns of the pair win over what the description says.
    EXPECT_EQ(qt_name_filters("Text (*.doc)|*.txt"), QStringList({"Text (*.txt)"}));
    EXPECT_EQ(qt_name_filters("Lonely"), QStringList({"Lonely (*)"}));
    EXPECT_EQ(qt_name_filters("|*.inc"), QStringList({"*.inc (*.inc)"}));
    EXPECT_TRUE(qt_name_filters("").isEmpty());
}

TEST(DialogFilter, ColourNumbersKeepRedLow) {
    EXPECT_EQ(color_from_number(0x563412), QColor(0x12, 0x34, 0x56));
    EXPECT_EQ(color_number(QColor(0x12, 0x34, 0x56)), 0x563412);
    for (int n : {0, 255, 32768, 16711680, 8421504, 16777215, 8388736, 65535}) {
        EXPECT_EQ(color_number(color_from_number(n)), n);
    }
}

TEST(CentreForm, PutsTheFormInTheMiddleOfItsScreenWithTheArrowAfter) {
    QWidget form;
    form.resize(300, 200);
    QApplication::setOverrideCursor(Qt::WaitCursor);
    centre_form(&form);
    const QRect screen = form.screen()->geometry();
    EXPECT_EQ(form.frameGeometry().top(),
              screen.top() + screen.height() / 2 - form.frameGeometry().height() / 2);
    EXPECT_EQ(form.frameGeometry().left(),
              screen.left() + screen.width() / 2 - form.frameGeometry().width() / 2);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    centre_form(nullptr);  // nothing to place: no harm
}

TEST(QtDialogs, MessageBoxesCarryTheTitleIconAndButtons) {
    QtDialogs dialogs("Quilldex v1.62");
    using B = Dialogs::Buttons;
    using I = Dialogs::Icon;
    BoxSeen seen;
    auto box = [&](const char* press, B buttons, I icon) {
        seen = {};
        press_in_box(seen, press);
        return dialogs.message("Saved.", buttons, icon);
    };
    EXPECT_EQ(box("OK", B::Ok, I::Information), Dialogs::Answer::Ok);
    EXPECT_EQ(seen.title, "Quilldex v1.62");
    EXPECT_EQ(seen.text, "Saved.");
    EXPECT_EQ(seen.icon, QMessageBox::Information);
    EXPECT_EQ(seen.buttons, QStringList({"OK"}));
    EXPECT_EQ(box("No", B::YesNo, I::Question), Dialogs::Answer::No);
    EXPECT_EQ(seen.icon, QMessageBox::Question);
    EXPECT_EQ(seen.buttons.size(), 2);
    EXPECT_EQ(box("Cancel", B::YesNoCancel, I::Question), Dialogs::Answer::Cancel);
    EXPECT_EQ(seen.buttons.size(), 3);
    press_in_box(seen, "Yes");
    EXPECT_EQ(dialogs.ask_yes_no("Sure?"), true);
    // Escape on a Yes/No box is No; on a Yes/No/Cancel box it is Cancel.
    EXPECT_EQ(box("<escape>", B::YesNo, I::None), Dialogs::Answer::No);
    EXPECT_EQ(seen.icon, QMessageBox::NoIcon);
    EXPECT_EQ(box("<escape>", B::YesNoCancel, I::None), Dialogs::Answer::Cancel);
    // A box closed with no button pressed answers the same way.
    when_modal([](QWidget* w) { static_cast<QDialog*>(w)->done(0); });
    EXPECT_EQ(dialogs.message("Sure?", B::YesNo, I::None), Dialogs::Answer::No);
}

TEST(QtDialogs, InputBoxGivesTheTextOrEmptyOnCancel) {
    QtDialogs dialogs("Quilldex v1.62");
    QString title, label;
    when_modal([&](QWidget* w) {
        auto* input = qobject_cast<QInputDialog*>(w);
        ASSERT_NE(input, nullptr);
        title = input->windowTitle();
        label = input->labelText();
        input->setTextValue("typed");
        input->accept();
    });
    EXPECT_EQ(dialogs.input("Enter the search text.", "Text Search", "start"), "typed");
    EXPECT_EQ(title, "Text Search");
    EXPECT_EQ(label, "Enter the search text.");

    when_modal([](QWidget* w) { static_cast<QDialog*>(w)->reject(); });
    const QString cancelled = dialogs.input("Prompt", "", "default");
    EXPECT_TRUE(cancelled.isEmpty());
}

TEST(QtDialogs, OpenFileStartsInTheDirectoryWithTheFiltersAndGivesThePath) {
    QTemporaryDir tmp;
    const QString dir = QDir(tmp.path()).canonicalPath();
    QFile f(dir + "/pick.mdb");
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.close();
    QtDialogs dialogs("Quilldex v1.62");
    Dialogs::FileRequest request{"Select Database", "Database (*.mdb)|*.mdb|All Files (*.*)|*.*",
                                 dir, ""};

    QString seen_dir, seen_title;
    QStringList seen_filters;
    bool own_dialog = false;
    when_modal([&](QWidget* w) {
        auto* fd = qobject_cast<QFileDialog*>(w);
        ASSERT_NE(fd, nullptr);
        // A desktop's own dialog would have no name box to take a server's URL.
        own_dialog = fd->testOption(QFileDialog::DontUseNativeDialog);
        seen_title = fd->windowTitle();
        seen_dir = fd->directory().absolutePath();
        seen_filters = fd->nameFilters();
        fd->selectFile(dir + "/pick.mdb");
        static_cast<QDialog*>(fd)->accept();
    });
    EXPECT_EQ(dialogs.open_file(request), dir + "/pick.mdb");
    EXPECT_EQ(seen_title, "Select Database");
    EXPECT_TRUE(own_dialog);
    EXPECT_EQ(seen_dir, dir);
    EXPECT_EQ(seen_filters, QStringList({"Database (*.mdb)", "All Files (*)"}));

    when_modal([](QWidget* w) { static_cast<QDialog*>(w)->reject(); });
    EXPECT_EQ(dialogs.open_file(request), "");

    // "Select Database" also takes a server's URL typed into the name box.
    const QString url = "postgresql://me@db.example:5432/photos";
    request.takes_server_url = true;
    bool enabled = false;
    when_modal([&](QWidget* w) {
        auto* edit = w->findChild<QLineEdit*>("fileNameEdit");
        ASSERT_NE(edit, nullptr);
        QTest::keyClicks(edit, url);
        QPushButton* open = w->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Open);
        enabled = open->isEnabled();
        open->click();
    });
    EXPECT_EQ(dialogs.open_file(request), url);
    EXPECT_TRUE(enabled);
}

TEST(QtDialogs, ColourDialogSpeaksColourNumbers) {
    QtDialogs dialogs("Quilldex v1.62");
    QColor shown;
    when_modal([&](QWidget* w) {
        auto* cd = qobject_cast<QColorDialog*>(w);
        ASSERT_NE(cd, nullptr);
        shown = cd->currentColor();
        cd->setCurrentColor(QColor(0x00, 0x80, 0xFF));
        cd->accept();
    });
    EXPECT_EQ(dialogs.choose_color(255), std::optional<int>(0xFF8000));
    EXPECT_EQ(shown, QColor(255, 0, 0));
    when_modal([](QWidget* w) { static_cast<QDialog*>(w)->reject(); });
    EXPECT_EQ(dialogs.choose_color(0), std::nullopt);
}

TEST(QtDialogs, ChooseDirectoryRunsTheChooserAndTellsCancelApart) {
    QTemporaryDir tmp;
    const QString dir = QDir(tmp.path()).canonicalPath();
    QDir().mkpath(dir + "/inner");
    QtDialogs dialogs("Quilldex v1.62");

    QString name;
    when_modal([&](QWidget* w) {
        name = w->objectName();
        w->findChild<DirectoryBox*>("o_dir")->set_path(dir + "/inner");
        w->findChild<QPushButton*>("Command1")->click();
    });
    Dialogs::DirectoryChoice choice = dialogs.choose_directory(dir);
    EXPECT_EQ(name, "frm_tempdir");
    EXPECT_EQ(choice.path, dir + "/inner");
    EXPECT_FALSE(choice.cancelled);

    when_modal([](QWidget* w) { w->findChild<QPushButton*>("Command2")->click(); });
    choice = dialogs.choose_directory(dir);
    EXPECT_EQ(choice.path, dir);
    EXPECT_TRUE(choice.cancelled);
}

TEST(VellumarkImport, ImportsLinesWhoseFilesExistWithTitlesAndIsQuietTheSecondTime) {
    TestHome home;
    const QString a = home.write_file("pics/a.jpg");
    const QString b = home.write_file("pics/b.jpg");
    const QString c = home.write_file("pics/c.jpg");
    const QString ta = home.write_file("text/a.txt", "First line\nsecond line\n");
    const QString tb = home.write_file("text/b.txt", "only\r\n");
    const QString ini =
        home.write_file("old/vellumark.ini",
                        ("[Images]\r\n" + a + "=" + ta + "\r\n" +  // imported, with its title
                         "a line without an equals sign\r\n" +     //
                         b + "=" + tb + "\r\n" +                   // imported, no title
                         c + "=" + home.path("text/missing.txt") + "\r\n" +  // no text file: no row
                         home.path("pics/gone.jpg") + "=" + ta + "\r\n" +    // no image: no row
                         "[Other]\r\n" + c + "=" + ta + "=x\r\n" +  // two "=": no such text file
                         "[Associated Text Title]\r\n" + a + "=Harbour at dawn\r\n")
                            .toUtf8());
    SetupDialog setup(home.ctx);
    auto* button = setup.findChild<QPushButton*>("b_options_load_vlk_images");
    ASSERT_NE(button, nullptr);

    // A cancelled dialog imports nothing.
    button->click();
    ASSERT_EQ(home.dialogs.asked().size(), 1u);
    EXPECT_EQ(home.dialogs.asked()[0].title, "Select Vellumark's Ini File");
    EXPECT_EQ(home.dialogs.asked()[0].default_text, "INI (*.ini)|*.ini|All Files (*.*)|*.*");
    EXPECT_TRUE(rows(home).isEmpty());

    const QStringList expected = {
        a + "|Harbour at dawn|First line\\r\\nsecond line\\r\\n|<null>",
        b + "|<null>|only\\r\\n|<null>",
    };
    for (int run = 0; run < 2; ++run) {
        SCOPED_TRACE(run == 0 ? "first import" : "second import");
        home.dialogs.clear();
        home.dialogs.answer_file(ini);
        button->click();
        EXPECT_EQ(rows(home), expected);
        // Nothing is reported, the end included.
        EXPECT_TRUE(home.dialogs.messages().isEmpty());
    }
}
