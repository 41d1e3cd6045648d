#include "shell/app_state.h"

AppState::AppState() : application_title(QStringLiteral("Quilldex v1.62")) {}
