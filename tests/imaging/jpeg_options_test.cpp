#include "image_samples.h"
#include "imaging/image_control.h"
#include "imaging/jpeg_writer.h"
#include "support/qt_print.h"
#include "support/test_home.h"

#include <QBuffer>
#include <QImageReader>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <array>
#include <cmath>

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

// The mean colour of a picture over white, 0..255 a channel.
std::array<double, 3> mean_over_white(const QImage& img) {
    std::array<double, 3> sum{};
    const double n = double(img.width()) * img.height();
    for (int y = 0; y < img.height(); ++y) {
        for (int x = 0; x < img.width(); ++x) {
            const QColor c = img.pixelColor(x, y);
            const double a = c.alphaF();
            const double rgb[] = {c.redF(), c.greenF(), c.blueF()};
            for (size_t k = 0; k < 3; ++k) {
                sum[k] += 255.0 * (rgb[k] * a + 1.0 - a) / n;
            }
        }
    }
    return sum;
}

// A picture of `n` colours spread over the cube, in a fine pattern that a
// careless reduction turns into one of its colours or into a checkerboard;
// with `alphas`, of eleven alphas too. Stored as `format`.
QImage pattern(int side, int n, bool alphas, QImage::Format format) {
    QImage img(side, side, QImage::Format_RGBA64);
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            const int i = (x + 2 * y + (x * y) / 5) % n;
            QColor c(n == 2 ? 255 * i : (i * 97) % 256, n == 2 ? 255 * i : (i * 53 + 40) % 256,
                     n == 2 ? 255 * i : 255 - i * 31 % 256);
            c.setAlphaF(alphas ? float((y * side + x) % 11) / 10.0f : 1.0f);
            img.setPixelColor(x, y, c);
        }
    }
    return img.convertToFormat(format, Qt::ThresholdDither | Qt::AvoidDither);
}

}  // namespace

TEST(JpegOptions, QualityOptimiseAndDitherEachTakeEffect) {
    Saver s(detailed_picture(160, 120));
    s.c.set_quality(20);
    const QByteArray q20 = s.save();
    s.c.set_quality(75);
    const QByteArray plain = s.save();
    s.c.set_optimize(true);
    const QByteArray optimised = s.save();
    EXPECT_LT(optimised.size(), plain.size());
    EXPECT_LT(q20.size() * 2, plain.size());
    // Same pixels: optimising changes only the Huffman tables.
    EXPECT_EQ(decoded(optimised), decoded(plain));

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
    for (int d : {0, 1, 2}) {
        c.c.set_dither(d);
        const QImage img = decoded(c.save());
        ASSERT_EQ(img.size(), QSize(37, 37));
        const int grey = qGray(img.pixel(18, 18));
        EXPECT_EQ(d == 0, grey < 60 || grey > 195) << d << ": " << grey;
    }
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

    // Raised: two rings, light to the top and left, dark to the bottom and
    // right, the dark ones owning both far corners.
    s.c.set_appearance(0);
    const QImage bevel = s.c.rendered();
    const QRgb light[2] = {qRgb(255, 255, 255), QColor(0, 255, 0).lighter(130).rgb()};
    const QRgb dark[2] = {qRgb(64, 64, 64), QColor(0, 255, 0).darker(150).rgb()};
    for (int y = 0; y < 60; ++y) {
        for (int x = 0; x < 60; ++x) {
            const int d = std::min({x, y, 59 - x, 59 - y});
            if (d < 2) {
                const bool far = x == 59 - d || y == 59 - d;
                ASSERT_EQ(bevel.pixel(x, y), far ? dark[d] : light[d]) << x << "," << y;
            }
        }
    }

    s.c.set_appearance(1);
    for (const char* off_scale : {"", "-1", "16777216"}) {  // white when unset or out of range
        s.c.set_back_color(off_scale);
        EXPECT_EQ(s.c.rendered().pixel(30, 5), qRgb(255, 255, 255)) << off_scale;
    }

    // Transparent pixels show the back colour.
    QImage clear(20, 20, QImage::Format_ARGB32);
    clear.fill(Qt::transparent);
    Saver t(clear);
    t.c.set_back_color(QString::number(0x0000FF));  // red
    EXPECT_TRUE(near_colour(decoded(t.save()).pixel(10, 10), qRgb(255, 0, 0), 16));
}

// Every depth and palette kind the readers give keeps its mean colour at every
// reduction: the picture is brought to premultiplied 8-bit colour before it is
// scaled, whatever it was stored as.
TEST(ColourScale, EveryDepthAndPaletteKeepsItsMeanColourAtEveryReduction) {
    QTemporaryDir dir;
    constexpr int kSide = 140;
    const std::tuple<const char*, QImage> kinds[] = {
        {"p8.png", pattern(kSide, 200, false, QImage::Format_Indexed8)},
        {"m1.bmp", pattern(kSide, 2, false, QImage::Format_Mono)},
        {"rgba16.png", pattern(kSide, 9, true, QImage::Format_RGBA64)},
    };
    for (const auto& [name, img] : kinds) {
        SCOPED_TRACE(name);
        const QString file = dir.path() + "/" + name;
        ASSERT_TRUE(img.save(file));
        const auto want = mean_over_white(img);
        for (const Resampling quality : {Resampling::Default, Resampling::High}) {
            for (const int r : {2, 3, 7, 20}) {
                SCOPED_TRACE("1/" + std::to_string(r) +
                             (quality == Resampling::High ? " high" : " default"));
                ImageControl c;
                c.set_file_name(file);
                ASSERT_EQ(c.image_width(), kSide);
                c.set_dither(quality == Resampling::High ? 2 : 1);
                const int side = int(std::lround(double(kSide) / r));
                c.set_view_mode(2);
                c.set_width(float(side * c.twips_per_pixel()));
                c.set_height(float(side * c.twips_per_pixel()));
                const QImage out = c.rendered();
                ASSERT_EQ(out.size(), QSize(side, side));
                const auto got = mean_over_white(out);
                for (size_t ch = 0; ch < 3; ++ch) {
                    EXPECT_NEAR(got[ch], want[ch], 3.0) << "channel " << ch;
                }
            }
        }
    }
}
