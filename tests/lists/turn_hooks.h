#pragma once

#include "shell/window_hooks.h"

#include <functional>

// The message loop as a running command meets it: `on_turn` runs at each
// turn the command gives, as another event would (a click on Cancel, a file
// deleted meanwhile).
class TurnHooks : public UiHooks {
public:
    void yield() override {
        ++turns;
        if (on_turn) {
            on_turn(turns);
        }
    }
    int turns = 0;
    std::function<void(int turn)> on_turn;
};
