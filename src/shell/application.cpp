#include "shell/application.h"

#include "core/dialogs.h"
#include "core/run_error.h"

#include <cstdio>

QuilldexApplication::QuilldexApplication(int& argc, char** argv) : QApplication(argc, argv) {}

void QuilldexApplication::report_uncaught(const QString& text) {
    // The busy pointer of the abandoned command must not outlive it.
    while (QApplication::overrideCursor()) {
        QApplication::restoreOverrideCursor();
    }
    if (dialogs_) {
        dialogs_->plain(text);
    } else {
        std::fprintf(stderr, "%s\n", qPrintable(text));
    }
}

bool QuilldexApplication::notify(QObject* receiver, QEvent* event) {
    try {
        return QApplication::notify(receiver, event);
    } catch (const RunError& e) {
        report_uncaught(e.text());
    } catch (const std::exception& e) {
        report_uncaught(QString::fromUtf8(e.what()));
    }
    return false;
}
