#pragma once

#include "core/app_state.h"
#include "core/dialogs.h"
#include "core/shell_services.h"
#include "core/window_hooks.h"

// What a command takes from its surroundings: the shared state, the dialogs,
// the window's status bar and message loop, and the platform's "open".
struct Context {
    AppState& app;
    Dialogs& dialogs;
    UiHooks& ui;
    ShellServices& shell;
};
