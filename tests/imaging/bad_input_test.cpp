#include "image_samples.h"

#include "core/run_error.h"
#include "imaging/image_control.h"
#include "imaging/image_decoder.h"
#include "imaging/source_file.h"
#include "support/qt_print.h"

#include <QElapsedTimer>
#include <QPainter>
#include <QTemporaryDir>
#include <QtEndian>

#include <gtest/gtest.h>

namespace {

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

TEST(BadInput, EveryTruncationOfAJpegPngAndPcxFailsCleanly) {
    QTemporaryDir dir;
    const QImage img = detailed_picture(48, 36);
    QString err;
    ASSERT_TRUE(img.save(dir.path() + "/src.ppm", "PPM"));
    ASSERT_TRUE(run_to_file("ppmtopcx", {"-24bit", dir.path() + "/src.ppm"},
                            dir.path() + "/src.pcx", &err));
    const std::pair<const char*, QByteArray> samples[] = {
        {"jpg", encoded(img, "JPEG")},
        {"png", encoded(img, "PNG")},
        {"pcx", read_bytes(dir.path() + "/src.pcx")},
    };
    for (const auto& [ext, whole] : samples) {
        ASSERT_GT(whole.size(), 200) << ext;
        const QString full = write_bytes(dir.path() + "/whole." + ext, whole);
        EXPECT_EQ(load_failure(full), "") << ext;
        for (qsizetype n = 0; n < whole.size(); n += (n < 64 || n > whole.size() - 64) ? 1 : 7) {
            const QString cut =
                write_bytes(dir.path() + QString("/cut%1.%2").arg(n).arg(ext), whole.left(n));
            const QString result = load_failure(cut);
            if (QString(ext) == "jpg" && n >= whole.size() - 2) {
                // Only the end marker is missing: the picture is whole.
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
}
