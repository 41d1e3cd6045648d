#pragma once

#include "catalog/database.h"
#include "core/app_state.h"
#include "imaging/image_control.h"

// What a program owns for one run: the catalog connection and the hidden
// worker, which belong to their subsystems, and the application state that
// refers to them. The state is declared last, so it goes first at the end.
struct ProgramState {
    Database database;
    Recordset shared_recordset;
    ImageControl worker{ImageControl::kWorkerTwips};
    AppState app{database, shared_recordset, &worker};
};
