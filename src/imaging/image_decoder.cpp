#include "imaging/image_decoder.h"

#include "core/run_error.h"
#include "imaging/emf_reader.h"
#include "imaging/jpeg_reader.h"
#include "imaging/magick_reader.h"
#include "imaging/qt_reader.h"
#include "imaging/raster_readers.h"
#include "imaging/source_file.h"

#include <QFileInfo>

#include <atomic>
#include <cstring>

namespace {

std::atomic<quint64> g_decoded{0};

bool starts_with(const QByteArray& h, const char* magic, int n) {
    return h.size() >= n && std::memcmp(h.constData(), magic, static_cast<size_t>(n)) == 0;
}

uchar byte_at(const QByteArray& h, int i) {
    return i < h.size() ? static_cast<uchar>(h.at(i)) : 0;
}

int be16(const QByteArray& h, int i) {
    return (byte_at(h, i) << 8) | byte_at(h, i + 1);
}
int le16(const QByteArray& h, int i) {
    return byte_at(h, i) | (byte_at(h, i + 1) << 8);
}

// A GEM raster header: version, header length in words, planes, pattern
// length, two pixel sizes, line width and line count, big-endian words.
bool looks_like_gem(const QByteArray& h) {
    if (h.size() < 16) {
        return false;
    }
    const int version = be16(h, 0);
    const int header_words = be16(h, 2);
    const int planes = be16(h, 4);
    const int pattern = be16(h, 6);
    return version >= 1 && version <= 3 && header_words >= 8 && header_words <= 2048 &&
           planes >= 1 && planes <= 24 && pattern >= 1 && pattern <= 8 && be16(h, 12) > 0 &&
           be16(h, 14) > 0;
}

bool looks_like_pcx(const QByteArray& h) {
    const uchar version = byte_at(h, 1);
    const uchar bits = byte_at(h, 3);
    return h.size() >= 128 && byte_at(h, 0) == 0x0A && version <= 5 && version != 1 &&
           byte_at(h, 2) == 1 && (bits == 1 || bits == 2 || bits == 4 || bits == 8);
}

bool looks_like_wmf(const QByteArray& h) {
    // Without the placeable prefix: type 1 (memory) or 2 (disk), a header of
    // nine words, version 1.0 or 3.0.
    const int type = le16(h, 0);
    return (type == 1 || type == 2) && le16(h, 2) == 9 &&
           (le16(h, 4) == 0x0300 || le16(h, 4) == 0x0100);
}

QString suffix_of(const QString& path) {
    return QFileInfo(path).suffix().toLower();
}

}  // namespace

void fail_to_read(const QString& path, const QString& reason) {
    throw RunError(QStringLiteral("Cannot read ") + path + QStringLiteral(": ") + reason);
}

void check_picture_size(const QString& path, QSize size) {
    if (size.width() <= 0 || size.height() <= 0) {
        fail_to_read(path, QStringLiteral("the picture has no pixels."));
    }
    if (size.width() > 65535 || size.height() > 65535) {
        fail_to_read(path, QStringLiteral("the picture is too large (%1 x %2 pixels).")
                               .arg(size.width())
                               .arg(size.height()));
    }
}

void check_allocation(const QString& path, QSize size) {
    check_picture_size(path, size);
    if (qint64(size.width()) * size.height() > kMaxDecodePixels) {
        fail_to_read(path, QStringLiteral("the picture is too large (%1 x %2 pixels).")
                               .arg(size.width())
                               .arg(size.height()));
    }
}

ImageType detect_image_type(const QByteArray& h, const QString& path) {
    if (starts_with(h, "\xFF\xD8\xFF", 3)) {
        return ImageType::Jpeg;
    }
    if (starts_with(h, "\x89PNG\r\n\x1A\n", 8)) {
        return ImageType::Png;
    }
    if (starts_with(h, "GIF87a", 6) || starts_with(h, "GIF89a", 6)) {
        return ImageType::Gif;
    }
    if (starts_with(h, "BM", 2) && h.size() >= 26) {
        return ImageType::Bmp;
    }
    if (starts_with(h, "II*\0", 4) || starts_with(h, "MM\0*", 4)) {
        return ImageType::Tiff;
    }
    if (starts_with(h, "\x59\xA6\x6A\x95", 4)) {
        return ImageType::SunRaster;
    }
    if (starts_with(h, "\xFFWPC", 4)) {
        return ImageType::Wpg;
    }
    if (starts_with(h, "\xD7\xCD\xC6\x9A", 4) || looks_like_wmf(h)) {
        return ImageType::Wmf;
    }
    if (starts_with(h, "\x01\0\0\0", 4) && h.size() >= 44 && h.mid(40, 4) == " EMF") {
        return ImageType::Emf;
    }
    if (starts_with(h, "FORM", 4) && (h.mid(8, 4) == "ILBM" || h.mid(8, 4) == "PBM ")) {
        return ImageType::Iff;
    }
    if (starts_with(h, "DanM", 4) || starts_with(h, "LinS", 4)) {
        return ImageType::Msp;
    }
    if (starts_with(h, "\x52\xCC", 2)) {
        return ImageType::UtahRle;
    }
    if (looks_like_pcx(h)) {
        return ImageType::Pcx;
    }
    if (looks_like_gem(h)) {
        return ImageType::Gem;
    }
    // Types with no signature of their own go by the file's extension.
    const QString suffix = suffix_of(path);
    if (suffix == QLatin1String("tga")) {
        return ImageType::Tga;
    }
    if (suffix == QLatin1String("art")) {
        return ImageType::Art;
    }
    if (suffix == QLatin1String("cut")) {
        return ImageType::Cut;
    }
    if (suffix == QLatin1String("hrz")) {
        return ImageType::Hrz;
    }
    if (suffix == QLatin1String("mac")) {
        return ImageType::MacPaint;
    }
    if (suffix == QLatin1String("emf")) {
        return ImageType::Emf;
    }
    return ImageType::Unknown;
}

ImageHeader read_image_header(const SourceFile& file) {
    const QByteArray head = file.read(0, 4096);
    if (head.isEmpty()) {
        fail_to_read(file.path(), QStringLiteral("the file is empty."));
    }
    ImageHeader h;
    const ImageType type = detect_image_type(head, file.path());
    switch (type) {
        case ImageType::Jpeg:
            h = read_jpeg_header(file);
            break;
        case ImageType::Png:
        case ImageType::Gif:
        case ImageType::Bmp:
        case ImageType::Tiff:
            h = read_qt_header(file, type);
            break;
        case ImageType::Tga:
            // Qt reads uncompressed TGA only; the run-length kinds go to the fallback.
            try {
                h = read_qt_header(file, type);
            } catch (const RunError&) {
                h = read_magick_header(file, type);
            }
            break;
        case ImageType::Pcx:
        case ImageType::SunRaster:
        case ImageType::Art:
        case ImageType::Cut:
        case ImageType::Hrz:
        case ImageType::MacPaint:
        case ImageType::UtahRle:
        case ImageType::Wpg:
        case ImageType::Wmf:
            h = read_magick_header(file, type);
            break;
        case ImageType::Iff:
            h = {type, iff_size(head, file.path()), false};
            break;
        case ImageType::Gem:
            h = {type, gem_size(head, file.path()), false};
            break;
        case ImageType::Msp:
            h = {type, msp_size(head, file.path()), false};
            break;
        case ImageType::Emf:
            h = {type, emf_size(head, file.path()), false};
            break;
        case ImageType::Unknown:
            fail_to_read(file.path(), QStringLiteral("the file is not a picture of a known type."));
    }
    check_picture_size(file.path(), h.stored);
    return h;
}

QSize decoded_size(const ImageHeader& header, QSize at_least) {
    if (header.type != ImageType::Jpeg) {
        return header.upright();
    }
    const QSize want = header.sides_swapped ? at_least.transposed() : at_least;
    const qint64 n = jpeg_scale_num(header.stored, want);
    const QSize stored(static_cast<int>((header.stored.width() * n + 7) / 8),
                       static_cast<int>((header.stored.height() * n + 7) / 8));
    return header.sides_swapped ? stored.transposed() : stored;
}

quint64 decoded_picture_count() {
    return g_decoded.load();
}

QImage decode_image(const SourceFile& file, const ImageHeader& header, QSize at_least,
                    Resampling quality) {
    ++g_decoded;
    QImage image;
    switch (header.type) {
        case ImageType::Jpeg:
            return decode_jpeg(file, header.sides_swapped ? at_least.transposed() : at_least,
                               quality);
        case ImageType::Png:
        case ImageType::Bmp:
        case ImageType::Tiff:
            check_allocation(file.path(), header.stored);
            image = decode_qt(file, header.type);
            break;
        case ImageType::Gif:
            // Qt's reader hands back a frame cut short as if it were whole;
            // this decoder says when the data ran out.
            check_allocation(file.path(), header.stored);
            image = decode_magick(file, header.type);
            break;
        case ImageType::Tga:
            check_allocation(file.path(), header.stored);
            try {
                image = decode_qt(file, header.type);
            } catch (const RunError&) {
                image = decode_magick(file, header.type);
            }
            break;
        case ImageType::Pcx:
        case ImageType::SunRaster:
        case ImageType::Art:
        case ImageType::Cut:
        case ImageType::Hrz:
        case ImageType::MacPaint:
        case ImageType::UtahRle:
        case ImageType::Wpg:
        case ImageType::Wmf:
            check_allocation(file.path(), header.stored);
            image = decode_magick(file, header.type);
            break;
        case ImageType::Iff:
            check_allocation(file.path(), header.stored);
            image = decode_iff(file.read_all(), file.path());
            break;
        case ImageType::Gem:
            check_allocation(file.path(), header.stored);
            image = decode_gem(file.read_all(), file.path());
            break;
        case ImageType::Msp:
            check_allocation(file.path(), header.stored);
            image = decode_msp(file.read_all(), file.path());
            break;
        case ImageType::Emf:
            check_allocation(file.path(), header.stored);
            image = decode_emf(file.read_all(), file.path(), header.stored);
            break;
        case ImageType::Unknown:
            fail_to_read(file.path(), QStringLiteral("the file is not a picture of a known type."));
    }
    if (image.isNull()) {
        fail_to_read(file.path(), QStringLiteral("the file is damaged or incomplete."));
    }
    return image;
}
