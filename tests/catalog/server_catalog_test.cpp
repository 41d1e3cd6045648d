#include "catalog/catalog_check.h"
#include "catalog/database.h"
#include "shell/setup_dialog.h"

#include "support/cli_run.h"
#include "support/pg_server.h"
#include "support/test_home.h"

#include <QElapsedTimer>
#include <QLabel>
#include <QPushButton>

#include <gtest/gtest.h>

// "Select Database" takes a typed URL; a password in it serves the run and
// never reaches the settings file, and a server that does not answer is
// refused within the connect timeout, leaving the open catalog open.
TEST(ServerCatalog, SelectDatabaseTakesAUrlKeepsItsPasswordOutAndRefusesASilentServer) {
    QD_NEED_SERVER();
    TestHome home;
    const QString url = PgServer::shared().new_catalog(home.path("qd.mdb"));
    SetupDialog options(home.ctx);
    const auto select = [&](const QString& typed) {
        home.dialogs.answer_file(typed);
        options.findChild<QPushButton*>("b_options_database")->click();
        return options.findChild<QLabel*>("o_options_database")->text();
    };
    EXPECT_EQ(select(" " + QString(url).replace("quilldex@", "quilldex:secret@")), url);
    EXPECT_EQ(home.app.database.path(), url);
    EXPECT_EQ(home.app.settings.read("Current", "Database"), url);
    EXPECT_FALSE(read_bytes(home.app.ini_path).contains("secret"));

    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(
        select(
            QStringLiteral("postgresql://quilldex@127.0.0.1:%1/none").arg(PgServer::spare_port())),
        "");
    EXPECT_LT(clock.elapsed(), 5500);
    EXPECT_EQ(home.dialogs.messages().value(home.dialogs.messages().size() - 1),
              "The database you have selected does not appear to be the correct database.");
    EXPECT_EQ(home.app.database.path(), url);
    EXPECT_EQ(home.app.settings.read("Current", "Database"), url);
}

TEST(ServerCatalog, CatalogCopyGoesBothWaysRowForRowAndWritesOverOnlyWhenTold) {
    QD_NEED_SERVER();
    TestHome home;
    // More rows than one batch of the copy; titles with apostrophes and nulls.
    QStringList values;
    for (int i = 0; i < 250; ++i) {
        values << QString("('/p/%1.jpg', %2, 'Trips')")
                      .arg(i)
                      .arg(i % 3 ? QString("'T''%1'").arg(i) : "null");
    }
    query_column(home.app,
                 "insert into filenames (filename, title, catalog) values " + values.join(", "));
    const QString file = home.path("qd.mdb");
    const QString url = PgServer::shared().new_database();
    const QString snapshot =
        "select filename || '|' || coalesce(title, '<null>') || '|' || catalog from filenames "
        "order by filename";
    const QStringList rows = query_column(home.app, snapshot);

    CliRun up = run_cli(home.dir(), {"catalog-copy", file, url});
    ASSERT_EQ(up.code, 0) << up.err.toStdString();
    EXPECT_TRUE(up.lines.contains("filenames: 250 rows")) << up.out.toStdString();

    const QString back = home.path("back.mdb");
    CliRun down = run_cli(home.dir(), {"catalog-copy", url, back});
    ASSERT_EQ(down.code, 0) << down.err.toStdString();
    EXPECT_EQ(up.lines, down.lines);
    home.app.database_path = back;
    EXPECT_EQ(query_column(home.app, snapshot), rows);
    home.app.database_path = url;
    EXPECT_EQ(query_column(home.app, snapshot), rows);

    // A catalog that holds rows is written over only with --replace.
    home.app.database.execute(Sql("delete * from filenames where filename='%1'").arg("/p/0.jpg"));
    CliRun refused = run_cli(home.dir(), {"catalog-copy", file, url});
    EXPECT_EQ(refused.code, 1);
    EXPECT_TRUE(refused.err.contains("--replace")) << refused.err.toStdString();
    EXPECT_EQ(query_column(home.app, snapshot), rows);
    CliRun replaced = run_cli(home.dir(), {"catalog-copy", "--replace", file, url});
    ASSERT_EQ(replaced.code, 0) << replaced.err.toStdString();
    EXPECT_EQ(query_column(home.app, snapshot), rows.mid(1));
    EXPECT_EQ(run_cli(home.dir(), {"catalog-copy", url, back}).code, 1);
    // A directory is no catalog to copy into.
    EXPECT_EQ(run_cli(home.dir(), {"catalog-copy", url, home.dir()}).err.trimmed(),
              "The catalog " + home.dir() + " does not exist.");

    // A server that does not answer is named with the driver's words.
    CliRun nowhere =
        run_cli(home.dir(),
                {"catalog-copy", file,
                 QString("postgresql://quilldex@127.0.0.1:%1/none").arg(PgServer::spare_port())});
    EXPECT_EQ(nowhere.code, 1);
    EXPECT_TRUE(nowhere.err.contains("cannot be opened")) << nowhere.err.toStdString();
}

// An edit of a row that another program changed since it was read is refused,
// not written over theirs; read again, the row takes the edit.
TEST(ServerCatalog, AnEditOfARowAnotherProgramChangedIsRefusedNotLost) {
    QD_NEED_SERVER();
    TestHome home;
    const QString url = PgServer::shared().new_catalog(home.path("qd.mdb"));
    Database mine_db, their_db;
    ASSERT_TRUE(mine_db.open(url) && their_db.open(url));
    Recordset mine, theirs;
    mine.open(mine_db, Sql("select * from filenames where filename='trash'"));
    mine.add_new();
    mine.set_field("filename", "/p/a.jpg");
    mine.update();
    const Sql row("select * from filenames where filename='/p/a.jpg'");
    mine.open(mine_db, row);
    theirs.open(their_db, row);
    theirs.edit();
    theirs.set_field("title", "theirs");
    theirs.update();
    mine.edit();
    mine.set_field("title", "mine");
    EXPECT_THROW(mine.update(), DbError);
    theirs.open(their_db, row);
    EXPECT_EQ(theirs.text("title"), "theirs");
    mine.open(mine_db, row);
    mine.edit();
    mine.set_field("title", "mine");
    EXPECT_NO_THROW(mine.update());
    theirs.open(their_db, row);
    EXPECT_EQ(theirs.text("title"), "mine");
}
