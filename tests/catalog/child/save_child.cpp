// A process that saves rows as the window does and then stays, the catalog
// open, until it is killed: what a killed window leaves in the catalog file.
// Usage: catalog_save_child CATALOG SAVED_PATH LISTED_PATH...
// Saves SAVED_PATH with the title "Kept" (the Main tab's Save), enters the
// listed paths under the catalog "Kept" (the Database button), prints
// "saved" and waits.

#include "app/program_state.h"
#include "catalog/update_database.h"
#include "lists/main_list.h"
#include "support/scripted_dialogs.h"

#include <QCoreApplication>

#include <unistd.h>
#include <cstdio>

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const QStringList args = QCoreApplication::arguments();
    if (args.size() < 3) {
        std::fprintf(stderr, "usage: catalog_save_child CATALOG SAVED_PATH LISTED_PATH...\n");
        return 2;
    }
    ProgramState program;
    AppState& app = program.app;
    app.database_path = args.at(1);
    if (!app.database.open(app.database_path)) {
        std::fprintf(stderr, "cannot open %s\n", qPrintable(app.database_path));
        return 1;
    }
    ScriptedDialogs dialogs;
    RecordingUi ui;
    RecordingShell shell;
    Context ctx{app, dialogs, ui, shell};
    save_file_fields(ctx, args.at(2), {QStringLiteral("Kept"), QString(), QString()}, QString());
    ItemList list;
    list.add_many(args.mid(3));
    update_database_from_list(ctx, list, QStringLiteral("Kept"), true);
    std::printf("saved\n");
    std::fflush(stdout);
    for (;;) {
        pause();
    }
}
