#include "image_samples.h"

#include "core/run_error.h"
#include "imaging/emf_reader.h"
#include "imaging/image_control.h"
#include "imaging/image_decoder.h"
#include "support/qt_print.h"

#include <QTemporaryDir>
#include <QtEndian>

#include <gtest/gtest.h>

#include <array>

namespace {

// Loads a file into a control and returns its picture at natural size.
QImage load(const QString& path, ImageType* type = nullptr) {
    ImageControl c;
    c.set_file_name(path);
    if (type) {
        *type = c.image_type();
    }
    return c.picture(QSize(c.image_width(), c.image_height()));
}

QImage rgb(const QImage& img) {
    return img.convertToFormat(QImage::Format_RGB32);
}

class Decoders : public ::testing::Test {
protected:
    Decoders() {
        halves_picture(40, 30).save(ppm, "PPM");
        halves_mono(40, 30).convertToFormat(QImage::Format_Mono).save(pbm, "PBM");
    }
    QString path(const QString& name) const { return dir_.path() + "/" + name; }
    // `name` as a converter writes it on its standard output.
    QString made(const QString& program, const QStringList& args, const QString& name) {
        QString err;
        EXPECT_TRUE(run_to_file(program, args, path(name), &err)) << err.toStdString();
        return path(name);
    }
    // Left half red, right half blue, as a colour sample must come back.
    void expect_halves(const QString& file, QSize size = QSize(40, 30)) {
        SCOPED_TRACE(file.toStdString());
        const QImage img = load(file);
        ASSERT_EQ(img.size(), size);
        EXPECT_TRUE(near_colour(img.pixel(5, size.height() / 2), qRgb(255, 0, 0)))
            << std::hex << img.pixel(5, size.height() / 2);
        EXPECT_TRUE(near_colour(img.pixel(size.width() - 5, size.height() / 2), qRgb(0, 0, 255)))
            << std::hex << img.pixel(size.width() - 5, size.height() / 2);
    }
    // Left half black, right half white.
    void expect_mono(const QString& file) {
        SCOPED_TRACE(file.toStdString());
        const QImage img = load(file);
        ASSERT_EQ(img.size(), QSize(40, 30));
        EXPECT_EQ(img.pixel(3, 3) & 0xFFFFFF, 0u);
        EXPECT_EQ(img.pixel(19, 29) & 0xFFFFFF, 0u);
        EXPECT_EQ(img.pixel(20, 0) & 0xFFFFFF, 0xFFFFFFu);
        EXPECT_EQ(img.pixel(35, 15) & 0xFFFFFF, 0xFFFFFFu);
    }
    QTemporaryDir dir_;
    const QString ppm = path("src.ppm");
    const QString pbm = path("src.pbm");
};

}  // namespace

TEST_F(Decoders, EachTypeDecodesByQtOrThroughTheFallback) {
    const QImage src = halves_picture(40, 30);
    ASSERT_TRUE(src.save(path("a.jpg"), "JPEG", 95));
    ASSERT_TRUE(src.save(path("a.png"), "PNG"));
    ASSERT_TRUE(src.save(path("a.bmp"), "BMP"));
    ASSERT_TRUE(src.save(path("a.dib"), "BMP"));
    for (const char* name : {"a.jpg", "a.png", "a.bmp", "a.dib"}) {
        expect_halves(path(name));
    }
    const struct {
        const char* program;
        QStringList args;
        const char* name;
    } colour[] = {
        {"gm", {"convert", ppm, "GIF:-"}, "a.gif"},
        {"gm", {"convert", ppm, "TIFF:-"}, "a.tif"},
        {"gm", {"convert", ppm, "TGA:-"}, "a.tga"},
        {"gm", {"convert", ppm, "-colorspace", "CMYK", "JPEG:-"}, "cmyk.jpg"},
        {"ppmtopcx", {"-24bit", ppm}, "a.pcx"},
        {"ppmtopcx", {"-8bit", ppm}, "b.pcx"},
        {"ppmtotga", {"-rgb", ppm}, "plain.tga"},
        {"pnmtorast", {ppm}, "a.ras"},
        {"pnmtorle", {ppm}, "a.rle"},
    };
    for (const auto& c : colour) {
        expect_halves(made(c.program, c.args, c.name));
    }
    expect_mono(made("gm", {"convert", pbm, "ART:-"}, "a.art"));
    expect_mono(made("pbmtogem", {pbm}, "tool.img"));
    // MacPaint pictures are always 576 x 720, the drawing in the middle.
    const QImage mac = load(made("pbmtomacp", {pbm}, "a.mac"));
    ASSERT_EQ(mac.size(), QSize(576, 720));
    EXPECT_EQ(mac.pixel(268 + 3, 345 + 3) & 0xFFFFFF, 0u);
    EXPECT_EQ(mac.pixel(268 + 30, 345 + 3) & 0xFFFFFF, 0xFFFFFFu);
    EXPECT_EQ(mac.pixel(3, 3) & 0xFFFFFF, 0xFFFFFFu);

    // Types nothing here writes, made byte by byte.
    const QImage cut = load(write_bytes(path("a.cut"), cut_file(16, 4)));
    ASSERT_EQ(cut.size(), QSize(16, 4));
    EXPECT_NE(cut.pixel(2, 1), cut.pixel(12, 1));
    EXPECT_EQ(cut.pixel(0, 0), cut.pixel(7, 3));
    expect_halves(write_bytes(path("a.hrz"), hrz_file()), QSize(256, 240));
    const QImage wpg = load(write_bytes(path("a.wpg"), wpg_file()));
    ASSERT_EQ(wpg.size(), QSize(16, 4));
    EXPECT_NE(wpg.pixel(1, 0), wpg.pixel(6, 0));
    EXPECT_EQ(wpg.pixel(1, 2), wpg.pixel(14, 3));
    const QImage wmf = load(write_bytes(path("a.wmf"), wmf_file()));
    ASSERT_FALSE(wmf.isNull());
    EXPECT_TRUE(near_colour(wmf.pixel(wmf.width() / 2, wmf.height() / 2), qRgb(255, 0, 0)));
}

TEST_F(Decoders, OwnReadersGiveEveryPixelBackWithEveryKindOfRun) {
    QImage mono = halves_mono(40, 30);
    mono.setPixel(25, 10, qRgb(0, 0, 0));  // a lone ink dot: a literal run
    mono.setPixel(10, 11, qRgb(255, 255, 255));
    EXPECT_EQ(rgb(load(write_bytes(path("hand.gem"), gem_file(mono)))), rgb(mono));
    // Two planes, six pixels 0 1 2 3 0 1 (a row read one pixel long would overrun the picture):
    // an "XIMG" header gives its palette (per mille red, green, blue, grey); a header as
    // long without the mark gives the desktop pens.
    QByteArray ximg = QByteArray::fromHex(
        "0001001700020002005500550006000158494D47000003E800000000"
        "000003E800000000000003E801F401F401F4800155800133");
    const QImage own = load(write_bytes(path("own.img"), ximg));
    ximg.replace(16, 4, "none");
    const QImage pens = load(write_bytes(path("pens.img"), ximg));
    const QRgb want[2][4] = {
        {qRgb(255, 0, 0), qRgb(0, 255, 0), qRgb(0, 0, 255), qRgb(127, 127, 127)},
        {qRgb(255, 255, 255), qRgb(0, 0, 0), qRgb(255, 0, 0), qRgb(0, 255, 0)}};
    for (int x = 0; x < 4; ++x) {
        EXPECT_EQ(own.pixel(x, 0), want[0][x]) << x;
        EXPECT_EQ(pens.pixel(x, 0), want[1][x]) << x;
    }
    for (bool packed : {false, true}) {
        const QImage msp =
            load(write_bytes(path(packed ? "p.msp" : "u.msp"), msp_file(mono, packed)));
        EXPECT_EQ(rgb(msp), rgb(mono)) << packed;
    }
    // IFF with and without ByteRun1, its plane rows padded from an odd width.
    QImage colour = halves_picture(37, 9);
    colour.setPixel(30, 4, qRgb(0, 255, 0));
    ASSERT_TRUE(colour.save(path("odd.ppm"), "PPM"));
    EXPECT_EQ(rgb(load(made("ppmtoilbm", {path("odd.ppm")}, "p.lbm"))), colour);
    EXPECT_EQ(rgb(load(made("ppmtoilbm", {"-nocompress", path("odd.ppm")}, "u.iff"))), colour);
    // Hold-and-modify: past a few pixels of fringe each half shows its colour.
    const QImage ham = load(made("ppmtoilbm", {"-hamforce", "-ham6", path("odd.ppm")}, "h.iff"));
    EXPECT_TRUE(near_colour(ham.pixel(8, 4), qRgb(255, 0, 0))) << std::hex << ham.pixel(8, 4);
    EXPECT_TRUE(near_colour(ham.pixel(33, 4), qRgb(0, 0, 255))) << std::hex << ham.pixel(33, 4);
    // A chunky PBM of odd width, a byte a pixel, each row padded to an even length.
    const QByteArray chunky = QByteArray::fromHex(
        "464F524D 00000044 50424D20"
        "424D4844 00000014 0003 0002 0000 0000 08 00 00 00 0000 01 01 0003 0002"
        "434D4150 0000000C FF0000 00FF00 0000FF FFFFFF"
        "424F4459 00000008 00010203 01020003");
    const QImage pbm = load(write_bytes(path("chunky.lbm"), chunky));
    ASSERT_EQ(pbm.size(), QSize(3, 2));
    const QRgb rgb3[] = {qRgb(255, 0, 0), qRgb(0, 255, 0), qRgb(0, 0, 255)};
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(pbm.pixel(i % 3, i / 3), rgb3[(i % 3 + i / 3) % 3]) << i;
    }
}

TEST_F(Decoders, ContentDecidesWhereTheNameLies) {
    ASSERT_TRUE(halves_picture(40, 30).save(path("png.pcx"), "PNG"));
    ImageType type;
    load(path("png.pcx"), &type);
    EXPECT_EQ(type, ImageType::Png);
    load(made("ppmtopcx", {"-24bit", ppm}, "pcx.jpg"), &type);
    EXPECT_EQ(type, ImageType::Pcx);
    expect_halves(path("pcx.jpg"));
    write_bytes(path("gem.msp"), gem_file(halves_mono(40, 30)));
    expect_mono(path("gem.msp"));

    // Text under an image name, an empty file, types nothing reads.
    write_bytes(path("dir.tif/notes.txt"), "just some words\n");
    EXPECT_TRUE(load_failure(path("dir.tif/notes.txt")).startsWith("Cannot read "));
    write_bytes(path("empty.jpg"), "");
    EXPECT_EQ(load_failure(path("empty.jpg")),
              "Cannot read " + path("empty.jpg") + ": the file is empty.");
    write_bytes(path("a.emf"), emf_file());
    EXPECT_TRUE(load_failure(path("a.emf")).startsWith("Cannot read "));
    write_bytes(path("text.tga"), "no targa here");
    EXPECT_FALSE(load_failure(path("text.tga")).isEmpty());
    write_bytes(path("text.hrz"), "no slow scan here");
    EXPECT_FALSE(load_failure(path("text.hrz")).isEmpty());
    // A failed load leaves the control as it was.
    ImageControl c;
    c.set_file_name(path("png.pcx"));
    EXPECT_THROW(c.set_file_name(path("a.emf")), RunError);
    EXPECT_EQ(c.file_name(), path("png.pcx"));
    EXPECT_EQ(c.image_width(), 40);
}

// Enhanced metafiles as a drawing program writes them: a line, a bitmap and
// text, drawn at the size of the header's bounds.
TEST_F(Decoders, EnhancedMetafilesShowTheirLinesBitmapsAndText) {
    ASSERT_TRUE(halves_picture(40, 30).save(path("pic.png"), "PNG"));
    // XFig units are 1200 to the inch: a blue line along the top, the picture
    // below it, and a word under that.
    const QByteArray fig =
        "#FIG 3.2\nLandscape\nCenter\nInches\nLetter\n100.00\nSingle\n-2\n"
        "1200 2\n"
        "2 1 0 8 1 7 50 -1 -1 0.000 0 0 -1 0 0 2\n\t 600 600 4200 600\n"
        "2 5 0 1 0 -1 50 -1 -1 0.000 0 0 -1 0 0 5\n\t0 " +
        path("pic.png").toUtf8() +
        "\n\t 600 1200 4200 1200 4200 3900 600 3900 600 1200\n"
        "4 0 0 50 -1 0 48 0.0000 4 570 2400 600 4800 Quilldex\\001\n";
    write_bytes(path("drawing.fig"), fig);
    const QString emf = made("fig2dev", {"-L", "emf", path("drawing.fig")}, "drawing.emf");
    ImageType type = ImageType::Unknown;
    const QImage img = load(emf, &type);
    ASSERT_EQ(type, ImageType::Emf);
    ASSERT_GT(img.width(), 100);
    // Find each part by its colour: the line blue, the picture's halves red
    // and blue, the text black.
    int blue_top = 0, red = 0, dark = 0;
    for (int y = 0; y < img.height(); ++y) {
        for (int x = 0; x < img.width(); ++x) {
            const QRgb p = img.pixel(x, y);
            if (qAlpha(p) < 128) {
                continue;
            }
            if (y < img.height() / 6 && near_colour(p, qRgb(0, 0, 255), 60)) {
                ++blue_top;
            }
            red += near_colour(p, qRgb(255, 0, 0), 40) ? 1 : 0;
            dark += (y > img.height() * 3 / 4 && qGray(p) < 80) ? 1 : 0;
        }
    }
    EXPECT_GT(blue_top, img.width() / 2);
    EXPECT_GT(red, img.width() * img.height() / 20);
    EXPECT_GT(dark, 50);
    EXPECT_EQ(load_failure(emf), "");
    // A metafile cut short is damaged, not half drawn.
    const QByteArray whole = read_bytes(emf);
    EXPECT_TRUE(load_failure(write_bytes(path("cut.emf"), whole.left(whole.size() / 2)))
                    .startsWith("Cannot read "));

    // The size: the bounds, inclusive at both ends; without bounds, the frame
    // (hundredths of a millimetre) at the device's pixels to the millimetre.
    const struct {
        std::array<qint32, 8> bounds_frame;
        QSize size;
    } sizes[] = {{{10, 20, 109, 69, 0, 0, 0, 0}, QSize(100, 50)},
                 {{0, 0, 0, 0, 500, 0, 2500, 1000}, QSize(80, 40)}};
    for (const auto& c : sizes) {
        QByteArray head = emf_file();
        qToLittleEndian<qint32>(c.bounds_frame.data(), 8, head.data() + 8);
        qToLittleEndian<qint32>(std::array<qint32, 4>{1920, 1080, 480, 270}.data(), 4,
                                head.data() + 72);
        EXPECT_EQ(emf_size(head, "x.emf"), c.size) << c.bounds_frame[0];
    }
}
