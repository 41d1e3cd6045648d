#pragma once

#include <QApplication>

class Dialogs;

// The application object. Its event dispatch is the last-resort handler: an
// error that no command catches is shown in a box captioned with the
// application title, the command it broke is abandoned, and the application
// keeps running.
class QuilldexApplication : public QApplication {
    Q_OBJECT
public:
    QuilldexApplication(int& argc, char** argv);

    // Where the last-resort handler shows its box; none: standard error.
    void set_error_dialogs(Dialogs* dialogs) { dialogs_ = dialogs; }
    bool notify(QObject* receiver, QEvent* event) override;

    // Shows an error that nothing caught.
    void report_uncaught(const QString& text);

private:
    Dialogs* dialogs_ = nullptr;
};
