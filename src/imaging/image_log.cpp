#include "imaging/image_log.h"

#include "core/file_helpers.h"

#include <QLibrary>
#include <QtGlobal>

#include <cstdarg>
#include <cstdio>

#include <mutex>

namespace {

std::mutex g_mutex;
QString g_log_path;
QtMessageHandler g_previous = nullptr;

void on_qt_message(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    const QString category = QString::fromLatin1(context.category ? context.category : "");
    if (type != QtFatalMsg && is_image_library_message(category, text)) {
        image_warning(QString(), text);
        return;
    }
    if (g_previous) {
        g_previous(type, context, text);
    }
}

// libtiff's handler type and the call that sets one; its header is not
// needed for two functions of a stable interface.
using TiffHandler = void (*)(const char* module, const char* format, va_list args);
using SetTiffHandler = TiffHandler (*)(TiffHandler);

void on_tiff_message(const char* module, const char* format, va_list args) {
    char text[1024];
    std::vsnprintf(text, sizeof text, format, args);
    image_warning(QString(),
                  (module ? QString::fromLocal8Bit(module) + QStringLiteral(": ") : QString()) +
                      QString::fromLocal8Bit(text));
}

}  // namespace

void set_image_log(const QString& log_path) {
    const std::lock_guard<std::mutex> lock(g_mutex);
    g_log_path = log_path;
}

void image_warning(const QString& path, const QString& text) {
    const std::lock_guard<std::mutex> lock(g_mutex);
    if (g_log_path.isEmpty()) {
        return;
    }
    try {
        write_log(g_log_path, QStringLiteral("image"),
                  path.isEmpty() ? text : path + QStringLiteral(": ") + text, 0);
    } catch (...) {
        // A log that cannot be written loses the line; the picture is not
        // refused for it.
    }
}

bool is_image_library_message(const QString& category, const QString& text) {
    if (category.startsWith(QLatin1String("qt.imageformats")) ||
        category.startsWith(QLatin1String("qt.gui.imageio"))) {
        return true;
    }
    // Qt's readers name themselves ("QTgaHandler::canRead() called with no
    // device"); libtiff names the routine that complains ("TIFFFetchDirectory").
    static const char* const starts[] = {"QTgaHandler",    "QTiffHandler",
                                         "QGifHandler",    "QPngHandler",
                                         "QBmpHandler",    "QWebpHandler",
                                         "QImageReader",   "libpng",
                                         "TIFF",           "Sorry, requested compression",
                                         "QImageIOHandler"};
    for (const char* s : starts) {
        if (text.startsWith(QLatin1String(s))) {
            return true;
        }
    }
    return false;
}

void route_library_warnings() {
    static std::once_flag once;
    std::call_once(once, [] { g_previous = qInstallMessageHandler(on_qt_message); });
}

void route_tiff_warnings() {
    static std::once_flag once;
    std::call_once(once, [] {
        // The library Qt's TIFF reader links; loading it here first is
        // loading that very library, whose handlers are the process's.
        static QLibrary tiff(QStringLiteral("tiff"), 6);
        if (!tiff.load()) {
            tiff.setFileNameAndVersion(QStringLiteral("tiff"), 5);
            if (!tiff.load()) {
                return;
            }
        }
        const auto set_warning =
            reinterpret_cast<SetTiffHandler>(tiff.resolve("TIFFSetWarningHandler"));
        const auto set_error =
            reinterpret_cast<SetTiffHandler>(tiff.resolve("TIFFSetErrorHandler"));
        if (set_warning) {
            set_warning(on_tiff_message);
        }
        if (set_error) {
            set_error(on_tiff_message);
        }
    });
}
