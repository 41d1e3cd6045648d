#include "support/qt_print.h"
#include "support/test_home.h"

#include <QDir>
#include <QFile>
#include <QProcess>

#include <gtest/gtest.h>

namespace {

struct CliRun {
    int code = -1;
    QStringList lines;
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
    r.lines = QString::fromUtf8(p.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
    r.err = QString::fromUtf8(p.readAllStandardError());
    return r;
}

}  // namespace

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
