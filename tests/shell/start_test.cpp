#include "catalog/database.h"
#include "core/run_error.h"
#include "shell/application.h"
#include "shell/main_window.h"
#include "shell/tab_strip.h"
#include "slides/music_device.h"

#include "support/qt_print.h"
#include "support/test_home.h"

#include <QAction>
#include <QCoreApplication>
#include <QEvent>
#include <QFile>
#include <QFileInfo>
#include <QMenu>
#include <QSqlDatabase>
#include <QSqlQuery>
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

namespace {

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

}  // namespace

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
        EXPECT_EQ(s.window.findChild<QAction*>("menuFileItem_99")->text(), "&Exit");
        EXPECT_EQ(s.window.findChild<QAction*>("menuOptionsItem_50")->text(), "Setup");
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

namespace {

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

}  // namespace

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
