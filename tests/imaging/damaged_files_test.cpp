#include "image_samples.h"

#include "imaging/image_control.h"
#include "imaging/image_log.h"
#include "imaging/image_view.h"
#include "support/cli_run.h"
#include "support/test_home.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtEndian>

#include <gtest/gtest.h>

namespace {

// The log the image warnings go to while a test runs; off again after it.
struct LogOn {
    explicit LogOn(const QString& path) : path(path) { set_image_log(path); }
    ~LogOn() { set_image_log(QString()); }
    QString text() const { return QString::fromUtf8(read_bytes(path)); }
    QString path;
};

}  // namespace

// A file cut short is told as damaged by the decoder that read it; a JPEG
// that lacks only its end marker gives its picture, and the log is told.
TEST(DamagedFiles, CutFilesAreToldFromTheDecodersOwnResult) {
    QTemporaryDir dir;
    const QImage img = detailed_picture(160, 120);
    QString err;
    ASSERT_TRUE(img.save(dir.path() + "/src.ppm", "PPM"));
    ASSERT_TRUE(run_to_file("sh",
                            {"-c", "ppmquant 200 \"$1\" 2>/dev/null | ppmtogif 2>/dev/null", "sh",
                             dir.path() + "/src.ppm"},
                            dir.path() + "/src.gif", &err))
        << err.toStdString();
    const QByteArray gif = read_bytes(dir.path() + "/src.gif");
    const QByteArray jpg = encoded(img, "JPEG", 90);
    ASSERT_TRUE(jpg.endsWith("\xFF\xD9"));
    struct Case {
        const char* name;
        QByteArray bytes;
        bool loads;
        const char* logged;  // what the log holds after it, "" for nothing
    };
    const Case cases[] = {
        {"whole.gif", gif, true, ""},
        {"cut10.gif", gif.left(gif.size() / 10), false, ""},
        {"cut50.gif", gif.left(gif.size() / 2), false, ""},
        {"cut90.gif", gif.left(gif.size() * 9 / 10), false, ""},
        {"cutlast.gif", gif.left(gif.size() - 3), false, ""},
        {"whole.jpg", jpg, true, ""},
        {"noend.jpg", jpg.left(jpg.size() - 2), true, "no end marker"},
        {"halfend.jpg", jpg.left(jpg.size() - 1), true, "no end marker"},
        {"cut90.jpg", jpg.left(jpg.size() * 9 / 10), false, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        LogOn log(dir.path() + "/" + c.name + ".log");
        const QString path = write_bytes(dir.path() + "/" + c.name, c.bytes);
        const QString failure = load_failure(path);
        if (c.loads) {
            EXPECT_EQ(failure, "");
        } else {
            EXPECT_TRUE(failure.startsWith("Cannot read " + path)) << failure.toStdString();
        }
        if (*c.logged) {
            EXPECT_TRUE(log.text().contains(path + ": ")) << log.text().toStdString();
            EXPECT_TRUE(log.text().contains(c.logged)) << log.text().toStdString();
        } else {
            EXPECT_EQ(log.text(), "");
        }
    }
}

// 8000 x 8000 RGBA at 16 bits a channel is within the pixel limit: it loads,
// and its 50% grey at 50% alpha comes out over white as #BFBFBF.
TEST(DamagedFiles, SixteenBitPictureWithinThePixelLimitLoads) {
    QTemporaryDir dir;
    QString path = dir.path() + "/big16.png";
    {
        QImage big(8000, 8000, QImage::Format_RGBA64);
        ASSERT_FALSE(big.isNull());
        big.fill(QColor::fromRgba64(0x8000, 0x8000, 0x8000, 0x8000));
        ASSERT_TRUE(big.save(path, "PNG", 80));  // fastest deflate
    }
    ImageControl c(ImageControl::kWorkerTwips);
    c.set_file_name(path);
    EXPECT_EQ(c.image_width(), 8000);
    c.set_thumb_size(100);
    const QImage thumb = c.rendered();
    EXPECT_TRUE(near_colour(thumb.pixel(50, 50), qRgb(0xBF, 0xBF, 0xBF), 2))
        << std::hex << thumb.pixel(50, 50);
}

// A picture whose header reads but whose pixels are damaged leaves the viewer
// showing what it showed; a path with a blank after it loads the file that
// file_exists finds by it.
TEST(DamagedFiles, ViewerKeepsItsPictureAndBlanksAroundAPathAreNotPartOfIt) {
    QTemporaryDir dir;
    const QString good =
        write_bytes(dir.path() + "/good.png", encoded(halves_picture(40, 30), "PNG"));
    QByteArray png = encoded(detailed_picture(40, 30), "PNG");
    const int idat = png.indexOf("IDAT");
    ASSERT_GT(idat, 0);
    for (int i = idat + 12; i < idat + 40; ++i) {
        png[i] = char(png[i] ^ 0x5A);
    }
    const QString damaged = write_bytes(dir.path() + "/damaged.png", png);
    EXPECT_TRUE(load_failure(damaged).startsWith("Cannot read " + damaged));

    ImageView view;
    view.control().set_file_name(good);
    const QImage before = view.grab().toImage();
    ASSERT_TRUE(near_colour(before.pixel(5, 15), qRgb(255, 0, 0)));
    view.control().set_file_name(damaged);  // the header reads: no error yet
    const QImage after = view.grab().toImage();
    EXPECT_EQ(after.copy(0, 0, 40, 30), before.copy(0, 0, 40, 30));

    ImageControl c;
    c.set_file_name(good + "  ");
    EXPECT_TRUE(c.has_picture());
    EXPECT_EQ(c.image_width(), 40);
    EXPECT_EQ(load_failure(good + " "), "");
}

// What Qt's readers and libtiff say while they read goes to the log when it
// is on, never to the command line's standard error.
TEST(DamagedFiles, LibraryWarningsGoToTheLogNotToStandardError) {
    TestHome home;
    QByteArray tif = encoded(halves_picture(40, 30), "TIFF");
    ASSERT_GT(tif.size(), 100);
    // The first directory lies past the end of the file.
    qToLittleEndian<quint32>(quint32(tif.size() + 1000), tif.data() + 4);
    const QString bad = write_bytes(home.path("src/bad.tif"), tif);
    const QString tga = write_bytes(home.path("src/bad.tga"), "not a picture of any kind");
    QDir().mkpath(home.path("out"));
    const CliRun r = run_cli(home.dir(), {"thumbnails", "--target", home.path("out"), bad, tga});
    EXPECT_EQ(r.code, 1);
    EXPECT_TRUE(r.err.contains("Cannot read " + bad)) << r.err.toStdString();
    EXPECT_FALSE(r.err.contains("TIFF")) << r.err.toStdString();
    EXPECT_FALSE(r.err.contains("Handler")) << r.err.toStdString();

    LogOn log(home.path("msglog.txt"));
    EXPECT_TRUE(load_failure(bad).startsWith("Cannot read " + bad));
    EXPECT_TRUE(log.text().contains("TIFFFetchDirectory")) << log.text().toStdString();
    qWarning("QTgaHandler::canRead() called with no device");
    qWarning("a message of the program's own");
    EXPECT_TRUE(log.text().contains("QTgaHandler::canRead()"));
    EXPECT_FALSE(log.text().contains("own"));
}
