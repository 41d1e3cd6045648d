#pragma once

#include "core/window_hooks.h"

// Keeps the busy pointer on for the life of a command, and turns it off also
// when the command ends with an error.
class BusyPointer {
public:
    explicit BusyPointer(UiHooks& ui) : ui_(ui) { ui_.set_busy(true); }
    ~BusyPointer() { ui_.set_busy(false); }
    BusyPointer(const BusyPointer&) = delete;
    BusyPointer& operator=(const BusyPointer&) = delete;

private:
    UiHooks& ui_;
};
