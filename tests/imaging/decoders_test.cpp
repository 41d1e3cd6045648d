#include "image_samples.h"

#include "imaging/image_control.h"
#include "imaging/image_decoder.h"
#include "shell/run_error.h"
#include "support/qt_print.h"

#include <QImageWriter>
#include <QTemporaryDir>

#include <gtest/gtest.h>

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

// The error text of loading and decoding `path`, "" when it worked.
QString failure_of(const QString& path) {
    try {
        ImageControl c;
        c.set_file_name(path);
        if (!c.has_picture()) {
            return "no picture";
        }
        c.picture(c.shown_size());
        return QString();
    } catch (const RunError& e) {
        return e.text();
    }
}

class Decoders : public ::testing::Test {
protected:
    QString path(const QString& name) const { return dir_.path() + "/" + name; }
    QString colour_ppm() {
        const QString p = path("src.ppm");
        halves_picture(40, 30).save(p, "PPM");
        return p;
    }
    QString mono_pbm() {
        const QString p = path("src.pbm");
        halves_mono(40, 30).convertToFormat(QImage::Format_Mono).save(p, "PBM");
        return p;
    }
    // Left half red, right half blue, as a colour sample must come back.
    void expect_halves(const QString& file, QSize size = QSize(40, 30)) {
        SCOPED_TRACE(file.toStdString());
        ImageType type = ImageType::Unknown;
        const QImage img = load(file, &type);
        ASSERT_EQ(img.size(), size);
        EXPECT_TRUE(near_colour(img.pixel(5, size.height() / 2), qRgb(255, 0, 0)))
            << std::hex << img.pixel(5, size.height() / 2);
        EXPECT_TRUE(near_colour(img.pixel(size.width() - 5, size.height() / 2), qRgb(0, 0, 255)))
            << std::hex << img.pixel(size.width() - 5, size.height() / 2);
    }
    // Left half black, right half white.
    void expect_mono(const QString& file, QSize size = QSize(40, 30)) {
        SCOPED_TRACE(file.toStdString());
        const QImage img = load(file);
        ASSERT_EQ(img.size(), size);
        EXPECT_EQ(img.pixel(3, 3) & 0xFFFFFF, 0u);
        EXPECT_EQ(img.pixel(19, 29) & 0xFFFFFF, 0u);
        EXPECT_EQ(img.pixel(20, 0) & 0xFFFFFF, 0xFFFFFFu);
        EXPECT_EQ(img.pixel(35, 15) & 0xFFFFFF, 0xFFFFFFu);
    }
    QTemporaryDir dir_;
};

}  // namespace

TEST_F(Decoders, QtTypesByContent) {
    const QImage src = halves_picture(40, 30);
    ASSERT_TRUE(src.save(path("a.jpg"), "JPEG", 95));
    ASSERT_TRUE(src.save(path("a.png"), "PNG"));
    ASSERT_TRUE(src.save(path("a.bmp"), "BMP"));
    ASSERT_TRUE(src.save(path("a.dib"), "BMP"));
    QString err;
    ASSERT_TRUE(gm_convert(colour_ppm(), "GIF", path("a.gif"), &err)) << err.toStdString();
    ASSERT_TRUE(gm_convert(colour_ppm(), "TIFF", path("a.tif"), &err)) << err.toStdString();
    ASSERT_TRUE(gm_convert(colour_ppm(), "TGA", path("a.tga"), &err)) << err.toStdString();
    for (const char* name : {"a.jpg", "a.png", "a.bmp", "a.dib", "a.gif", "a.tif", "a.tga"}) {
        expect_halves(path(name));
    }
}

TEST_F(Decoders, OlderTypesThroughTheFallback) {
    QString err;
    ASSERT_TRUE(run_to_file("ppmtopcx", {"-24bit", colour_ppm()}, path("a.pcx"), &err))
        << err.toStdString();
    ASSERT_TRUE(run_to_file("ppmtopcx", {"-8bit", colour_ppm()}, path("b.pcx"), &err))
        << err.toStdString();
    ASSERT_TRUE(run_to_file("ppmtotga", {"-rgb", colour_ppm()}, path("plain.tga"), &err))
        << err.toStdString();
    ASSERT_TRUE(run_to_file("pnmtorast", {colour_ppm()}, path("a.ras"), &err)) << err.toStdString();
    ASSERT_TRUE(run_to_file("pnmtorle", {colour_ppm()}, path("a.rle"), &err)) << err.toStdString();
    ASSERT_TRUE(gm_convert(mono_pbm(), "ART", path("a.art"), &err)) << err.toStdString();
    ASSERT_TRUE(run_to_file("pbmtomacp", {mono_pbm()}, path("a.mac"), &err)) << err.toStdString();
    expect_halves(path("a.pcx"));
    expect_halves(path("b.pcx"));
    expect_halves(path("plain.tga"));
    expect_halves(path("a.ras"));
    expect_halves(path("a.rle"));
    expect_mono(path("a.art"));
    // MacPaint pictures are always 576 x 720, the drawing in the middle.
    const QImage mac = load(path("a.mac"));
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

TEST_F(Decoders, OwnReadersAgreeWithTheToolsAndWithHandMadeFiles) {
    QString err;
    // GEM and IFF as netpbm writes them...
    ASSERT_TRUE(run_to_file("pbmtogem", {mono_pbm()}, path("tool.img"), &err)) << err.toStdString();
    ASSERT_TRUE(run_to_file("ppmtoilbm", {colour_ppm()}, path("tool.iff"), &err))
        << err.toStdString();
    expect_mono(path("tool.img"));
    expect_halves(path("tool.iff"));
    // ...and as made here, with every kind of run.
    QImage mono = halves_mono(40, 30);
    mono.setPixel(25, 10, qRgb(0, 0, 0));  // a lone ink dot: a literal run
    mono.setPixel(10, 11, qRgb(255, 255, 255));
    const QImage gem = load(write_bytes(path("hand.gem"), gem_file(mono)));
    ASSERT_EQ(gem.size(), mono.size());
    EXPECT_EQ(gem.convertToFormat(QImage::Format_RGB32),
              mono.convertToFormat(QImage::Format_RGB32));

    QImage colour = halves_picture(37, 9);
    colour.setPixel(30, 4, qRgb(0, 255, 0));
    for (bool packed : {false, true}) {
        const QImage iff =
            load(write_bytes(path(packed ? "p.lbm" : "u.iff"), iff_file(colour, packed)));
        EXPECT_EQ(iff.convertToFormat(QImage::Format_RGB32), colour) << packed;
        const QImage msp =
            load(write_bytes(path(packed ? "p.msp" : "u.msp"), msp_file(mono, packed)));
        EXPECT_EQ(msp.convertToFormat(QImage::Format_RGB32),
                  mono.convertToFormat(QImage::Format_RGB32))
            << packed;
    }
}

TEST_F(Decoders, ContentDecidesWhereTheNameLies) {
    const QImage src = halves_picture(40, 30);
    ASSERT_TRUE(src.save(path("png.pcx"), "PNG"));
    QString err;
    ASSERT_TRUE(run_to_file("ppmtopcx", {"-24bit", colour_ppm()}, path("pcx.jpg"), &err));
    ImageType type;
    load(path("png.pcx"), &type);
    EXPECT_EQ(type, ImageType::Png);
    load(path("pcx.jpg"), &type);
    EXPECT_EQ(type, ImageType::Pcx);
    expect_halves(path("pcx.jpg"));
    write_bytes(path("gem.msp"), gem_file(halves_mono(40, 30)));
    expect_mono(path("gem.msp"));

    // Text under an image name, a PNG cut to its signature, a type nothing reads.
    write_bytes(path("dir.tif/notes.txt"), "just some words\n");
    EXPECT_TRUE(failure_of(path("dir.tif/notes.txt")).startsWith("Cannot read "));
    write_bytes(path("empty.jpg"), "");
    EXPECT_EQ(failure_of(path("empty.jpg")),
              "Cannot read " + path("empty.jpg") + ": the file is empty.");
    write_bytes(path("a.emf"), emf_file());
    EXPECT_TRUE(failure_of(path("a.emf")).contains("EMF"));
    write_bytes(path("text.tga"), "no targa here");
    EXPECT_FALSE(failure_of(path("text.tga")).isEmpty());
    write_bytes(path("text.hrz"), "no slow scan here");
    EXPECT_FALSE(failure_of(path("text.hrz")).isEmpty());
    // A failed load leaves the control as it was.
    ImageControl c;
    c.set_file_name(path("png.pcx"));
    EXPECT_THROW(c.set_file_name(path("a.emf")), RunError);
    EXPECT_EQ(c.file_name(), path("png.pcx"));
    EXPECT_EQ(c.image_width(), 40);
}
