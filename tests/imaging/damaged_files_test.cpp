#include "core/run_error.h"
#include "image_samples.h"
#include "imaging/image_control.h"
#include "imaging/image_decoder.h"
#include "imaging/image_log.h"
#include "imaging/image_view.h"
#include "imaging/jpeg_reader.h"
#include "imaging/source_file.h"
#include "support/cli_run.h"
#include "support/qt_print.h"
#include "support/test_home.h"

#include <QDir>
#include <QElapsedTimer>
#include <QPainter>
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

quint32 crc32(const QByteArray& data) {
    quint32 c = 0xFFFFFFFF;
    for (char ch : data) {
        c ^= uchar(ch);
        for (int k = 0; k < 8; ++k) {
            c = (c >> 1) ^ (0xEDB88320 & (0 - (c & 1)));
        }
    }
    return ~c;
}

// A PNG whose header claims another size, with a correct checksum.
QByteArray png_claiming(QByteArray png, quint32 width, quint32 height) {
    uchar be[8];
    qToBigEndian(width, be);
    qToBigEndian(height, be + 4);
    png.replace(16, 8, QByteArray(reinterpret_cast<const char*>(be), 8));
    uchar crc[4];
    qToBigEndian(crc32(png.mid(12, 17)), crc);
    png.replace(29, 4, QByteArray(reinterpret_cast<const char*>(crc), 4));
    return png;
}

// A JPEG whose frame header claims another size.
QByteArray jpeg_claiming(QByteArray jpeg, int width, int height) {
    const int sof = jpeg.indexOf("\xFF\xC0");
    jpeg[sof + 5] = char(height >> 8);
    jpeg[sof + 6] = char(height & 255);
    jpeg[sof + 7] = char(width >> 8);
    jpeg[sof + 8] = char(width & 255);
    return jpeg;
}

}  // namespace

// A file cut short is told as damaged by the decoder that read it; a JPEG
// that lacks only its end marker gives its picture, and the log is told.
TEST(DamagedFiles, CutFilesAreToldFromTheDecodersOwnResult) {
    QTemporaryDir dir;
    const QByteArray jpg = encoded(detailed_picture(160, 120), "JPEG", 90);
    ASSERT_TRUE(jpg.endsWith("\xFF\xD9"));
    struct Case {
        const char* name;
        QByteArray bytes;
        bool loads;
        const char* logged;  // what the log holds after it, "" for nothing
    };
    const Case cases[] = {
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

TEST(BadInput, EveryTruncationOfAJpegPngPcxAndGifFailsCleanly) {
    QTemporaryDir dir;
    const QImage img = detailed_picture(48, 36);
    QString err;
    ASSERT_TRUE(img.save(dir.path() + "/src.ppm", "PPM"));
    ASSERT_TRUE(run_to_file("ppmtopcx", {"-24bit", dir.path() + "/src.ppm"},
                            dir.path() + "/src.pcx", &err));
    ASSERT_TRUE(run_to_file(
        "sh", {"-c", "ppmquant 200 \"$1\" 2>/dev/null | ppmtogif", "sh", dir.path() + "/src.ppm"},
        dir.path() + "/src.gif", &err));
    const std::pair<const char*, QByteArray> samples[] = {
        {"jpg", encoded(img, "JPEG")},
        {"png", encoded(img, "PNG")},
        {"pcx", read_bytes(dir.path() + "/src.pcx")},
        {"gif", read_bytes(dir.path() + "/src.gif")},
    };
    for (const auto& [ext, whole] : samples) {
        ASSERT_GT(whole.size(), 200) << ext;
        const QString full = write_bytes(dir.path() + "/whole." + ext, whole);
        EXPECT_EQ(load_failure(full), "") << ext;
        for (qsizetype n = 0; n < whole.size(); n += (n < 64 || n > whole.size() - 64) ? 1 : 7) {
            const QString cut =
                write_bytes(dir.path() + QString("/cut%1.%2").arg(n).arg(ext), whole.left(n));
            const QString result = load_failure(cut);
            if ((QString(ext) == "jpg" || QString(ext) == "gif") && n >= whole.size() - 2) {
                // Only the end marker or the trailer is missing: the picture is whole.
                EXPECT_EQ(result, "") << "cut to " << n;
                continue;
            }
            // An empty result means the cut file was taken as whole.
            EXPECT_TRUE(result.startsWith("Cannot read " + cut))
                << ext << " cut to " << n << " of " << whole.size() << ": " << result.toStdString();
        }
    }
}

TEST(BadInput, ZeroAndAbsurdSizesAreRefusedWithoutAllocating) {
    QTemporaryDir dir;
    const QImage small = halves_picture(8, 6);
    const QByteArray png = encoded(small, "PNG");
    const QByteArray jpg = encoded(small, "JPEG");

    const QString zero_png = write_bytes(dir.path() + "/zero.png", png_claiming(png, 0, 6));
    EXPECT_FALSE(load_failure(zero_png).isEmpty());
    QByteArray bmp = encoded(small, "BMP");
    qToLittleEndian<qint32>(0, bmp.data() + 18);
    EXPECT_FALSE(load_failure(write_bytes(dir.path() + "/zero.bmp", bmp)).isEmpty());
    QByteArray gif_header("GIF89a\0\0\x06\0\0\0\0;", 14);
    EXPECT_FALSE(load_failure(write_bytes(dir.path() + "/zero.gif", gif_header)).isEmpty());

    QElapsedTimer t;
    t.start();
    const QString huge_png = write_bytes(dir.path() + "/huge.png", png_claiming(png, 60000, 60000));
    EXPECT_TRUE(load_failure(huge_png).contains("too large"))
        << load_failure(huge_png).toStdString();
    const QString huge_jpg =
        write_bytes(dir.path() + "/huge.jpg", jpeg_claiming(jpg, 60000, 60000));
    EXPECT_FALSE(load_failure(huge_jpg).isEmpty());
    // The header alone tells: the control refuses it as it loads.
    ImageControl c;
    EXPECT_THROW(c.set_file_name(huge_jpg), RunError);
    const QString wide_jpg = write_bytes(dir.path() + "/wide.jpg", jpeg_claiming(jpg, 65500, 3));
    EXPECT_FALSE(load_failure(wide_jpg).isEmpty());
    EXPECT_LT(t.elapsed(), 5000);
}

TEST(BadInput, ScaledJpegDecodingReadsNoMoreThanItNeeds) {
    QTemporaryDir dir;
    const QString p =
        write_bytes(dir.path() + "/big.jpg", encoded(detailed_picture(1600, 1200), "JPEG"));
    auto file = SourceFile::open(p);
    ASSERT_TRUE(file);
    const ImageHeader h = read_image_header(*file);
    EXPECT_EQ(h.stored, QSize(1600, 1200));
    // Decoded at a reduced scale, never below the wanted size nor above the stored one.
    const std::pair<QSize, QSize> wanted_decoded[] = {{{100, 75}, {200, 150}},
                                                      {{201, 10}, {400, 300}},
                                                      {{1600, 1200}, {1600, 1200}},
                                                      {{5000, 5000}, {1600, 1200}}};
    for (const auto& [wanted, size] : wanted_decoded) {
        EXPECT_EQ(decode_image(*file, h, wanted, Resampling::Default).size(), size)
            << wanted.width() << "x" << wanted.height();
    }
}

TEST(BadInput, PhotosAreShownUprightByTheirExifOrientation) {
    QTemporaryDir dir;
    const QRgb red = qRgb(255, 0, 0), blue = qRgb(0, 0, 255), green = qRgb(0, 255, 0),
               white = qRgb(255, 255, 255);
    // Stored: red top left, blue top right, green bottom left, white bottom right.
    QImage q(40, 30, QImage::Format_RGB32);
    q.fill(white);
    QPainter paint(&q);
    paint.fillRect(0, 0, 20, 15, QColor(red));
    paint.fillRect(20, 0, 20, 15, QColor(blue));
    paint.fillRect(0, 15, 20, 15, QColor(green));
    paint.end();
    const QByteArray plain = encoded(q, "JPEG");
    const struct {
        int orientation;
        QRgb top_left, top_right;
    } cases[] = {{1, red, blue},  {2, blue, red},  {3, white, green}, {4, green, white},
                 {5, red, green}, {6, green, red}, {7, white, blue},  {8, blue, white}};
    for (const auto& e : cases) {
        for (bool big_endian : {false, true}) {
            SCOPED_TRACE(QString("%1 %2").arg(e.orientation).arg(big_endian).toStdString());
            // One IFD entry, Orientation (0x112), a SHORT, in either byte order.
            const char o = char(e.orientation);
            const QByteArray tiff =
                big_endian ? QByteArray("MM\0\x2A\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0", 19) +
                                 o + QByteArray(6, '\0')
                           : QByteArray("II\x2A\0\x08\0\0\0\x01\0\x12\x01\x03\0\x01\0\0\0", 18) +
                                 o + QByteArray(7, '\0');
            const QByteArray exif = QByteArray("Exif\0\0", 6) + tiff;
            const QByteArray app1 = QByteArray("\xFF\xE1") + char((exif.size() + 2) >> 8) +
                                    char((exif.size() + 2) & 255);
            ImageControl c;
            c.set_file_name(
                write_bytes(dir.path() + QString("/o%1%2.jpg").arg(e.orientation).arg(big_endian),
                            plain.left(2) + app1 + exif + plain.mid(2)));
            const bool turned = e.orientation >= 5;
            EXPECT_EQ(QSize(c.image_width(), c.image_height()),
                      turned ? QSize(30, 40) : QSize(40, 30));
            const QImage shown = c.picture(QSize(c.image_width(), c.image_height()));
            EXPECT_TRUE(near_colour(shown.pixel(5, 5), e.top_left))
                << std::hex << shown.pixel(5, 5);
            EXPECT_TRUE(near_colour(shown.pixel(shown.width() - 5, 5), e.top_right))
                << std::hex << shown.pixel(shown.width() - 5, 5);
        }
    }
    // An IFD of no entries followed by what looks like an Orientation entry: upright.
    const QByteArray none("II\x2A\0\x08\0\0\0\0\0\x12\x01\x03\0\x01\0\0\0\x06\0\0\0", 22);
    EXPECT_EQ(exif_orientation(reinterpret_cast<const uchar*>(none.constData()), none.size()), 1);
}
