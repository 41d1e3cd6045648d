#pragma once

#include "app/program_state.h"
#include "core/context.h"

#include <QString>

#include <cstdio>

namespace bench {

// A command's surroundings without a window, on one catalog: the program's
// state with the catalog open, the benchmark's dialogs, and no status bar.
template <class BenchDialogs>
struct CatalogSession {
    // Opens `catalog` with `app_dir` as the application directory; says why
    // on standard error when it cannot.
    bool open(const QString& app_dir, const QString& catalog) {
        app.app_dir = app_dir;
        app.database_path = catalog;
        if (!app.database.open(catalog)) {
            std::fprintf(stderr, "cannot open %s\n", qPrintable(catalog));
            return false;
        }
        return true;
    }

    ProgramState program;
    AppState& app = program.app;
    BenchDialogs dialogs;
    UiHooks ui;
    NoShellServices shell;
    Context ctx{app, dialogs, ui, shell};
};

}  // namespace bench
