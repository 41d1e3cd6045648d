#include "support/gui_app.h"

#include <QApplication>
#include <QFont>

void ensure_gui_app() {
    if (QApplication::instance()) {
        return;
    }
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    static int argc = 1;
    static char name[] = "quilldex-test";
    static char* argv[] = {name, nullptr};
    static QApplication app(argc, argv);
    QApplication::setFont(QFont(QStringLiteral("DejaVu Sans"), 8));
}
