#include "imaging/jpeg_writer.h"

#include "core/run_error.h"

#include <algorithm>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <jpeglib.h>

namespace {

struct ErrorManager {
    jpeg_error_mgr pub;
    std::jmp_buf jump;
    char message[JMSG_LENGTH_MAX];
};

void on_error_exit(j_common_ptr cinfo) {
    auto* err = reinterpret_cast<ErrorManager*>(cinfo->err);
    (*cinfo->err->format_message)(cinfo, err->message);
    std::longjmp(err->jump, 1);
}

void on_message(j_common_ptr, int) {}

struct Encoder {
    jpeg_compress_struct cinfo;
    ErrorManager err;
    unsigned char* buffer;
    unsigned long size;
    bool created;
};

// Plain values only between setjmp and the end: a jump skips no destructor.
bool encode_phase(Encoder* e, const QImage* image, const JpegSettings* s) {
    if (setjmp(e->err.jump)) {
        return false;
    }
    jpeg_create_compress(&e->cinfo);
    e->created = true;
    jpeg_mem_dest(&e->cinfo, &e->buffer, &e->size);
    e->cinfo.image_width = static_cast<JDIMENSION>(image->width());
    e->cinfo.image_height = static_cast<JDIMENSION>(image->height());
    const bool grey = image->format() == QImage::Format_Grayscale8;
    if (grey) {
        e->cinfo.input_components = 1;
        e->cinfo.in_color_space = JCS_GRAYSCALE;
    } else {
        e->cinfo.input_components = 4;
#if Q_BYTE_ORDER == Q_LITTLE_ENDIAN
        e->cinfo.in_color_space = JCS_EXT_BGRX;
#else
        e->cinfo.in_color_space = JCS_EXT_XRGB;
#endif
    }
    jpeg_set_defaults(&e->cinfo);
    jpeg_set_quality(&e->cinfo, s->quality, TRUE);
    e->cinfo.smoothing_factor = s->smoothing;
    e->cinfo.optimize_coding = s->optimize ? TRUE : FALSE;
    jpeg_start_compress(&e->cinfo, TRUE);
    while (e->cinfo.next_scanline < e->cinfo.image_height) {
        JSAMPROW row =
            const_cast<JSAMPROW>(image->constScanLine(static_cast<int>(e->cinfo.next_scanline)));
        jpeg_write_scanlines(&e->cinfo, &row, 1);
    }
    jpeg_finish_compress(&e->cinfo);
    return true;
}

}  // namespace

QByteArray encode_jpeg(const QImage& source, const JpegSettings& settings) {
    if (source.isNull() || source.width() > JPEG_MAX_DIMENSION ||
        source.height() > JPEG_MAX_DIMENSION) {
        throw RunError(QStringLiteral("The picture cannot be saved as JPEG: its size is %1 x %2.")
                           .arg(source.width())
                           .arg(source.height()));
    }
    const QImage image = source.format() == QImage::Format_Grayscale8
                             ? source
                             : source.convertToFormat(QImage::Format_RGB32);
    JpegSettings s = settings;
    s.quality = std::clamp(s.quality, 1, 100);
    s.smoothing = std::clamp(s.smoothing, 0, 100);

    Encoder e;
    std::memset(&e.cinfo, 0, sizeof e.cinfo);
    e.buffer = nullptr;
    e.size = 0;
    e.created = false;
    e.err.message[0] = 0;
    e.cinfo.err = jpeg_std_error(&e.err.pub);
    e.err.pub.error_exit = on_error_exit;
    e.err.pub.emit_message = on_message;
    const bool ok = encode_phase(&e, &image, &s);
    QByteArray out;
    if (ok) {
        out = QByteArray(reinterpret_cast<const char*>(e.buffer), static_cast<qsizetype>(e.size));
    }
    if (e.created) {
        jpeg_destroy_compress(&e.cinfo);
    }
    std::free(e.buffer);
    if (!ok) {
        throw RunError(QStringLiteral("The picture cannot be saved as JPEG: ") +
                       QString::fromLatin1(e.err.message));
    }
    return out;
}
