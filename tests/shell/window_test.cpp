#include "core/run_error.h"
#include "shell/application.h"
#include "shell/main_window.h"
#include "shell/tab_strip.h"
#include "support/qt_print.h"
#include "support/test_home.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QStatusBar>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <gtest/gtest.h>

namespace {


// A window over a test directory, for a real start: nothing read yet, and
// the process end only counted.
struct Started {
    explicit Started(TestHome& home) : window(home.app, home.dialogs, home.shell) {
        home.app.last_directory.clear();
        home.app.database_path.clear();
        window.set_end_process([this] { ++ended; });
    }
    QAction* item(int row) {
        return window.item_menu().findChild<QAction*>(QString("rightmousemenuitems_%1").arg(row));
    }
    MainWindow window;
    int ended = 0;
};

}  // namespace

TEST(Start, FirstRunWithoutCatalogAsksForOneThenClosesAfterWritingTheSettings) {
    TestHome home(false);
    Started s(home);
    EXPECT_FALSE(s.window.start_application({}));
    EXPECT_EQ(s.ended, 1);
    const auto& asked = home.dialogs.asked();
    ASSERT_EQ(asked.size(), 2u);
    EXPECT_EQ(asked[0].title, "Select Database");
    EXPECT_EQ(asked[1].text, "The database must be an Access Database (*.mdb).");
    EXPECT_EQ(asked[1].icon, Dialogs::Icon::Information);

    // Made on the first run, then written once more on the way out.
    ProfileFile ini(home.path("quilldex.ini"));
    EXPECT_EQ(ini.sections(), QStringList({"Current", "Color", "Full Size Image"}));
    EXPECT_EQ(ini.keys("Current").size(), 22);
    EXPECT_EQ(ini.read("Current", "Auto Start Browser"), "Yes");
    EXPECT_EQ(ini.read("Current", "Last Directory"), home.path("html"));
    EXPECT_TRUE(QFileInfo(home.path("html")).isDir());
    // The installer's file knows this version.
    EXPECT_EQ(ProfileFile(home.path("uninstall.ini")).read("Current", "Version"), "Quilldex v1.62");
}

TEST(Start, ConfiguredDirectoryOpensOnTheMainTabWithEverythingBesideIt) {
    TestHome home;
    home.app.settings.write("Current", "Thumbnail Optimize", "Yes");
    home.app.settings.write("Current", "Top Banner", "gone at exit");
    Started s(home);

    ASSERT_TRUE(s.window.start_application({"LOG_MESSAGES"}));
    EXPECT_TRUE(home.dialogs.asked().empty());
    EXPECT_EQ(s.window.current_tab_caption(), "Main");
    EXPECT_EQ(read_text(home.path("htmlhead.htm")),
              "<html>\r\n<center>\r\n<h1>Corvane HTML Output</h1>\r\n</center>\r\n<p>\r\n");

    // Fourteen tabs, the spare one hidden.
    TabStrip& tabs = s.window.tabs();
    QStringList captions;
    for (int i = 0; i < tabs.count(); ++i) {
        captions << tabs.caption(i);
    }
    EXPECT_EQ(captions,
              QStringList({"Main", "Templates", "Resize", "Load", "Search", "Catalogs", "Web Pages",
                           "Scan", "Monitor", "Index", "Audit", "11", "Slides", "Printing"}));
    EXPECT_EQ(tabs.index_of("Nowhere"), -1);
    EXPECT_FALSE(tabs.is_tab_visible(11));
    // Entering a tab empties the status text.
    home.ctx.ui.set_status("busy");
    EXPECT_TRUE(
        s.window.statusBar()->isAncestorOf(s.window.findChild<QLabel*>("StatusBar1_panel1")));
    tabs.tab_button(3)->click();
    EXPECT_EQ(s.window.current_tab_caption(), "Load");
    EXPECT_EQ(s.window.context().ui.status(), "");

    // The help menu opens the HTML help or says it is missing.
    auto trigger = [&](const char* name) { s.window.findChild<QAction*>(name)->trigger(); };
    trigger("menuHelpItem_3");
    EXPECT_EQ(home.dialogs.messages(),
              QStringList({"The help file, " + home.dir() + "/qdhelp.htm, does not exist."}));
    home.write_file("qdhelp.htm", "<html></html>");
    trigger("menuHelpItem_0");
    EXPECT_EQ(home.shell.opened, QStringList({"file://" + home.path("qdhelp.htm")}));

    // Finishing writes the settings: an untouched "Yes" turns to "No" at exit
    // and the dropped keys go. A second finish does nothing more.
    s.window.finish_up();
    s.window.finish_up();
    EXPECT_EQ(s.ended, 1);
    EXPECT_EQ(home.app.settings.read("Current", "Thumbnail Optimize"), "No");
    EXPECT_FALSE(home.app.settings.contains("Current", "Top Banner"));
    // The log has its columns.
    EXPECT_EQ(read_text(home.path("msglog.txt")).section("\r\n", 1, 1),
              "startitoff" + QString(19, ' ') + "readwriteini_read");
}

TEST(Start, UnreadableCatalogShowsItsErrorThenAsksAndEmptyNameIsAccepted) {
    TestHome home;
    home.write_file("broken.mdb", QByteArray(4096, 'z'));
    home.app.settings.write("Current", "Database", home.path("broken.mdb"));
    query_column(home.app, "update version set name = ''");
    const QString other = home.path("other.mdb");
    ASSERT_TRUE(QFile::copy(home.path("qd.mdb"), other));
    home.dialogs.answer_file(other);
    Started s(home);

    ASSERT_TRUE(s.window.start_application({}));
    const QStringList messages = home.dialogs.messages();
    ASSERT_EQ(messages.size(), 2);
    EXPECT_TRUE(messages[0].contains("not a database")) << messages[0].toStdString();
    EXPECT_EQ(messages[1],
              "The database you have selected does not appear to be the correct database.");
    // An empty product name passes the check.
    EXPECT_EQ(home.app.database.path(), other);
    EXPECT_EQ(home.app.settings.read("Current", "Database"), other);
}

TEST(Start, AnUncaughtErrorIsShownAndTheApplicationKeepsRunning) {
    // An object whose handling of any posted event fails as an uncaught error.
    struct Failing : QObject {
        bool event(QEvent* e) override {
            if (e->type() == QEvent::User) {
                throw RunError("Invalid property array index");
            }
            return QObject::event(e);
        }
    } failing;
    TestHome home;
    auto* app = qobject_cast<QuilldexApplication*>(QCoreApplication::instance());
    ASSERT_NE(app, nullptr);
    app->set_error_dialogs(&home.dialogs);
    QCoreApplication::postEvent(&failing, new QEvent(QEvent::User));
    QCoreApplication::sendPostedEvents(&failing, QEvent::User);
    app->set_error_dialogs(nullptr);
    ASSERT_EQ(home.dialogs.messages(), QStringList({"Invalid property array index"}));
    // The loop still runs events after it.
    bool ran = false;
    QTimer::singleShot(0, [&] { ran = true; });
    EXPECT_TRUE(QTest::qWaitFor([&] { return ran; }));
}

TEST(ItemMenuWindow, SearchAndMainListsFollowTheTableAndRow50OpensCommonInformation) {
    TestHome home;
    const QString a = home.write_file("pics/a.jpg");
    const QString b = home.write_file("pics/b.jpg");
    const QString c = home.write_file("pics/c.jpg");
    for (const QString& p : {a, b, c}) {
        query_column(home.app,
                     "insert into filenames (filename, keywords) values ('" + p + "', 'kept')");
    }
    Started w(home);
    ASSERT_TRUE(w.window.start_application({}));
    const QString kDelete = "Are you sure you want to permanently delete '";
    const auto select = [](ItemList& l, QList<int> rows, int focus) {
        l.set_list_index(focus);
        l.clear_selection();
        for (int r : rows) {
            l.set_selected(r, true);
        }
    };

    w.window.tabs().tab_button(4)->click();
    EXPECT_FALSE(w.item(50)->isEnabled());
    w.window.findChild<QLineEdit*>("o_search_value")->setText("pics");
    w.window.findChild<QPushButton*>("b_search_database")->click();
    auto& found =
        *qobject_cast<ItemList*>(w.window.findChild<QAbstractItemView*>("o_search_list")->model());
    ASSERT_EQ(found.items(), QStringList({a, b, c}));
    // Delete from disk and database.
    select(found, {0}, 0);
    home.dialogs.answer(Dialogs::Answer::Yes);
    w.item(15)->trigger();
    EXPECT_EQ(home.dialogs.messages().last(), kDelete + a + "' from disk and the database?");
    EXPECT_FALSE(QFileInfo::exists(a));
    EXPECT_EQ(found.items(), QStringList({b, c}));

    // On Main: row 50 is enabled; delete asks with "'?" and spares the
    // catalog the program holds, whose row still leaves the list.
    w.window.tabs().tab_button(0)->click();
    EXPECT_TRUE(w.item(50)->isEnabled());
    ItemList& main_list = home.app.main_list;
    main_list.set_items({b, c, home.app.database_path});
    select(main_list, {2}, 2);
    home.dialogs.answer(Dialogs::Answer::Yes);
    w.item(10)->trigger();
    EXPECT_EQ(home.dialogs.messages().last(), kDelete + home.app.database_path + "'?");
    EXPECT_TRUE(QFileInfo::exists(home.app.database_path));
    EXPECT_EQ(main_list.items(), QStringList({b, c}));

    // Row 50: the form writes all three fields to the selected files, with
    // the typed catalog new, and the Main tab's fields are emptied after it.
    w.window.findChild<QLineEdit*>("o_main_file_title")->setText("left over");
    select(main_list, {0, 1}, 1);
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
    w.window.tabs().tab_button(2)->click();
    EXPECT_FALSE(w.item(50)->isEnabled());
}

TEST(WindowHooks, AStatusPerRowDoesNotRepaintThePanelPerRowAndTheBarShowsWhileACommandRuns) {
    QLabel panel;
    panel.resize(400, 20);
    panel.show();
    struct PaintCounter : QObject {
        bool eventFilter(QObject*, QEvent* event) override {
            paints += event->type() == QEvent::Paint ? 1 : 0;
            return false;
        }
        int paints = 0;
    } counter;
    panel.installEventFilter(&counter);
    QProgressBar bar;
    WindowHooks hooks;
    hooks.set_panel(&panel);
    hooks.set_progress_bar(&bar);
    QElapsedTimer t;
    t.start();
    {
        Progress progress(hooks, 2000);
        for (int row = 1; row <= 2000; ++row) {
            hooks.set_status(QStringLiteral("Processing /p/%1.jpg").arg(row));
            progress.step(row);
            hooks.yield();
        }
        // Commands read back the latest text at once.
        EXPECT_EQ(hooks.status(), "Processing /p/2000.jpg");
        EXPECT_EQ(bar.value(), 2000);
        // A command inside another leaves the outer one's bar as it is.
        Progress(hooks, 0).step(1);
        EXPECT_EQ(bar.maximum(), 2000);
        EXPECT_FALSE(bar.isHidden());
    }
    EXPECT_TRUE(bar.isHidden());
    // A few dozen paints a second at most, not one per row.
    EXPECT_LT(counter.paints, 10 + t.elapsed() / 20) << counter.paints;
    // The last text reaches the panel soon after.
    EXPECT_TRUE(QTest::qWaitFor([&] { return panel.text() == "Processing /p/2000.jpg"; }));
}
