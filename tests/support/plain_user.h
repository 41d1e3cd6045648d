#pragma once

#include <QString>

// Tests run as root, and root passes over file permissions. These take away
// the capabilities that override them, so that a test meets permissions as a
// plain user does: in the calling thread while a PlainUserThread lives, or
// for good in a started program (run in its child before it starts; the
// child ends with kNoPlainUser when that cannot be done).
class PlainUserThread {
public:
    PlainUserThread();
    ~PlainUserThread();
    // Empty when permissions bind; otherwise why not, for a skip.
    QString why_not() const;

private:
    unsigned saved_ = 0;
    bool dropped_ = false;
};

void become_plain_user_in_child();
constexpr int kNoPlainUser = 77;
