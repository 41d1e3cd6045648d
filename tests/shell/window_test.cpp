#include "catalog/database.h"
#include "core/item_list.h"
#include "core/run_error.h"
#include "shell/application.h"
#include "shell/main_window.h"
#include "shell/tab_strip.h"
#include "slides/music_device.h"
#include "support/qt_print.h"
#include "support/test_home.h"

#include <QAbstractItemView>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QCoreApplication>
#include <QDialog>
#include <QElapsedTimer>
#include <QEvent>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QStatusBar>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <gtest/gtest.h>

namespace {

QString read_text(const QString& path) {
    QFile f(path);
    f.open(QIODevice::ReadOnly);
    return QString::fromUtf8(f.readAll());
}

// A window over a test directory whose process end is only counted.
struct Started {
    explicit Started(TestHome& home) : window(home.app, home.dialogs, home.shell) {
        window.set_end_process([this] { ++ended; });
    }
    MainWindow window;
    int ended = 0;
};

// A fresh application state for a real start: nothing read yet.
void forget_everything(TestHome& home) {
    home.app.last_directory.clear();
    home.app.database_path.clear();
}

void run_sql(const QString& db_path, const QString& sql) {
    {
        QSqlDatabase db =
            QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("fixture"));
        db.setDatabaseName(db_path);
        ASSERT_TRUE(db.open());
        QSqlQuery q(db);
        ASSERT_TRUE(q.exec(sql)) << sql.toStdString();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("fixture"));
}

// Records what the application asks of the music device.
class RecordingMusic : public MusicDevice {
public:
    bool open(const QString&, const QString&) override { return true; }
    void play() override { calls << "play"; }
    void pause() override { calls << "pause"; }
    void resume() override { calls << "resume"; }
    void stop() override { calls << "stop"; }
    void close() override { calls << "close"; }
    qint64 length() const override { return 0; }
    qint64 position() const override { return 0; }
    void set_speed(int) override {}
    void set_mute(bool) override {}
    QStringList calls;
};

// An object whose handling of any posted event fails as an uncaught error.
class Failing : public QObject {
public:
    bool event(QEvent* e) override {
        if (e->type() == QEvent::User) {
            throw RunError("Invalid property array index");
        }
        return QObject::event(e);
    }
};

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

// Counts the paints of a widget.
class PaintCounter : public QObject {
public:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint) {
            ++paints;
        }
        return false;
    }
    int paints = 0;
};
}  // namespace

TEST(Start, FirstRunWithoutCatalogAsksForOneThenClosesAfterWritingTheSettings) {
    TestHome home(false);
    forget_everything(home);
    Started s(home);

    EXPECT_FALSE(s.window.start_application({}));
    EXPECT_EQ(s.ended, 1);

    const auto& asked = home.dialogs.asked();
    ASSERT_EQ(asked.size(), 2u);
    EXPECT_EQ(asked[0].kind, "open_file");
    EXPECT_EQ(asked[0].title, "Select Database");
    EXPECT_EQ(asked[0].default_text, "Database (*.mdb)|*.mdb|All Files (*.*)|*.*");
    EXPECT_EQ(asked[1].text, "The database must be an Access Database (*.mdb).");
    EXPECT_EQ(asked[1].icon, Dialogs::Icon::Information);

    // Made on the first run, then written once more on the way out.
    ProfileFile ini(home.path("quilldex.ini"));
    EXPECT_EQ(ini.keys("Current"),
              QString("Editor|Last Directory|Last Drive|Pixel Height|Pixel Width|Load Delay|Help "
                      "File|Thumbnail Dither|Thumbnail Quality|Thumbnail Smoothing|Thumbnail "
                      "Optimize|Prefix Thumbnail File|Thumbnail Style|Thumbnail Size|Form Top|Form "
                      "Left|Form Height|Form Width|Rename HTML|Auto Start Editor|Ratio|Auto Start "
                      "Browser")
                  .split('|'));
    EXPECT_EQ(ini.sections(), QStringList({"Current", "Color", "Full Size Image"}));
    EXPECT_EQ(ini.read("Current", "Auto Start Browser"), "Yes");
    EXPECT_EQ(ini.read("Current", "Thumbnail Dither"), "1");
    EXPECT_EQ(ini.read("Current", "Last Directory"), home.path("html"));
    EXPECT_EQ(ini.read("Current", "Help File"), home.path("qdhelp.htm"));
    EXPECT_EQ(ini.read("Color", "Alink"), "#000000");
    EXPECT_EQ(ini.read("Full Size Image", "Use Text"), "No");
    EXPECT_TRUE(QFileInfo(home.path("html")).isDir());
    // The installer's file knows this version and place.
    ProfileFile uninstall(home.path("uninstall.ini"));
    EXPECT_EQ(uninstall.read("Current", "Version"), "Quilldex v1.62");
    EXPECT_EQ(uninstall.read("Current", "Path"), home.dir());
}

TEST(Start, ConfiguredDirectoryOpensOnTheMainTabWithEverythingBesideIt) {
    TestHome home;
    forget_everything(home);
    home.app.settings.write("Current", "Thumbnail Optimize", "Yes");
    home.app.settings.write("Current", "Top Banner", "gone at exit");
    home.app.settings.write("Current", "Directory", "gone at exit");
    home.write_file("uninstall.ini",
                    "[Files]\r\n1File=x\r\n2File=" + home.path("QUILLDEX.INI").toUtf8() + "\r\n");
    RecordingMusic music;
    home.app.music_device = &music;
    Started s(home);

    ASSERT_TRUE(s.window.start_application({}));
    EXPECT_TRUE(home.dialogs.asked().empty());
    EXPECT_EQ(s.window.windowTitle(), "Quilldex v1.62");
    EXPECT_EQ(s.window.current_tab_caption(), "Main");
    EXPECT_EQ(home.app.database_path, home.path("qd.mdb"));
    EXPECT_EQ(home.app.settings.read("Current", "Database"), home.path("qd.mdb"));
    // The database's directory is overwritten by the key, and an empty key
    // gives the html directory.
    EXPECT_EQ(home.app.last_directory, home.path("html"));
    EXPECT_TRUE(QFileInfo(home.path("temp")).isDir());
    EXPECT_TRUE(QFileInfo(home.path("slide_shows")).isDir());
    EXPECT_EQ(read_text(home.path("htmlhead.htm")),
              "<html>\r\n<center>\r\n<h1>Corvane HTML Output</h1>\r\n</center>\r\n<p>\r\n");
    EXPECT_EQ(read_text(home.path("htmlfoot.htm")), "</body>\r\n</html>\r\n");
    ProfileFile uninstall(home.path("uninstall.ini"));
    // Only a file that the installer has just made is searched for the
    // settings file's line; one that was there is left as it is.
    EXPECT_EQ(uninstall.read("Files", "2File"), home.path("QUILLDEX.INI"));
    EXPECT_EQ(uninstall.read("Current", "Version"), "Quilldex v1.62");
    {
        SCOPED_TRACE("fourteen tabs, the spare one hidden, a fixed size");
        TabStrip& tabs = s.window.tabs();
        QStringList captions;
        for (int i = 0; i < tabs.count(); ++i) {
            captions << tabs.caption(i);
        }
        EXPECT_EQ(captions, QStringList({"Main", "Templates", "Resize", "Load", "Search",
                                         "Catalogs", "Web Pages", "Scan", "Monitor", "Index",
                                         "Audit", "11", "Slides", "Printing"}));
        EXPECT_EQ(tabs.index_of("Load"), 3);
        EXPECT_EQ(tabs.index_of("Nowhere"), -1);
        EXPECT_FALSE(tabs.is_tab_visible(11));
        EXPECT_TRUE(tabs.is_tab_visible(10));
        EXPECT_TRUE(tabs.is_tab_visible(12));
        EXPECT_EQ(s.window.size(), QSize(633, 474));
        s.window.resize(900, 700);
        EXPECT_EQ(s.window.size(), QSize(633, 474));

        // Entering a tab empties the status text and leaves row 50 of the
        // file list menu enabled on the Main tab only.
        auto row50 = [&] {
            for (QAction* a : s.window.item_menu().actions()) {
                if (a->objectName() == "rightmousemenuitems_50") {
                    return a->isEnabled();
                }
            }
            return true;
        };
        EXPECT_FALSE(row50());
        home.ctx.ui.set_status("busy");
        EXPECT_TRUE(
            s.window.statusBar()->isAncestorOf(s.window.findChild<QLabel*>("StatusBar1_panel1")));
        tabs.tab_button(3)->click();
        EXPECT_EQ(s.window.current_tab_caption(), "Load");
        EXPECT_EQ(s.window.context().ui.status(), "");
        EXPECT_FALSE(row50());
        tabs.tab_button(0)->click();
        EXPECT_TRUE(row50());
    }
    {
        SCOPED_TRACE("the help menu opens the HTML help or says it is missing");
        auto trigger = [&](const char* name) { s.window.findChild<QAction*>(name)->trigger(); };
        trigger("menuHelpItem_3");
        EXPECT_EQ(home.dialogs.messages(),
                  QStringList({"The help file, " + home.dir() + "/qdhelp.htm, does not exist."}));
        home.write_file("qdhelp.htm", "<html></html>");
        trigger("menuHelpItem_0");
        trigger("menuHelpOnlineItem_20");
        ASSERT_EQ(home.shell.opened.size(), 2);
        EXPECT_EQ(home.shell.opened[0], "file://" + home.path("qdhelp.htm"));
        EXPECT_TRUE(home.shell.opened[1].endsWith("/software/qd/index.asp?src=qd"));
    }

    // Finishing stops the music first, then writes the settings: an untouched
    // "Yes" turns to "No" at exit and the dropped keys go.
    s.window.finish_up();
    home.app.music_device = nullptr;
    EXPECT_EQ(music.calls, QStringList({"stop", "close"}));
    EXPECT_EQ(s.ended, 1);
    EXPECT_EQ(home.app.settings.read("Current", "Thumbnail Optimize"), "No");
    EXPECT_FALSE(home.app.settings.contains("Current", "Top Banner"));
    EXPECT_FALSE(home.app.settings.contains("Current", "Directory"));
    // A second finish does nothing more.
    s.window.finish_up();
    EXPECT_EQ(s.ended, 1);
    EXPECT_EQ(music.calls.size(), 2);
}

TEST(Start, LogIsWrittenWithItsColumns) {
    // Which arguments turn the log on is the command line's own test.
    TestHome home;
    forget_everything(home);
    Started s(home);
    ASSERT_TRUE(s.window.start_application({"LOG_MESSAGES"}));
    s.window.finish_up();
    const QStringList lines = read_text(home.path("msglog.txt")).split("\r\n");
    const auto line = [](const QString& first, const QString& second) {
        return first + QString(29 - first.size(), ' ') + second;
    };
    EXPECT_EQ(lines.mid(0, 7),
              QStringList({line("-------------------------", "-------------------------"),
                           line("startitoff", "readwriteini_write"), line("readwriteini", "write"),
                           line("startitoff", "readwriteini_read"), line("readwriteini", "read"),
                           line("readwriteini", "write"), line("finishup", "exit")}));
}

TEST(Start, RefusedCatalogIsReplacedThroughTheDialog) {
    TestHome home;
    forget_everything(home);
    const QString good = home.path("good.mdb");
    ASSERT_TRUE(QFile::copy(home.path("qd.mdb"), good));
    run_sql(home.path("qd.mdb"), "delete from version");
    home.dialogs.answer_file(good);
    Started s(home);

    ASSERT_TRUE(s.window.start_application({}));
    EXPECT_EQ(home.dialogs.messages(),
              QStringList(
                  {"The database you have selected does not appear to be the correct database."}));
    EXPECT_EQ(home.app.database_path, good);
    EXPECT_EQ(home.app.database.path(), good);
    EXPECT_EQ(home.app.settings.read("Current", "Database"), good);
}

TEST(Start, UnreadableCatalogShowsItsErrorThenAsksAndEmptyNameIsAccepted) {
    TestHome home;
    forget_everything(home);
    home.write_file("broken.mdb", QByteArray(4096, 'z'));
    home.app.settings.write("Current", "Database", home.path("broken.mdb"));
    const QString other = home.path("other.mdb");
    ASSERT_TRUE(QFile::copy(home.path("qd.mdb"), other));
    run_sql(other, "update version set name = ''");
    home.dialogs.answer_file(other);
    Started s(home);

    ASSERT_TRUE(s.window.start_application({}));
    const QStringList messages = home.dialogs.messages();
    ASSERT_EQ(messages.size(), 2);
    EXPECT_TRUE(messages[0].contains("not a database")) << messages[0].toStdString();
    EXPECT_EQ(home.dialogs.asked()[0].icon, Dialogs::Icon::None);
    EXPECT_EQ(messages[1],
              "The database you have selected does not appear to be the correct database.");
    // An empty product name passes the check.
    EXPECT_EQ(home.app.database_path, other);
}

TEST(Start, AnUncaughtErrorIsShownAndTheApplicationKeepsRunning) {
    TestHome home;
    auto* app = qobject_cast<QuilldexApplication*>(QCoreApplication::instance());
    ASSERT_NE(app, nullptr);
    app->set_error_dialogs(&home.dialogs);
    Failing failing;
    QCoreApplication::postEvent(&failing, new QEvent(QEvent::User));
    QCoreApplication::sendPostedEvents(&failing, QEvent::User);
    app->set_error_dialogs(nullptr);
    ASSERT_EQ(home.dialogs.messages(), QStringList({"Invalid property array index"}));
    EXPECT_EQ(home.dialogs.asked()[0].icon, Dialogs::Icon::None);
    // The loop still runs events after it.
    bool ran = false;
    QMetaObject::invokeMethod(
        &failing, [&] { ran = true; }, Qt::QueuedConnection);
    QCoreApplication::processEvents();
    EXPECT_TRUE(ran);
}

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

    // Delete from disk and database, then the record count afresh.
    w.select(found, {0}, 0);
    home.dialogs.answer(Dialogs::Answer::Yes);
    w.item(15)->trigger();
    EXPECT_EQ(home.dialogs.messages().last(), kDelete + a + "' from disk and the database?");
    EXPECT_FALSE(QFileInfo::exists(a));
    EXPECT_EQ(found.items(), QStringList({b, c}));
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

TEST(WindowHooks, AStatusPerRowDoesNotRepaintThePanelPerRow) {
    QLabel panel;
    panel.resize(400, 20);
    panel.show();
    PaintCounter counter;
    panel.installEventFilter(&counter);
    WindowHooks hooks;
    hooks.set_panel(&panel);

    hooks.set_status("Processing /p/0.jpg");
    EXPECT_EQ(panel.text(), "Processing /p/0.jpg");
    QElapsedTimer t;
    t.start();
    for (int row = 1; row <= 2000; ++row) {
        hooks.yield();
        hooks.set_status(QStringLiteral("Processing /p/%1.jpg").arg(row));
        hooks.yield();
    }
    // Commands read back the latest text at once.
    EXPECT_EQ(hooks.status(), "Processing /p/2000.jpg");
    // A few dozen paints a second at most, not one per row.
    EXPECT_LT(counter.paints, 10 + t.elapsed() / 20) << counter.paints;
    // The last text reaches the panel soon after.
    auto shown_soon = [&](const QString& text) {
        QElapsedTimer wait;
        wait.start();
        while (panel.text() != text && wait.elapsed() < 1000) {
            QTest::qWait(5);
        }
        return panel.text() == text;
    };
    EXPECT_TRUE(shown_soon("Processing /p/2000.jpg"));
    hooks.set_status("");
    EXPECT_TRUE(shown_soon(""));
}

TEST(WindowHooks, TheProgressBarShowsOnlyWhileACommandRuns) {
    QProgressBar bar;
    bar.setVisible(false);
    WindowHooks hooks;
    hooks.set_progress_bar(&bar);
    {
        Progress progress(hooks, 4);
        EXPECT_FALSE(bar.isHidden());
        progress.step(3);
        EXPECT_EQ(bar.maximum(), 4);
        EXPECT_EQ(bar.value(), 3);
        {
            // A command inside another leaves the outer one's bar as it is.
            Progress inner(hooks, 0);
            inner.step(1);
            EXPECT_EQ(bar.maximum(), 4);
        }
        EXPECT_FALSE(bar.isHidden());
    }
    EXPECT_TRUE(bar.isHidden());
    Progress busy(hooks, 0);
    // No end known: a range of 0..0 runs the bar busy.
    EXPECT_EQ(bar.maximum(), 0);
    EXPECT_FALSE(bar.isHidden());
}
