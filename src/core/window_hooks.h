#pragma once

#include <QString>

// What a running command needs of the window around it: the text of the first
// panel of the status bar, a turn of the message loop, and the busy pointer.
// The default does nothing, which is what the command-line program wants.
class UiHooks {
public:
    virtual ~UiHooks() = default;
    virtual void set_status(const QString& text) { status_ = text; }
    virtual QString status() const { return status_; }
    // Gives the message loop a turn, so that a stop button can be pressed.
    virtual void yield() {}
    virtual void set_busy(bool busy) { busy_ = busy; }
    bool busy() const { return busy_; }

private:
    QString status_;
    bool busy_ = false;
};
