#pragma once

#include <QApplication>

// The application object that widget tests need, made once for the program.
// It is never destroyed: run at exit, its destructor would meet Qt's own
// statics already gone.
inline void ensure_widget_app() {
    if (!QApplication::instance()) {
        static int argc = 1;
        static char name[] = "test_imaging";
        static char* argv[] = {name, nullptr};
        new QApplication(argc, argv);
    }
}

// A base to list first among a fixture's bases, so that the application
// exists before any widget member is made.
struct WithWidgetApp {
    WithWidgetApp() { ensure_widget_app(); }
};
