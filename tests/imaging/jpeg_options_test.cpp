#include "image_samples.h"
#include "imaging/image_control.h"
#include "imaging/jpeg_writer.h"
#include "support/qt_print.h"

#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <vector>

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

// A picture as the test knows it: straight (not premultiplied) RGBA in 0..1.
struct Truth {
    int width = 0;
    int height = 0;
    std::vector<std::array<double, 4>> px;
    std::array<double, 4>& at(int x, int y) { return px[size_t(y) * size_t(width) + size_t(x)]; }
};

// The mean colour of the picture over white, as 0..255 per channel: the
// reference a reduction of any size must keep.
std::array<double, 3> mean_over_white(const Truth& t) {
    std::array<double, 3> sum{};
    for (const auto& p : t.px) {
        for (size_t c = 0; c < 3; ++c) {
            sum[c] += 255.0 * (p[c] * p[3] + (1.0 - p[3])) / double(t.px.size());
        }
    }
    return sum;
}

std::array<double, 3> mean_of(const QImage& img) {
    std::array<double, 3> sum{};
    const double n = double(img.width()) * img.height();
    for (int y = 0; y < img.height(); ++y) {
        for (int x = 0; x < img.width(); ++x) {
            const QRgb p = img.pixel(x, y);
            sum = {sum[0] + qRed(p) / n, sum[1] + qGreen(p) / n, sum[2] + qBlue(p) / n};
        }
    }
    return sum;
}

// A picture of `n` colours from `palette`, in a fine pattern that a careless
// reduction turns into one of its colours or into a checkerboard.
Truth pattern(int size, const std::vector<std::array<double, 4>>& palette) {
    Truth t{size, size, std::vector<std::array<double, 4>>(size_t(size) * size_t(size))};
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            t.at(x, y) = palette[size_t((x + 2 * y + (x * y) / 5) % int(palette.size()))];
        }
    }
    return t;
}

std::vector<std::array<double, 4>> colours(int n) {
    std::vector<std::array<double, 4>> out;
    for (int i = 0; i < n; ++i) {
        // Spread over the cube and away from grey, so a palette is needed.
        out.push_back({double((i * 97) % 256) / 255.0, double((i * 53 + 40) % 256) / 255.0,
                       double((255 - i * 31 % 256)) / 255.0, 1.0});
    }
    return out;
}

// A netpbm PAM of the truth with `depth` channels (1 grey, 2 grey and alpha,
// 3 RGB, 4 RGBA) and values up to `maxval`.
QByteArray pam_of(const Truth& t, int depth, int maxval) {
    static const char* types[] = {"", "GRAYSCALE", "GRAYSCALE_ALPHA", "RGB", "RGB_ALPHA"};
    QByteArray out = QString("P7\nWIDTH %1\nHEIGHT %2\nDEPTH %3\nMAXVAL %4\nTUPLTYPE %5\nENDHDR\n")
                         .arg(t.width)
                         .arg(t.height)
                         .arg(depth)
                         .arg(maxval)
                         .arg(types[depth])
                         .toLatin1();
    auto put = [&](double v) {
        const int n = int(std::lround(v * maxval));
        if (maxval > 255) {
            out.append(char(n >> 8));
        }
        out.append(char(n & 255));
    };
    for (const auto& p : t.px) {
        for (int c = 0; c < (depth <= 2 ? 1 : 3); ++c) {
            put(p[size_t(c)]);
        }
        if (depth % 2 == 0) {
            put(p[3]);
        }
    }
    return out;
}

struct Kind {
    const char* name;
    const char* file;  // the sample's file name, whose extension tells its type
    std::function<Truth()> truth;
    // Makes the file from the PAM at `pam`; false with the reason when the
    // program that writes it failed.
    std::function<bool(const QString& pam, const QString& out, QString* err)> write;
};

bool pam_to_png(const QString& pam, const QString& out, QString* err) {
    return run_to_file("pamtopng", {pam}, out, err);
}
bool pnm_to_png(const QStringList& args, const QString& pam, const QString& out, QString* err) {
    return run_to_file("pnmtopng", args + QStringList{pam}, out, err);
}
bool pnm(const QString& pam, const QString& out, QString* err) {
    return pnm_to_png({}, pam, out, err);
}
// Converts the PAM to PNM and pipes it through `tool`.
std::function<bool(const QString&, const QString&, QString*)> piped(const char* tool) {
    return [tool](const QString& pam, const QString& out, QString* err) {
        return run_to_file("sh", {"-c", QString("pamtopnm \"$1\" | ") + tool, "sh", pam}, out, err);
    };
}

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
    // Before compression the bevel is exact: two rings, light to the top and
    // left, dark to the bottom and right, the dark ones owning both far corners.
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
    const Kind kinds[] = {
        {"1-bit palette PNG", "p1.png", [] { return pattern(kSide, colours(2)); }, pnm},
        {"8-bit palette PNG", "p8.png", [] { return pattern(kSide, colours(200)); }, pnm},
        {"1-bit BMP", "m1.bmp",
         [] {
             return pattern(kSide, {{0, 0, 0, 1}, {1, 1, 1, 1}});
         },
         piped("ppmtobmp -bpp 1")},
        {"4-colour GIF", "g.gif", [] { return pattern(kSide, colours(4)); }, piped("ppmtogif")},
        {"grey PNG", "grey.png",
         [] {
             Truth t = pattern(kSide, colours(7));
             for (auto& p : t.px) {
                 p[1] = p[2] = p[0];
             }
             return t;
         },
         pam_to_png},
        {"grey and alpha PNG", "greya.png",
         [] {
             Truth t = pattern(kSide, colours(5));
             for (auto& p : t.px) {
                 p[1] = p[2] = p[0];
                 p[3] = std::round(p[1] * 255) / 255;
             }
             return t;
         },
         pam_to_png},
        {"16-bit RGBA PNG, 50% grey at 50% alpha", "rgba16.png",
         [] {
             return pattern(kSide, {{0.5, 0.5, 0.5, 0.5}, {0.5, 0.5, 0.5, 0.5}});
         },
         pam_to_png},
        {"16-bit RGBA PNG, colours and alphas", "rgba16b.png",
         [] {
             Truth t = pattern(kSide, colours(9));
             for (size_t i = 0; i < t.px.size(); ++i) {
                 t.px[i][3] = double(i % 11) / 10.0;
             }
             return t;
         },
         pam_to_png},
        {"palette PNG with a transparent colour", "trns.png",
         [] {
             auto pal = colours(6);
             pal[0][3] = 0.0;
             return pattern(kSide, pal);
         },
         [](auto pam, auto out, auto err) {
             const auto c = colours(1)[0];
             const QString rgb = QString("rgb:%1/%2/%3")
                                     .arg(int(std::lround(c[0] * 255)), 2, 16, QChar('0'))
                                     .arg(int(std::lround(c[1] * 255)), 2, 16, QChar('0'))
                                     .arg(int(std::lround(c[2] * 255)), 2, 16, QChar('0'));
             return pnm_to_png({"-transparent", rgb}, pam, out, err);
         }},
    };
    const int reductions[] = {2, 3, 7, 20};
    const Resampling qualities[] = {Resampling::Default, Resampling::High};
    for (const Kind& kind : kinds) {
        SCOPED_TRACE(kind.name);
        Truth truth = kind.truth();
        const QString name = QString::fromLatin1(kind.file);
        const bool sixteen = name.contains("16");
        bool alpha = false;
        bool grey = true;
        for (const auto& p : truth.px) {
            alpha = alpha || p[3] < 1.0;
            grey = grey && p[0] == p[1] && p[1] == p[2];
        }
        // The PAM carries what the file must store; the transparent colour is
        // the PNG writer's business, so its PAM is opaque.
        Truth stored = truth;
        const bool trns = name == "trns.png";
        if (trns) {
            for (auto& p : stored.px) {
                p[3] = 1.0;
            }
        }
        const int depth = (grey ? 1 : 3) + ((alpha && !trns) ? 1 : 0);
        const QString pam = write_bytes(dir.path() + "/" + name + ".pam",
                                        pam_of(stored, depth, sixteen ? 65535 : 255));
        QString err;
        ASSERT_TRUE(kind.write(pam, dir.path() + "/" + name, &err)) << err.toStdString();
        const auto want = mean_over_white(truth);
        for (const Resampling quality : qualities) {
            for (const int r : reductions) {
                SCOPED_TRACE("1/" + std::to_string(r) +
                             (quality == Resampling::High ? " high" : " default"));
                ImageControl c;
                c.set_file_name(dir.path() + "/" + name);
                ASSERT_EQ(c.image_width(), kSide);
                c.set_dither(quality == Resampling::High ? 2 : 1);
                const int side = int(std::lround(double(kSide) / r));
                c.set_view_mode(2);
                c.set_width(float(side * c.twips_per_pixel()));
                c.set_height(float(side * c.twips_per_pixel()));
                const QImage out = c.rendered();
                ASSERT_EQ(out.size(), QSize(side, side));
                const auto got = mean_of(out);
                for (int ch = 0; ch < 3; ++ch) {
                    EXPECT_NEAR(got[size_t(ch)], want[size_t(ch)], 3.0)
                        << "channel " << ch << " of " << name.toStdString();
                }
            }
        }
    }
}
