#include "catalog/catalog_check.h"
#include "catalog/database.h"

#include "support/cli_run.h"
#include "support/pg_server.h"
#include "support/test_home.h"

#include <gtest/gtest.h>

TEST(ServerCatalog, CatalogCopyGoesBothWaysRowForRowAndWritesOverOnlyWhenTold) {
    if (!PgServer::shared().running()) {
        GTEST_SKIP() << "no database server: " << PgServer::shared().why_not().toStdString();
    }
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
