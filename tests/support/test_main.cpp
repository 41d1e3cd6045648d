#include "shell/application.h"
#include "support/pg_server.h"

#include <gtest/gtest.h>

// Every test program runs with the application object, headless, so that
// pages and dialogs can be built and driven through their widgets.
int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QuilldexApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    // The database server starts only for a test that asks for it.
    ::testing::AddGlobalTestEnvironment(new PgServerEnvironment);
    return RUN_ALL_TESTS();
}
