#include "imaging/magick_library.h"

#include <QLibrary>

#include <magick/api.h>

#include <cstring>
#include <mutex>

// GraphicsMagick and the codecs it links (HEIF, AV1, JPEG XL, ...) are loaded
// the first time an older type is opened, not when a program starts: most runs
// never need them, and loading them cost every start of both programs more
// than the rest of the start together. Its C interface is called through
// pointers taken from the library; the header gives the types and the
// symbols' exported names.

namespace {

#define QD_SYMBOL_NAME(name) #name
#define QD_EXPORTED_NAME(name) QD_SYMBOL_NAME(name)

struct MagickLibrary {
    decltype(&InitializeMagick) initialize = nullptr;
    decltype(&SetMagickResourceLimit) set_limit = nullptr;
    decltype(&CloneImageInfo) clone_info = nullptr;
    decltype(&DestroyImageInfo) destroy_info = nullptr;
    decltype(&GetExceptionInfo) get_exception = nullptr;
    decltype(&DestroyExceptionInfo) destroy_exception = nullptr;
    decltype(&BlobToImage) read = nullptr;
    decltype(&PingBlob) ping = nullptr;
    decltype(&DispatchImage) dispatch = nullptr;
    decltype(&DestroyImage) destroy_image = nullptr;
    QString missing;  // why the library cannot be used; "" when it can
};

template <typename F>
bool resolve(QLibrary& library, F& target, const char* name) {
    target = reinterpret_cast<F>(library.resolve(name));
    return target != nullptr;
}

const MagickLibrary& library(qint64 max_pixels) {
    static const MagickLibrary m = [max_pixels] {
        MagickLibrary m;
        static QLibrary so(QStringLiteral(QUILLDEX_GRAPHICSMAGICK_LIBRARY));
        if (!so.load()) {
            m.missing =
                QStringLiteral("the decoder for this type (GraphicsMagick) is not installed.");
            return m;
        }
        const bool all = resolve(so, m.initialize, QD_EXPORTED_NAME(InitializeMagick)) &&
                         resolve(so, m.set_limit, QD_EXPORTED_NAME(SetMagickResourceLimit)) &&
                         resolve(so, m.clone_info, QD_EXPORTED_NAME(CloneImageInfo)) &&
                         resolve(so, m.destroy_info, QD_EXPORTED_NAME(DestroyImageInfo)) &&
                         resolve(so, m.get_exception, QD_EXPORTED_NAME(GetExceptionInfo)) &&
                         resolve(so, m.destroy_exception, QD_EXPORTED_NAME(DestroyExceptionInfo)) &&
                         resolve(so, m.read, QD_EXPORTED_NAME(BlobToImage)) &&
                         resolve(so, m.ping, QD_EXPORTED_NAME(PingBlob)) &&
                         resolve(so, m.dispatch, QD_EXPORTED_NAME(DispatchImage)) &&
                         resolve(so, m.destroy_image, QD_EXPORTED_NAME(DestroyImage));
        if (!all) {
            m.missing = QStringLiteral("the installed GraphicsMagick lacks a needed function.");
            return m;
        }
        m.initialize(nullptr);
        m.set_limit(PixelsResource, max_pixels);
        m.set_limit(WidthResource, 65535);
        m.set_limit(HeightResource, 65535);
        m.set_limit(MemoryResource, max_pixels * 8);
        m.set_limit(MapResource, max_pixels * 8);
        // Never spill a pixel cache to disk.
        m.set_limit(DiskResource, 0);
        return m;
    }();
    return m;
}

std::mutex& magick_mutex() {
    static std::mutex m;
    return m;
}

// The library's objects of one read, released however the read ends.
struct Reading {
    explicit Reading(const MagickLibrary& lib) : m(lib) { m.get_exception(&exception); }
    ~Reading() {
        if (image) {
            m.destroy_image(image);
        }
        if (info) {
            m.destroy_info(info);
        }
        m.destroy_exception(&exception);
    }
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;

    // The reason of a warning or error the library reported; a warning fails
    // too, since it does not promise the whole picture was read.
    QString failure() const {
        if (exception.severity != UndefinedException) {
            QString reason = QString::fromLocal8Bit(exception.reason ? exception.reason : "");
            if (exception.description && *exception.description) {
                reason +=
                    QStringLiteral(" (%1)").arg(QString::fromLocal8Bit(exception.description));
            }
            if (!reason.trimmed().isEmpty()) {
                return reason;
            }
        }
        if (!image || exception.severity != UndefinedException) {
            return QStringLiteral("the file is damaged or incomplete.");
        }
        return {};
    }

    const MagickLibrary& m;
    ExceptionInfo exception{};
    ImageInfo* info = nullptr;
    Image* image = nullptr;
};

}  // namespace

QString magick_read(const QByteArray& data, const char* magick, QSize& size,
                    const std::function<uchar*(QSize)>& pixels, qint64 max_pixels) {
    const std::lock_guard<std::mutex> lock(magick_mutex());
    const MagickLibrary& m = library(max_pixels);
    if (!m.missing.isEmpty()) {
        return m.missing;
    }
    Reading r(m);
    r.info = m.clone_info(nullptr);
    std::strncpy(r.info->magick, magick, sizeof r.info->magick - 1);
    // The first picture is the one shown; later frames of an animation are
    // neither read nor held.
    r.info->subimage = 0;
    r.info->subrange = 1;
    const auto length = static_cast<size_t>(data.size());
    r.image = pixels ? m.read(r.info, data.constData(), length, &r.exception)
                     : m.ping(r.info, data.constData(), length, &r.exception);
    if (QString why = r.failure(); !why.isEmpty()) {
        return why;
    }
    size = QSize(static_cast<int>(r.image->columns), static_cast<int>(r.image->rows));
    if (!pixels) {
        return {};
    }
    uchar* target = pixels(size);
    m.dispatch(r.image, 0, 0, r.image->columns, r.image->rows,
#if Q_BYTE_ORDER == Q_LITTLE_ENDIAN
               "BGRA",
#else
               "ARGB",
#endif
               CharPixel, target, &r.exception);
    return r.failure();
}
