#include "core/pick_helpers.h"
#include "shell/directory_chooser.h"
#include "shell/qt_dialogs.h"
#include "shell/setup_dialog.h"
#include "support/qt_print.h"
#include "support/test_home.h"
#include "ui/directory_box.h"
#include "ui/drive_box.h"

#include <QApplication>
#include <QColorDialog>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include <functional>

namespace {

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

}  // namespace

TEST(PickHelpers, EachOpensItsOwnTitleAtTheLastDirectoryAndACancelChangesNothing) {
    TestHome home;
    home.app.last_directory = home.dir() + "/pics/";
    home.dialogs.answer_file("/p/new.gif");
    EXPECT_EQ(select_preview_image(home.ctx), "/p/new.gif");
    EXPECT_EQ(home.dialogs.asked().back().title, "Select Preview Image");
    EXPECT_EQ(home.dialogs.asked().back().initial_directory, home.dir() + "/pics/");
    EXPECT_EQ(select_preview_image(home.ctx), "");
    // Only a chosen preview image is stored, and the last directory stays.
    EXPECT_EQ(home.app.settings.read("Current", "Preview Image"), "/p/new.gif");
    EXPECT_EQ(home.app.last_directory, home.dir() + "/pics/");
    // A chosen piece of music moves the last directory to its own.
    home.dialogs.answer_file("/music/one/a file.mp3");
    EXPECT_EQ(select_music(home.ctx), "/music/one/a file.mp3");
    EXPECT_EQ(home.dialogs.asked().back().title, "Select Music/MP3s");
    EXPECT_EQ(select_music(home.ctx), "");
    EXPECT_EQ(home.app.last_directory, "/music/one/");
}

TEST(DirectoryChooser, OpensAtTheStartMakesDirectoriesAndTellsCancelFromTheCloseBox) {
    TestHome home;
    const QString start = QDir(home.dir()).canonicalPath();
    QDir().mkpath(start + "/b/c");
    DirectoryChooser chooser(home.dialogs, start + "/b/");
    auto* dir = chooser.findChild<DirectoryBox*>("o_dir");
    EXPECT_EQ(chooser.findChild<QLabel*>("o_directory")->text(), start + "/b");
    // A start that has gone opens at its nearest parent.
    EXPECT_EQ(DirectoryChooser(home.dialogs, start + "/b/missing/deeper").chosen_path(),
              start + "/b");
    // Choosing a drive moves the list and the label.
    chooser.findChild<DriveBox*>("o_drive")->set_roots({"/", start});
    chooser.findChild<DriveBox*>("o_drive")->set_drive(start);
    EXPECT_EQ(chooser.chosen_path(), start);

    auto* make = chooser.findChild<QPushButton*>("b_make_directory");
    make->click();  // an empty name asks nothing more
    ASSERT_EQ(home.dialogs.asked().size(), 1u);
    EXPECT_EQ(home.dialogs.asked().at(0).text,
              "Enter the name of the directory you want to create under " + start + ".");
    const auto make_answering = [&](const QString& name, Dialogs::Answer answer) {
        home.dialogs.clear();
        home.dialogs.answer_input(name);
        home.dialogs.answer(answer);
        make->click();
    };
    make_answering("Holiday 2024", Dialogs::Answer::Yes);
    EXPECT_EQ(home.dialogs.messages(),
              QStringList({"Is " + start + "/Holiday 2024 the directory you want to create?"}));
    EXPECT_TRUE(QDir(start + "/Holiday 2024").exists());
    EXPECT_EQ(chooser.chosen_path(), start + "/Holiday 2024");

    // A name with a separator under a missing parent: nothing is made, no
    // word is said, the label names the new path and the list stays.
    make_answering("no/such", Dialogs::Answer::Yes);
    EXPECT_FALSE(QDir(start + "/Holiday 2024/no").exists());
    EXPECT_EQ(chooser.chosen_path(), start + "/Holiday 2024/no/such");
    EXPECT_EQ(dir->path(), start + "/Holiday 2024");
    EXPECT_EQ(home.dialogs.messages().size(), 1);

    // The menu rows cancel and accept; the close box is no cancel.
    chooser.findChild<QAction*>("menuFileItem_99")->trigger();
    EXPECT_EQ(chooser.result(), QDialog::Accepted);
    chooser.findChild<QAction*>("menuFileItem_98")->trigger();
    EXPECT_TRUE(chooser.cancelled());
    chooser.show();
    EXPECT_TRUE(chooser.close());
    EXPECT_FALSE(chooser.cancelled());
}

TEST(SetupDialog, ShowsTheStoredValuesAndChangesThemAtOnce) {
    TestHome home;
    home.app.last_directory = "/start/here";
    SetupDialog dialog(home.ctx);
    auto label = [&](const char* name) { return dialog.findChild<QLabel*>(name)->text(); };
    auto press = [&](const char* name) { dialog.findChild<QPushButton*>(name)->click(); };
    const QString db = home.app.database_path;

    // The copy directory opens at the last directory, which follows the choice.
    home.dialogs.answer_directory("/copy/to");
    press("b_options_file_copy_directory");
    EXPECT_EQ(label("o_options_file_copy_directory"), "/copy/to");
    EXPECT_EQ(home.dialogs.asked().back().initial_directory, "/start/here");
    EXPECT_EQ(home.app.thumbnail_target_directory, "/start/here");
    EXPECT_EQ(home.app.last_directory, "/copy/to");
    // Cancelled, the chooser still shows where it opened, and that is
    // stored, an empty path as an empty value.
    home.dialogs.answer_directory("", true);
    press("b_options_file_copy_directory");
    EXPECT_TRUE(home.app.directory_chooser_cancelled);
    EXPECT_EQ(home.app.settings.read("Current", "File Copy Directory", "<none>"), "");
    // A cancelled database pick says why, and the label still shows the catalog.
    press("b_options_database");
    EXPECT_EQ(home.dialogs.messages().last(), "The database must be an Access Database (*.mdb).");
    EXPECT_EQ(label("o_options_database"), db);
}

TEST(QtDialogs, MessageBoxesCarryTheTitleIconAndButtons) {
    QtDialogs dialogs("Quilldex v1.62");
    using B = Dialogs::Buttons;
    using I = Dialogs::Icon;
    QString seen;  // caption|text|icon|buttons
    // Presses the button with `press` on the box, or Escape when it has none.
    auto box = [&](const QString& press, B buttons, I icon) {
        when_modal([&, press](QWidget* w) {
            auto* box = qobject_cast<QMessageBox*>(w);
            QStringList texts;
            QAbstractButton* chosen = nullptr;
            for (QAbstractButton* b : box->buttons()) {
                texts << b->text().remove(u'&');
                chosen = texts.last() == press ? b : chosen;
            }
            seen = QStringList({box->windowTitle(), box->text(), QString::number(box->icon()),
                                texts.join(',')})
                       .join('|');
            chosen ? chosen->click() : QTest::keyClick(box, Qt::Key_Escape);
        });
        return dialogs.message("Saved.", buttons, icon);
    };
    EXPECT_EQ(box("OK", B::Ok, I::Information), Dialogs::Answer::Ok);
    EXPECT_EQ(seen, "Quilldex v1.62|Saved.|" + QString::number(QMessageBox::Information) + "|OK");
    // Escape on a Yes/No box is No; on a Yes/No/Cancel box it is Cancel.
    EXPECT_EQ(box("<escape>", B::YesNo, I::None), Dialogs::Answer::No);
    EXPECT_EQ(box("<escape>", B::YesNoCancel, I::None), Dialogs::Answer::Cancel);
}

TEST(QtDialogs, InputColourAndDirectoryDialogsGiveTheValueOrNothingOnCancel) {
    QTemporaryDir tmp;
    const QString dir = QDir(tmp.path()).canonicalPath();
    QDir().mkpath(dir + "/inner");
    QtDialogs dialogs("Quilldex v1.62");
    QString seen;
    when_modal([&](QWidget* w) {
        auto* input = qobject_cast<QInputDialog*>(w);
        seen = input->windowTitle() + '|' + input->labelText();
        input->setTextValue("typed");
        input->accept();
    });
    EXPECT_EQ(dialogs.input("Enter the search text.", "Text Search", "start"), "typed");
    EXPECT_EQ(seen, "Text Search|Enter the search text.");

    // Colours are spoken as numbers with red low.
    when_modal([&](QWidget* w) {
        qobject_cast<QColorDialog*>(w)->setCurrentColor(QColor(0x00, 0x80, 0xFF));
        static_cast<QDialog*>(w)->accept();
    });
    EXPECT_EQ(dialogs.choose_color(255), std::optional<int>(0xFF8000));
    when_modal([](QWidget* w) { static_cast<QDialog*>(w)->reject(); });
    EXPECT_EQ(dialogs.choose_color(0), std::nullopt);

    // The directory chooser tells a cancel apart.
    when_modal([&](QWidget* w) {
        w->findChild<DirectoryBox*>("o_dir")->set_path(dir + "/inner");
        w->findChild<QPushButton*>("Command1")->click();
    });
    Dialogs::DirectoryChoice choice = dialogs.choose_directory(dir);
    EXPECT_EQ(choice.path, dir + "/inner");
    EXPECT_FALSE(choice.cancelled);
    when_modal([](QWidget* w) { w->findChild<QPushButton*>("Command2")->click(); });
    choice = dialogs.choose_directory(dir);
    EXPECT_TRUE(choice.cancelled);
}

TEST(QtDialogs, OpenFileStartsInTheDirectoryWithTheFiltersAndGivesThePath) {
    QTemporaryDir tmp;
    const QString dir = QDir(tmp.path()).canonicalPath();
    ASSERT_TRUE(QFile(dir + "/pick.mdb").open(QIODevice::WriteOnly));
    QtDialogs dialogs("Quilldex v1.62");
    Dialogs::FileRequest request{"Select Database", "Database (*.mdb)|*.mdb|All Files (*.*)|*.*",
                                 dir, ""};
    QString seen;
    bool own_dialog = false;
    when_modal([&](QWidget* w) {
        auto* fd = qobject_cast<QFileDialog*>(w);
        // A desktop's own dialog would have no name box to take a server's URL.
        own_dialog = fd->testOption(QFileDialog::DontUseNativeDialog);
        seen = fd->windowTitle() + '|' + fd->directory().absolutePath() + '|' +
               fd->nameFilters().join(';');
        fd->selectFile(dir + "/pick.mdb");
        static_cast<QDialog*>(fd)->accept();
    });
    EXPECT_EQ(dialogs.open_file(request), dir + "/pick.mdb");
    EXPECT_TRUE(own_dialog);
    EXPECT_EQ(seen, "Select Database|" + dir + "|Database (*.mdb);All Files (*)");

    // "Select Database" also takes a server's URL typed into the name box.
    const QString url = "postgresql://me@db.example:5432/photos";
    request.takes_server_url = true;
    when_modal([&](QWidget* w) {
        QTest::keyClicks(w->findChild<QLineEdit*>("fileNameEdit"), url);
        w->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Open)->click();
    });
    EXPECT_EQ(dialogs.open_file(request), url);
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
                         "[Associated Text Title]\r\n" + a + "=Harbour at dawn\r\n")
                            .toUtf8());
    SetupDialog setup(home.ctx);
    auto* button = setup.findChild<QPushButton*>("b_options_load_vlk_images");
    const auto rows = [&] {
        return query_column(home.app,
                            "select filename || '|' || ifnull(title, '<null>') || '|' || "
                            "replace(replace(description, char(13), '\\r'), char(10), "
                            "'\\n') from filenames order by filename");
    };

    const QStringList expected = {a + "|Harbour at dawn|First line\\r\\nsecond line\\r\\n",
                                  b + "|<null>|only\\r\\n"};
    for (int run = 0; run < 2; ++run) {
        SCOPED_TRACE(run == 0 ? "first import" : "second import");
        home.dialogs.clear();
        home.dialogs.answer_file(ini);
        button->click();
        EXPECT_EQ(rows(), expected);
        EXPECT_EQ(home.dialogs.asked().at(0).title, "Select Vellumark's Ini File");
        // Nothing is reported, the end included.
        EXPECT_TRUE(home.dialogs.messages().isEmpty());
    }
}
