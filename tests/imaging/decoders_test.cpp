#include "core/run_error.h"
#include "image_samples.h"
#include "imaging/emf_reader.h"
#include "imaging/image_control.h"
#include "imaging/image_decoder.h"
#include "imaging/image_log.h"
#include "imaging/image_view.h"
#include "imaging/jpeg_reader.h"
#include "support/cli_run.h"
#include "support/qt_print.h"
#include "support/test_home.h"

#include <QDir>
#include <QElapsedTimer>
#include <QPainter>
#include <QTemporaryDir>
#include <QtEndian>

#include <gtest/gtest.h>

#include <array>

namespace {
// The log the image warnings go to while a test runs; off again after it.
struct LogOn {
    explicit LogOn(const QString& path) : path(path) { set_image_log(path); }
    ~LogOn() { set_image_log(QString()); }
    QString text() const { return QString::fromUtf8(read_bytes(path)); }
    QString path;
};

// Loads a file into a control and returns its picture at natural size.
QImage load(const QString& path, ImageType* type = nullptr) {
    ImageControl c;
    c.set_file_name(path);
    if (type) {
        *type = c.image_type();
    }
    return c.picture(QSize(c.image_width(), c.image_height()));
}

// Black on the left, white on the right.
QImage mono_halves() {
    return halves(40, 30, qRgb(0, 0, 0), qRgb(255, 255, 255));
}

QImage rgb(const QImage& img) {
    return img.convertToFormat(QImage::Format_RGB32);
}

class Decoders : public ::testing::Test {
protected:
    Decoders() {
        halves_picture(40, 30).save(ppm, "PPM");
        mono_halves().convertToFormat(QImage::Format_Mono).save(pbm, "PBM");
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
        EXPECT_TRUE(near_colour(img.pixel(5, size.height() / 2), qRgb(255, 0, 0)));
        EXPECT_TRUE(near_colour(img.pixel(size.width() - 5, size.height() / 2), qRgb(0, 0, 255)));
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
    for (const char* name : {"a.jpg", "a.png", "a.bmp"}) {
        expect_halves(path(name));
    }
    // The program and its arguments, the file it writes.
    const std::pair<QStringList, const char*> colour[] = {
        {{"gm", "convert", ppm, "GIF:-"}, "a.gif"},
        {{"gm", "convert", ppm, "TIFF:-"}, "a.tif"},
        {{"gm", "convert", ppm, "TGA:-"}, "a.tga"},
        {{"gm", "convert", ppm, "-colorspace", "CMYK", "JPEG:-"}, "cmyk.jpg"},
        {{"ppmtopcx", "-24bit", ppm}, "a.pcx"},
        {{"ppmtopcx", "-8bit", ppm}, "b.pcx"},
        {{"pnmtorast", ppm}, "a.ras"},
        {{"pnmtorle", ppm}, "a.rle"},
    };
    for (const auto& [args, name] : colour) {
        expect_halves(made(args[0], args.mid(1), name));
    }
    EXPECT_EQ(rgb(load(made("pbmtogem", {pbm}, "tool.img"))), rgb(mono_halves()));
    // MacPaint pictures are always 576 x 720, the drawing in the middle.
    const QImage mac = load(made("pbmtomacp", {pbm}, "a.mac"));
    ASSERT_EQ(mac.size(), QSize(576, 720));
    EXPECT_EQ(mac.pixel(268 + 3, 345 + 3) & 0xFFFFFF, 0u);

    // Types nothing here writes, made byte by byte.
    const QImage cut = load(write_bytes(path("a.cut"), cut_file(16, 4)));
    ASSERT_EQ(cut.size(), QSize(16, 4));
    EXPECT_NE(cut.pixel(2, 1), cut.pixel(12, 1));
    EXPECT_EQ(cut.pixel(0, 0), cut.pixel(7, 3));
    expect_halves(write_bytes(path("a.hrz"), hrz_file()), QSize(256, 240));
}

TEST_F(Decoders, OwnReadersGiveEveryPixelBackWithEveryKindOfRun) {
    QImage mono = mono_halves();
    mono.setPixel(25, 10, qRgb(0, 0, 0));  // a lone ink dot: a literal run
    mono.setPixel(10, 11, qRgb(255, 255, 255));
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

    // An empty file, a type nothing reads.
    write_bytes(path("empty.jpg"), "");
    EXPECT_EQ(load_failure(path("empty.jpg")),
              "Cannot read " + path("empty.jpg") + ": the file is empty.");
    write_bytes(path("a.emf"), emf_file());
    EXPECT_TRUE(load_failure(path("a.emf")).startsWith("Cannot read "));
    // A failed load leaves the control as it was.
    ImageControl c;
    c.set_file_name(path("png.pcx"));
    EXPECT_THROW(c.set_file_name(path("a.emf")), RunError);
    EXPECT_EQ(c.file_name(), path("png.pcx"));
    EXPECT_EQ(c.image_width(), 40);
}

// An enhanced metafile is drawn at the size of the header's bounds.
TEST_F(Decoders, EnhancedMetafilesShowTheirLinesBitmapsAndText) {
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

// What Qt's readers, libtiff and libjpeg say while they read goes to the log
// when it is on, never to the command line's standard error.
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
    EXPECT_FALSE(r.err.contains("TIFF") || r.err.contains("Handler")) << r.err.toStdString();

    LogOn log(home.path("msglog.txt"));
    EXPECT_TRUE(load_failure(bad).startsWith("Cannot read " + bad));
    // A JPEG that lacks only its end marker gives its picture; the log is told.
    const QByteArray jpg = encoded(detailed_picture(160, 120), "JPEG", 90);
    const QString noend = write_bytes(home.path("src/noend.jpg"), jpg.left(jpg.size() - 2));
    EXPECT_EQ(load_failure(noend), "");
    EXPECT_TRUE(log.text().contains(noend + ": the JPEG file has no end marker."))
        << log.text().toStdString();
    EXPECT_TRUE(log.text().contains("TIFFFetchDirectory")) << log.text().toStdString();
    qWarning("QTgaHandler::canRead() called with no device");
    EXPECT_TRUE(log.text().contains("QTgaHandler::canRead()"));
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
    QElapsedTimer t;
    t.start();
    // A PNG whose header, with its checksum, claims `width` x `height` pixels.
    auto claiming = [&](quint32 width, quint32 height) {
        QByteArray png = encoded(halves_picture(8, 6), "PNG");
        qToBigEndian(width, png.data() + 16);
        qToBigEndian(height, png.data() + 20);
        quint32 crc = 0xFFFFFFFF;
        for (char ch : png.mid(12, 17)) {
            crc ^= uchar(ch);
            for (int k = 0; k < 8; ++k) {
                crc = (crc >> 1) ^ (0xEDB88320 & (0 - (crc & 1)));
            }
        }
        qToBigEndian(~crc, png.data() + 29);
        return write_bytes(dir.path() + QString("/%1x%2.png").arg(width).arg(height), png);
    };
    const QString zero = claiming(0, 6);
    EXPECT_TRUE(load_failure(zero).startsWith("Cannot read " + zero));
    const QString huge = claiming(60000, 60000);
    EXPECT_EQ(load_failure(huge),
              "Cannot read " + huge + ": the picture is too large (60000 x 60000 pixels).");
    EXPECT_LT(t.elapsed(), 5000);
}

TEST(BadInput, PhotosAreShownUprightByTheirExifOrientation) {
    QTemporaryDir dir;
    const QRgb red = qRgb(255, 0, 0), blue = qRgb(0, 0, 255), green = qRgb(0, 255, 0),
               white = qRgb(255, 255, 255);
    // Stored: red top left, blue top right, green bottom left, white bottom right.
    QImage q = halves(40, 30, red, blue);
    QPainter(&q).drawImage(0, 15, halves(40, 15, green, white));
    const QByteArray plain = encoded(q, "JPEG");
    const struct {
        int orientation;
        QRgb top_left, top_right;
    } cases[] = {{1, red, blue},  {2, blue, red},  {3, white, green}, {4, green, white},
                 {5, red, green}, {6, green, red}, {7, white, blue},  {8, blue, white}};
    for (const auto& e : cases) {
        SCOPED_TRACE(e.orientation);
        // One IFD entry, Orientation (0x112), a SHORT.
        const QByteArray exif =
            QByteArray("Exif\0\0II\x2A\0\x08\0\0\0\x01\0\x12\x01\x03\0\x01\0\0\0", 24) +
            char(e.orientation) + QByteArray(7, '\0');
        const QByteArray app1 =
            QByteArray("\xFF\xE1") + char((exif.size() + 2) >> 8) + char((exif.size() + 2) & 255);
        ImageControl c;
        c.set_file_name(write_bytes(dir.path() + QString("/o%1.jpg").arg(e.orientation),
                                    plain.left(2) + app1 + exif + plain.mid(2)));
        EXPECT_EQ(QSize(c.image_width(), c.image_height()),
                  e.orientation >= 5 ? QSize(30, 40) : QSize(40, 30));
        const QImage shown = c.picture(QSize(c.image_width(), c.image_height()));
        EXPECT_TRUE(near_colour(shown.pixel(5, 5), e.top_left)) << std::hex << shown.pixel(5, 5);
        EXPECT_TRUE(near_colour(shown.pixel(shown.width() - 5, 5), e.top_right));
    }
    // An IFD of no entries followed by what looks like an Orientation entry: upright.
    const QByteArray none("II\x2A\0\x08\0\0\0\0\0\x12\x01\x03\0\x01\0\0\0\x06\0\0\0", 22);
    EXPECT_EQ(exif_orientation(reinterpret_cast<const uchar*>(none.constData()), none.size()), 1);
}
