// A process that saves rows as the window does and then stays, the catalog
// open, until it is killed: what a killed window leaves in the catalog file.
// Usage: catalog_save_child CATALOG SAVED_PATH LISTED_PATH...
// Saves SAVED_PATH with the title "Kept" (the Main tab's Save), enters the
// listed paths under the catalog "Kept" (the Database button), prints
// "saved" and waits. With "--many N" in place of the paths it enters N made-up
// paths instead, and prints "working" half-way through the command.

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
    AppState app;
    app.database_path = args.at(1);
    if (!app.database.open(app.database_path)) {
        std::fprintf(stderr, "cannot open %s\n", qPrintable(app.database_path));
        return 1;
    }
    ScriptedDialogs dialogs;
    RecordingUi ui;
    RecordingShell shell;
    Context ctx{app, dialogs, ui, shell};
    ItemList list;
    if (args.at(2) == QLatin1String("--many") && args.size() == 4) {
        QStringList paths;
        for (int i = 0; i < args.at(3).toInt(); ++i) {
            paths << QStringLiteral("/p/many/%1.jpg").arg(i, 6, 10, QLatin1Char('0'));
        }
        list.add_many(paths);
        ui.on_turn = [](int turn) {
            if (turn == 100000) {
                std::printf("working\n");
                std::fflush(stdout);
            }
        };
    } else {
        save_file_fields(ctx, args.at(2), {QStringLiteral("Kept"), QString(), QString()},
                         QString());
        list.add_many(args.mid(3));
    }
    update_database_from_list(ctx, list, QStringLiteral("Kept"), true);
    std::printf("saved\n");
    std::fflush(stdout);
    for (;;) {
        pause();
    }
}
