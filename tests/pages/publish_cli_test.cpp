#include "page_fixture.h"

#include "support/cli_run.h"

namespace {

// Runs `quilldex-cli publish ARGS...` from the test home, so that the
// relative paths of the arguments are taken from there.
CliRun publish(const TestHome& home, const QStringList& args) {
    const QString before = QDir::currentPath();
    QDir::setCurrent(home.dir());
    CliRun run = run_cli(home.dir(), QStringList{"publish"} + args);
    QDir::setCurrent(before);
    return run;
}

}  // namespace

TEST(PublishCommand, RefusesAsTheTabDoesMakesPagesWithoutABrowserAndTellsUnreadableFiles) {
    PageFixture f;
    f.home.write_image("source/a.jpg", 300, 200);
    f.home.write_image("source/b.jpg", 40, 30);

    CliRun o = publish(f.home, {"--template", "Thumbnail Gallery", "source/a.jpg"});
    EXPECT_EQ(o.code, 1);
    EXPECT_TRUE(
        o.err.contains("The target directory is blank.  Please select the target directory "
                       "where all HTML files are created and images will be copied."))
        << o.err.toStdString();

    // A target directory that is not there: the run writes nothing, and the
    // command says so instead of naming a page that does not exist.
    o = publish(f.home, {"--template", "Thumbnail Gallery", "--target", "nowhere", "source/b.jpg"});
    EXPECT_EQ(o.code, 1);
    EXPECT_TRUE(o.err.contains("No page was written: " + f.home.path("nowhere/index.htm")))
        << o.err.toStdString();

    // A page of the delivered gallery, with thumbnails of the size asked for.
    QDir().mkpath(f.home.path("out"));
    o = publish(f.home, {"--template", "Thumbnail Gallery", "--target", "out", "--thumb", "50",
                         "source/a.jpg", "source/b.jpg", "source/none.jpg"});
    EXPECT_EQ(o.code, 0) << o.err.toStdString();
    EXPECT_EQ(o.out, f.home.path("out/index.htm") + "\n");
    EXPECT_EQ(image_size(f.home.path("out/a_tn.jpg")), QSize(50, 50));

    // A file that cannot be read is told of, and the run goes on.
    f.home.write_file("source/bad.jpg", "no picture");
    o = publish(f.home, {"--template", "Thumbnail Gallery", "--target", "out", "--thumb", "50",
                         "source/a.jpg", "source/bad.jpg"});
    EXPECT_EQ(o.code, 1);
    EXPECT_TRUE(o.err.contains("Cannot read " + f.home.path("source/bad.jpg") +
                               ": the file is not a picture of a known type.\n1 file failed\n"))
        << o.err.toStdString();
}
