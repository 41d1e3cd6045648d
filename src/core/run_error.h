#pragma once

#include <QString>

#include <stdexcept>

// An error that abandons the command in which it happens. Commands that pass
// failures over catch it around each step; where nothing catches it, the
// last-resort handler shows its text in a box captioned with the application
// title and the application keeps running.
class RunError : public std::runtime_error {
public:
    explicit RunError(const QString& text) : std::runtime_error(text.toStdString()), text_(text) {}
    const QString& text() const { return text_; }

private:
    QString text_;
};

// Runs one step of a command whose failures are passed over: an error in the
// step is ignored and the caller goes on with the next one. Returns false when
// the step failed.
template <typename F>
bool passed_over(F&& step) {
    try {
        step();
        return true;
    } catch (const std::exception&) {
        return false;
    }
}
