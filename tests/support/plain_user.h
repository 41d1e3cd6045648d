#pragma once

#include <QString>

// Tests run as root, and root passes over the read, write and search
// permissions of files. These let a test meet them as a plain user does,
// without another user: the capabilities that override them are taken away,
// from the calling thread for a while, or from a started program for good.

// While it lives, permissions bind the calling thread (and only it).
class PlainUserThread {
public:
    PlainUserThread();
    ~PlainUserThread();
    PlainUserThread(const PlainUserThread&) = delete;
    PlainUserThread& operator=(const PlainUserThread&) = delete;

    // Empty when permissions now bind; otherwise why they do not, for a skip.
    const QString& why_not() const { return why_not_; }

private:
    bool restore_ = false;
    unsigned saved_[2] = {0, 0};
    QString why_not_;
};

// For a started program, run in the child before it starts: the program
// runs with permissions binding. When that cannot be done the child ends at
// once with kNoPlainUser as its exit code.
void become_plain_user_in_child();
constexpr int kNoPlainUser = 77;
