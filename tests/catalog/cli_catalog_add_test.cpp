#include "support/qt_print.h"
#include "support/test_home.h"

#include <QProcess>

#include <gtest/gtest.h>

namespace {

struct CliRun {
    int code = -1;
    QString out;
    QString err;
};

CliRun run_cli(const QString& home, const QStringList& args) {
    QProcess p;
    p.start(QStringLiteral(QD_APP_DIR "/quilldex-cli"), QStringList{"--home", home} + args);
    CliRun r;
    if (!p.waitForFinished(60000)) {
        p.kill();
        return r;
    }
    r.code = p.exitCode();
    r.out = QString::fromUtf8(p.readAllStandardOutput());
    r.err = QString::fromUtf8(p.readAllStandardError());
    return r;
}

}  // namespace

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
    EXPECT_EQ(no_name.code, 1);
    EXPECT_TRUE(no_name.out.isEmpty());
    EXPECT_EQ(query_column(home.app, "select count(*) from filenames"), QStringList({"3"}));
}
