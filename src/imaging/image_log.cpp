#include "imaging/image_log.h"

#include "core/file_helpers.h"

#include <QtGlobal>

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
