#include "imaging/jpeg_reader.h"

#include "imaging/image_log.h"
#include "imaging/source_file.h"

#include <QTransform>

#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <memory>

#include <jerror.h>
#include <jpeglib.h>

namespace {

// libjpeg reports a fatal error by calling error_exit, which must not return:
// it jumps back to the phase that started the work. Each phase is a small
// function whose locals are plain values, so the jump skips no destructor.
struct ErrorManager {
    jpeg_error_mgr pub;
    std::jmp_buf jump;
    char message[JMSG_LENGTH_MAX];
    char warning[JMSG_LENGTH_MAX];  // the first warning, for the log
    bool cut_short;                 // the compressed data ended before the picture did
};

void on_error_exit(j_common_ptr cinfo) {
    auto* err = reinterpret_cast<ErrorManager*>(cinfo->err);
    (*cinfo->err->format_message)(cinfo, err->message);
    std::longjmp(err->jump, 1);
}

// Warnings are not shown. The entropy decoder's "premature end of data
// segment" means a scan needed bits the file does not have: the picture is
// incomplete (libjpeg would fill the rest with grey). Any other warning only
// marks the file as not quite well formed.
void on_message(j_common_ptr cinfo, int level) {
    if (level >= 0) {
        return;
    }
    auto* err = reinterpret_cast<ErrorManager*>(cinfo->err);
    if (cinfo->err->msg_code == JWRN_HIT_MARKER || cinfo->err->msg_code == JWRN_JPEG_EOF) {
        err->cut_short = true;
    } else if (err->warning[0] == 0) {
        (*cinfo->err->format_message)(cinfo, err->warning);
    }
}

constexpr size_t kBufferSize = 64 * 1024;

// Reads the open file with positioned reads. At the end of the file it feeds
// an end-of-image marker and notes that the picture was cut short.
struct SourceManager {
    jpeg_source_mgr pub;
    const SourceFile* file;
    qint64 offset;
    bool ended;
    JOCTET buffer[kBufferSize];
};

void init_source(j_decompress_ptr) {}
void term_source(j_decompress_ptr) {}

boolean fill_input_buffer(j_decompress_ptr cinfo) {
    auto* src = reinterpret_cast<SourceManager*>(cinfo->src);
    qint64 n = src->file->read_into(src->offset, reinterpret_cast<char*>(src->buffer), kBufferSize);
    if (n <= 0) {
        src->ended = true;
        src->buffer[0] = 0xFF;
        src->buffer[1] = JPEG_EOI;
        n = 2;
    } else {
        src->offset += n;
    }
    src->pub.next_input_byte = src->buffer;
    src->pub.bytes_in_buffer = static_cast<size_t>(n);
    return TRUE;
}

void skip_input_data(j_decompress_ptr cinfo, long count) {
    auto* src = reinterpret_cast<SourceManager*>(cinfo->src);
    if (count <= 0) {
        return;
    }
    if (static_cast<size_t>(count) <= src->pub.bytes_in_buffer) {
        src->pub.next_input_byte += count;
        src->pub.bytes_in_buffer -= static_cast<size_t>(count);
        return;
    }
    src->offset += count - static_cast<long>(src->pub.bytes_in_buffer);
    src->pub.bytes_in_buffer = 0;
}

struct Decoder {
    jpeg_decompress_struct cinfo;
    ErrorManager err;
    SourceManager src;
    bool created;
};

void destroy(Decoder* d) {
    if (d->created) {
        jpeg_destroy_decompress(&d->cinfo);
        d->created = false;
    }
}

struct DecoderDeleter {
    void operator()(Decoder* d) const {
        destroy(d);
        delete d;
    }
};
using DecoderPtr = std::unique_ptr<Decoder, DecoderDeleter>;

DecoderPtr make_decoder(const SourceFile& file) {
    DecoderPtr d(new Decoder);
    std::memset(&d->cinfo, 0, sizeof d->cinfo);
    d->created = false;
    d->cinfo.err = jpeg_std_error(&d->err.pub);
    d->err.pub.error_exit = on_error_exit;
    d->err.pub.emit_message = on_message;
    d->err.message[0] = 0;
    d->err.warning[0] = 0;
    d->err.cut_short = false;
    d->src.pub.init_source = init_source;
    d->src.pub.fill_input_buffer = fill_input_buffer;
    d->src.pub.skip_input_data = skip_input_data;
    d->src.pub.resync_to_restart = jpeg_resync_to_restart;
    d->src.pub.term_source = term_source;
    d->src.pub.bytes_in_buffer = 0;
    d->src.pub.next_input_byte = nullptr;
    d->src.file = &file;
    d->src.offset = 0;
    d->src.ended = false;
    return d;
}

bool header_phase(Decoder* d) {
    if (setjmp(d->err.jump)) {
        return false;
    }
    jpeg_create_decompress(&d->cinfo);
    d->created = true;
    d->cinfo.src = &d->src.pub;
    jpeg_save_markers(&d->cinfo, JPEG_APP0 + 1, 0xFFFF);
    jpeg_read_header(&d->cinfo, TRUE);
    return true;
}

bool dimensions_phase(Decoder* d) {
    if (setjmp(d->err.jump)) {
        return false;
    }
    jpeg_calc_output_dimensions(&d->cinfo);
    return true;
}

bool pixels_phase(Decoder* d, uchar* bits, qsizetype stride, int height) {
    if (setjmp(d->err.jump)) {
        return false;
    }
    jpeg_start_decompress(&d->cinfo);
    JSAMPROW rows[16];
    while (d->cinfo.output_scanline < d->cinfo.output_height) {
        const int first = static_cast<int>(d->cinfo.output_scanline);
        int n = 0;
        for (; n < 16 && first + n < height; ++n) {
            rows[n] = bits + (first + n) * stride;
        }
        jpeg_read_scanlines(&d->cinfo, rows, static_cast<JDIMENSION>(n));
        if (d->err.cut_short) {
            break;
        }
    }
    if (!d->err.cut_short) {
        // Reads on to the end marker; a file that ends without one gets the
        // marker the source feeds at its end.
        jpeg_finish_decompress(&d->cinfo);
    }
    return true;
}

QString reason_of(const Decoder& d) {
    return d.err.message[0] ? QString::fromLatin1(d.err.message)
                            : QStringLiteral("the file is not a readable JPEG picture");
}

int orientation_of(const jpeg_decompress_struct& cinfo) {
    for (jpeg_saved_marker_ptr m = cinfo.marker_list; m; m = m->next) {
        if (m->marker == JPEG_APP0 + 1 && m->data_length > 6 &&
            std::memcmp(m->data, "Exif\0\0", 6) == 0) {
            return exif_orientation(m->data + 6, static_cast<qsizetype>(m->data_length) - 6);
        }
    }
    return 1;
}

// A Huffman-coded picture spends at least one bit on each luminance block, so
// a file far smaller than that is cut short or lies about its size; refusing
// it here keeps a tiny file from claiming gigabytes of pixels.
void check_plausible(const SourceFile& file, const jpeg_decompress_struct& cinfo) {
    const QSize size(static_cast<int>(cinfo.image_width), static_cast<int>(cinfo.image_height));
    check_picture_size(file.path(), size);
    if (cinfo.arith_code) {
        return;
    }
    const qint64 blocks =
        (qint64(cinfo.image_width) + 7) / 8 * ((qint64(cinfo.image_height) + 7) / 8);
    if (file.size() * 16 < blocks) {
        fail_to_read(file.path(), QStringLiteral("the file is damaged or incomplete."));
    }
}

quint16 read16(const uchar* p, bool le) {
    return le ? quint16(p[0] | (p[1] << 8)) : quint16((p[0] << 8) | p[1]);
}

quint32 read32(const uchar* p, bool le) {
    return le ? quint32(p[0] | (p[1] << 8) | (p[2] << 16) | (quint32(p[3]) << 24))
              : quint32((quint32(p[0]) << 24) | (p[1] << 16) | (p[2] << 8) | p[3]);
}

}  // namespace

int exif_orientation(const uchar* data, qsizetype length) {
    if (length < 8) {
        return 1;
    }
    bool le;
    if (data[0] == 'I' && data[1] == 'I') {
        le = true;
    } else if (data[0] == 'M' && data[1] == 'M') {
        le = false;
    } else {
        return 1;
    }
    if (read16(data + 2, le) != 42) {
        return 1;
    }
    const quint32 ifd = read32(data + 4, le);
    if (ifd > quint32(length) || length - ifd < 2) {
        return 1;
    }
    const int count = read16(data + ifd, le);
    for (int i = 0; i < count; ++i) {
        const qint64 entry = qint64(ifd) + 2 + qint64(i) * 12;
        if (entry + 12 > length) {
            break;
        }
        if (read16(data + entry, le) == 0x0112) {
            const int type = read16(data + entry + 2, le);
            const int value = type == 3 ? read16(data + entry + 8, le)
                                        : static_cast<int>(read32(data + entry + 8, le));
            return value >= 1 && value <= 8 ? value : 1;
        }
    }
    return 1;
}

QImage apply_orientation(const QImage& image, int orientation) {
    QTransform quarter;
    quarter.rotate(90);
    switch (orientation) {
        case 2:
            return image.mirrored(true, false);
        case 3:
            return image.mirrored(true, true);
        case 4:
            return image.mirrored(false, true);
        case 5:
            return image.transformed(quarter).mirrored(true, false);
        case 6:
            return image.transformed(quarter);
        case 7:
            return image.transformed(quarter).mirrored(false, true);
        case 8:
            return image.transformed(QTransform().rotate(270));
        default:
            return image;
    }
}

ImageHeader read_jpeg_header(const SourceFile& file) {
    DecoderPtr d = make_decoder(file);
    if (!header_phase(d.get())) {
        fail_to_read(file.path(), d->src.ended
                                      ? QStringLiteral("the file is damaged or incomplete.")
                                      : reason_of(*d));
    }
    check_plausible(file, d->cinfo);
    ImageHeader h;
    h.type = ImageType::Jpeg;
    h.stored =
        QSize(static_cast<int>(d->cinfo.image_width), static_cast<int>(d->cinfo.image_height));
    h.sides_swapped = orientation_of(d->cinfo) >= 5;
    return h;
}

int jpeg_scale_num(QSize stored, QSize at_least) {
    const qint64 w = stored.width();
    const qint64 h = stored.height();
    for (int n = 1; n <= 8; ++n) {
        if ((w * n + 7) / 8 >= at_least.width() && (h * n + 7) / 8 >= at_least.height()) {
            return n;
        }
    }
    return 8;
}

QImage decode_jpeg(const SourceFile& file, QSize at_least, Resampling quality) {
    DecoderPtr d = make_decoder(file);
    if (!header_phase(d.get())) {
        fail_to_read(file.path(), reason_of(*d));
    }
    check_plausible(file, d->cinfo);
    jpeg_decompress_struct& c = d->cinfo;
    const int orientation = orientation_of(c);

    c.scale_num = static_cast<unsigned>(jpeg_scale_num(
        QSize(static_cast<int>(c.image_width), static_cast<int>(c.image_height)), at_least));
    c.scale_denom = 8;
    c.dct_method = quality == Resampling::Fast ? JDCT_IFAST : JDCT_ISLOW;
    c.do_fancy_upsampling = quality == Resampling::Fast ? FALSE : TRUE;
    QImage::Format format;
    bool cmyk = false;
    if (c.jpeg_color_space == JCS_GRAYSCALE) {
        c.out_color_space = JCS_GRAYSCALE;
        format = QImage::Format_Grayscale8;
    } else if (c.jpeg_color_space == JCS_CMYK || c.jpeg_color_space == JCS_YCCK) {
        c.out_color_space = JCS_CMYK;
        format = QImage::Format_RGB32;
        cmyk = true;
    } else {
#if Q_BYTE_ORDER == Q_LITTLE_ENDIAN
        c.out_color_space = JCS_EXT_BGRX;
#else
        c.out_color_space = JCS_EXT_XRGB;
#endif
        format = QImage::Format_RGB32;
    }
    if (!dimensions_phase(d.get())) {
        fail_to_read(file.path(), reason_of(*d));
    }
    const QSize out_size(static_cast<int>(c.output_width), static_cast<int>(c.output_height));
    check_allocation(file.path(), out_size);
    QImage image(out_size, format);
    if (image.isNull()) {
        fail_to_read(file.path(), QStringLiteral("there is not enough memory for the picture."));
    }
    if (!pixels_phase(d.get(), image.bits(), image.bytesPerLine(), out_size.height())) {
        fail_to_read(file.path(), reason_of(*d));
    }
    if (d->err.cut_short || c.output_scanline < c.output_height) {
        fail_to_read(file.path(), QStringLiteral("the file is damaged or incomplete."));
    }
    // As libjpeg's own tools do, a file that lacks only its end marker gives
    // its picture; the log is told.
    if (d->src.ended) {
        image_warning(file.path(), QStringLiteral("the JPEG file has no end marker."));
    } else if (d->err.warning[0] != 0) {
        image_warning(file.path(), QString::fromLatin1(d->err.warning));
    }
    if (cmyk) {
        // Adobe's CMYK JPEGs store the inks inverted.
        const bool inverted = c.saw_Adobe_marker;
        for (int y = 0; y < image.height(); ++y) {
            uchar* p = image.scanLine(y);
            auto* out = reinterpret_cast<QRgb*>(p);
            for (int x = 0; x < image.width(); ++x) {
                int cc = p[4 * x], m = p[4 * x + 1], yy = p[4 * x + 2], k = p[4 * x + 3];
                if (!inverted) {
                    cc = 255 - cc;
                    m = 255 - m;
                    yy = 255 - yy;
                    k = 255 - k;
                }
                out[x] = qRgb(cc * k / 255, m * k / 255, yy * k / 255);
            }
        }
    }
    return apply_orientation(image, orientation);
}
