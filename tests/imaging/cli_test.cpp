#include "image_samples.h"

#include "support/cli_run.h"
#include "support/test_home.h"

#include <QDir>
#include <QImageReader>
#include <QRegularExpression>

#include <gtest/gtest.h>

TEST(Cli, ThumbnailsUseTheSettingsFileAndPrintEachFileWritten) {
    TestHome home;
    const QString a = home.write_image("src/a.png", 400, 300);
    const QString b = home.write_image("src/b.jpg", 200, 500);
    const QString small = home.write_image("src/small.png", 50, 40);
    QDir().mkpath(home.path("out"));
    home.app.settings.write("Current", "Resize Thumbnail Type", "Flat");
    home.app.settings.write("Current", "Thumbnail Background Color", "255");
    home.app.settings.write("Current", "Thumbnail Size", "80");

    CliRun r = run_cli(home.dir(), {"thumbnails", "--target", home.path("out"), a, b, small});
    EXPECT_EQ(r.code, 0) << r.err.toStdString();
    EXPECT_EQ(r.lines, QStringList({home.path("out/a_tn.jpg"), home.path("out/b_tn.jpg"),
                                    home.path("out/small.png")}));
    EXPECT_EQ(QImageReader(home.path("out/a_tn.jpg")).size(), QSize(80, 80));
    // Flat on the red back colour of the settings: the frame above a wide picture is red.
    const QImage t = QImage(home.path("out/a_tn.jpg"));
    EXPECT_TRUE(near_colour(t.pixel(40, 2), qRgb(255, 0, 0), 40)) << std::hex << t.pixel(40, 2);

    r = run_cli(home.dir(),
                {"thumbnails", "--target", home.path("out"), "--size", "60", "--prefix", a});
    EXPECT_EQ(r.code, 0) << r.err.toStdString();
    EXPECT_EQ(r.lines, QStringList{home.path("out/tn_a.jpg")});
    EXPECT_EQ(QImageReader(home.path("out/tn_a.jpg")).size(), QSize(60, 60));

    // A thumbnail frame is held to the pixel limit of a decoded picture:
    // refused at once, where it would have taken 1.6 GB.
    const QString wide =
        write_bytes(home.path("src/wide.png"), encoded(halves_picture(20001, 10), "PNG"));
    r = run_cli(home.dir(), {"thumbnails", "--target", home.path("out"), "--size", "20000", wide});
    EXPECT_EQ(r.code, 1);
    EXPECT_TRUE(r.lines.isEmpty());
    EXPECT_TRUE(r.err.contains("Cannot make a thumbnail of 20000 x 20000 pixels of " + wide +
                               ": no picture may have more than 100000000 pixels.\n1 file failed"))
        << r.err.toStdString();
}

// A batch goes on past the files it cannot read, names each and counts them.
TEST(Cli, ResizeAndItsFailures) {
    TestHome home;
    const QString a = home.write_image("src/a.png", 640, 480);
    const QString b = home.write_image("src/b.png", 200, 300);
    const QByteArray whole = read_bytes(home.write_image("src/whole.jpg", 300, 300));
    const QString cut = write_bytes(home.path("src/cut.jpg"), whole.left(whole.size() / 2));
    const QString garbage = home.write_file("src/garbage.jpg", "no picture");
    const QString missing = home.path("src/missing.png");
    QDir().mkpath(home.path("out"));
    CliRun r = run_cli(home.dir(), {"resize", "--target", home.path("out"), "--max", "320", a,
                                    missing, cut, b, garbage});
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.lines, QStringList({home.path("out/a.jpg"), home.path("out/b.jpg")}));
    EXPECT_EQ(QImageReader(home.path("out/a.jpg")).size(), QSize(320, 240));
    EXPECT_EQ(QImageReader(home.path("out/b.jpg")).size(), QSize(200, 300));
    const QStringList err =
        r.err.split('\n', Qt::SkipEmptyParts).filter(QRegularExpression("failed|Cannot|not found"));
    EXPECT_EQ(
        err, QStringList({"File not found: " + missing,
                          "Cannot read " + cut + ": the file is damaged or incomplete.",
                          "Cannot read " + garbage + ": the file is not a picture of a known type.",
                          "3 files failed"}))
        << r.err.toStdString();
    EXPECT_TRUE(r.err.endsWith("\n3 files failed\n")) << r.err.toStdString();

    r = run_cli(home.dir(), {"resize", "--target", home.path("nowhere"), "--max", "320", a});
    EXPECT_EQ(r.code, 1);
    EXPECT_TRUE(r.err.contains("does not exist"));
    r = run_cli(home.dir(), {"resize", "--target", home.path("out"), a});
    EXPECT_EQ(r.code, 2);
    EXPECT_TRUE(r.err.contains("usage: quilldex-cli [--home DIR] resize --target DIR --max N"));
}
