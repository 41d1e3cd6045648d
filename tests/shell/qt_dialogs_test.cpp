#include "shell/qt_dialogs.h"
#include "shell/dialog_filter.h"
#include "support/qt_print.h"
#include "ui/centre_form.h"
#include "ui/directory_box.h"

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
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>
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

}  // namespace

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
    when_modal([&](QWidget* w) {
        auto* fd = qobject_cast<QFileDialog*>(w);
        ASSERT_NE(fd, nullptr);
        seen_title = fd->windowTitle();
        seen_dir = fd->directory().absolutePath();
        seen_filters = fd->nameFilters();
        fd->selectFile(dir + "/pick.mdb");
        static_cast<QDialog*>(fd)->accept();
    });
    EXPECT_EQ(dialogs.open_file(request), dir + "/pick.mdb");
    EXPECT_EQ(seen_title, "Select Database");
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
