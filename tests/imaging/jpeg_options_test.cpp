#include "image_samples.h"

#include "imaging/image_control.h"
#include "imaging/jpeg_writer.h"
#include "support/qt_print.h"

#include <QBuffer>
#include <QImageReader>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

QImage decoded(const QByteArray& jpeg) {
    QBuffer b;
    b.setData(jpeg);
    b.open(QIODevice::ReadOnly);
    return QImageReader(&b, "jpeg").read();
}

// The worker loaded with a picture file and set to save it at `size`.
struct Saver {
    QTemporaryDir dir;
    ImageControl c{ImageControl::kWorkerTwips};
    explicit Saver(const QImage& img) {
        const QString p = dir.path() + "/src.png";
        img.save(p, "PNG");
        c.set_file_name(p);
    }
    QByteArray save() {
        const QString out = dir.path() + "/out.jpg";
        c.save_jpeg(out);
        return read_bytes(out);
    }
};

}  // namespace

TEST(JpegOptions, QualityOptimiseAndSmoothingEachTakeEffect) {
    Saver s(detailed_picture(160, 120));
    s.c.set_quality(90);
    const QByteArray q90 = s.save();
    s.c.set_quality(20);
    const QByteArray q20 = s.save();
    EXPECT_LT(q20.size() * 2, q90.size());
    s.c.set_quality(500);  // kept within 1..100
    EXPECT_EQ(s.c.quality(), 100);

    s.c.set_quality(75);
    s.c.set_optimize(false);
    const QByteArray plain = s.save();
    s.c.set_optimize(true);
    const QByteArray optimised = s.save();
    EXPECT_LT(optimised.size(), plain.size());
    // Same pixels: optimising changes only the Huffman tables.
    EXPECT_EQ(decoded(optimised), decoded(plain));

    s.c.set_optimize(false);
    s.c.set_smoothing(100);
    const QByteArray smoothed = s.save();
    EXPECT_NE(decoded(smoothed), decoded(plain));
    // Smoothing blurs: neighbouring pixels differ less.
    auto roughness = [](const QImage& img) {
        qint64 sum = 0;
        for (int y = 0; y < img.height(); ++y) {
            for (int x = 1; x < img.width(); ++x) {
                sum += std::abs(qRed(img.pixel(x, y)) - qRed(img.pixel(x - 1, y)));
            }
        }
        return sum;
    };
    EXPECT_LT(roughness(decoded(smoothed)), roughness(decoded(plain)));
}

TEST(JpegOptions, DitherChoosesTheResampling) {
    Saver s(detailed_picture(400, 300));
    s.c.set_thumb_size(57);
    std::vector<QImage> out;
    for (int d : {0, 1, 2}) {
        s.c.set_dither(d);
        out.push_back(decoded(s.save()));
        EXPECT_EQ(out.back().size(), QSize(57, 57));
    }
    EXPECT_NE(out[0], out[1]);
    EXPECT_NE(out[1], out[2]);
    // A fine black and white checker reduced with care is grey; picked
    // pixel by pixel it stays black or white.
    QImage checker(300, 300, QImage::Format_RGB32);
    for (int y = 0; y < 300; ++y) {
        for (int x = 0; x < 300; ++x) {
            checker.setPixel(x, y, (x + y) % 2 ? qRgb(255, 255, 255) : qRgb(0, 0, 0));
        }
    }
    Saver c(checker);
    c.c.set_view_mode(2);
    c.c.set_width(float(37 * ImageControl::kWorkerTwips));
    c.c.set_height(float(37 * ImageControl::kWorkerTwips));
    for (int d : {1, 2}) {
        c.c.set_dither(d);
        const QImage img = decoded(c.save());
        ASSERT_EQ(img.size(), QSize(37, 37));
        EXPECT_NEAR(qGray(img.pixel(18, 18)), 128, 30) << d;
    }
    c.c.set_dither(0);
    const int fast = qGray(decoded(c.save()).pixel(18, 18));
    EXPECT_TRUE(fast < 60 || fast > 195) << fast;
}

TEST(JpegOptions, ThumbnailsAreFramedFlatOrRaisedAndTransparencyFilledOnTheBackColour) {
    Saver s(halves_picture(120, 60));
    s.c.set_quality(100);
    s.c.set_thumb_size(60);
    s.c.set_appearance(1);
    s.c.set_back_color("65280");  // green: red is the low byte
    const QImage flat = decoded(s.save());
    ASSERT_EQ(flat.size(), QSize(60, 60));
    EXPECT_TRUE(near_colour(flat.pixel(30, 5), qRgb(0, 255, 0), 24));   // the frame above
    EXPECT_TRUE(near_colour(flat.pixel(30, 55), qRgb(0, 255, 0), 24));  // and below
    EXPECT_TRUE(near_colour(flat.pixel(2, 30), qRgb(255, 0, 0), 24));   // the picture, edge to edge
    EXPECT_TRUE(near_colour(flat.pixel(57, 30), qRgb(0, 0, 255), 24));

    s.c.set_appearance(0);
    const QImage raised = decoded(s.save());
    ASSERT_EQ(raised.size(), QSize(60, 60));
    EXPECT_GT(qGray(raised.pixel(30, 0)), 200);   // light along the top
    EXPECT_LT(qGray(raised.pixel(30, 59)), 110);  // dark along the bottom
    EXPECT_GT(qGray(raised.pixel(0, 30)), qGray(raised.pixel(59, 30)));
    EXPECT_TRUE(near_colour(raised.pixel(6, 30), qRgb(255, 0, 0), 40));  // picture inside the bevel

    s.c.set_back_color("");
    s.c.set_appearance(1);
    EXPECT_TRUE(near_colour(decoded(s.save()).pixel(30, 5), qRgb(255, 255, 255), 16));

    // Transparent pixels show the back colour.
    QImage clear(20, 20, QImage::Format_ARGB32);
    clear.fill(Qt::transparent);
    Saver t(clear);
    t.c.set_back_color(QString::number(0x0000FF));  // red
    EXPECT_TRUE(near_colour(decoded(t.save()).pixel(10, 10), qRgb(255, 0, 0), 16));
}
