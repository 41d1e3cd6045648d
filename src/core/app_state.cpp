#include "core/app_state.h"

AppState::AppState(Database& database, Recordset& shared_recordset, ImageControl* worker)
    : application_title(QStringLiteral("Quilldex v1.62")),
      database(database),
      shared_recordset(shared_recordset),
      worker(worker) {}
