#include "support/cli_run.h"
#include "support/qt_print.h"
#include "support/test_home.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

TEST(CliScan, PrintsThePathsOfTheWalkInItsOrder) {
    TestHome home;
    for (const char* f : {"tree/z.jpg", "tree/b/x.GIF", "tree/a/y.txt", "tree/a/in/w.jpg"}) {
        home.write_file(f);
    }
    const QString root = QDir(home.path("tree")).canonicalPath();
    ASSERT_TRUE(QFile::link(root, root + "/a/in/up"));

    const CliRun all = run_cli(home.dir(), {"scan", root});
    EXPECT_EQ(all.code, 0) << all.err.toStdString();
    EXPECT_EQ(all.lines, QStringList({root + "/z.jpg", root + "/a/y.txt", root + "/b/x.GIF",
                                      root + "/a/in/w.jpg"}));

    const CliRun images = run_cli(home.dir(), {"scan", root + "/", "--filter", "*.gif;*.jpg"});
    EXPECT_EQ(images.code, 0);
    EXPECT_EQ(images.lines,
              QStringList({root + "/z.jpg", root + "/b/x.GIF", root + "/a/in/w.jpg"}));

    const CliRun missing = run_cli(home.dir(), {"scan", home.path("nowhere")});
    EXPECT_EQ(missing.code, 1);
    EXPECT_TRUE(missing.lines.isEmpty());
    EXPECT_TRUE(missing.err.contains("Path not found")) << missing.err.toStdString();
}

TEST(CliCatalogAdd, EntersThePathsAndPrintsTheStatistics) {
    TestHome home;
    const CliRun first = run_cli(home.dir(), {"catalog-add", "--catalog", "Birds", "/p/a.jpg",
                                              "/p/it's.jpg", "/p/b.jpg", "/p/c.jpg"});
    EXPECT_EQ(first.code, 0) << first.err.toStdString();
    EXPECT_EQ(first.out,
              "Update statistics:\n"
              "       Total Files:  4\n"
              "       Total Files Added:  2\n"
              "       Total Files Not Added:  1\n"
              "\n"
              "(files are not added because they already exist in the database or there was a "
              "problem)\n");
    EXPECT_EQ(query_column(home.app, "select filename || '|' || catalog from filenames order by 1"),
              QStringList({"/p/a.jpg|Birds", "/p/b.jpg|Birds", "/p/c.jpg|Birds"}));
    EXPECT_EQ(query_column(home.app, "select catalog from catalog"), QStringList({"Birds"}));

    const CliRun again = run_cli(home.dir(), {"catalog-add", "--catalog", "Trees", "/p/a.jpg"});
    EXPECT_EQ(again.code, 0);
    EXPECT_EQ(again.out,
              "Update statistics:\n       Total Files:  1\n       Total Files Added:  0\n");
    EXPECT_EQ(query_column(home.app, "select catalog from filenames where filename='/p/a.jpg'"),
              QStringList({"Birds"}));

    const CliRun no_name = run_cli(home.dir(), {"catalog-add", "/p/d.jpg"});
    EXPECT_EQ(no_name.code, 2);
    EXPECT_TRUE(no_name.out.isEmpty());
    EXPECT_EQ(query_column(home.app, "select count(*) from filenames"), QStringList({"3"}));
}
