// Saves SAVED_PATH with the title "Kept" (the Main tab's Save), enters the
// listed paths under the catalog "Kept" (the Database button), prints
// "saved" and waits, the catalog open, to be killed as a window can be.

#include "catalog/update_database.h"
#include "lists/main_list.h"
#include "support/test_home.h"

#include <QCoreApplication>

#include <unistd.h>
#include <cstdio>

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const QStringList args = QCoreApplication::arguments();
    TestHome home(false);
    home.app.database_path = args.value(1);
    if (args.size() < 3 || !home.app.database.open(home.app.database_path)) {
        std::fprintf(stderr, "usage: catalog_save_child CATALOG SAVED_PATH LISTED_PATH...\n");
        return 2;
    }
    save_file_fields(home.ctx, args.at(2), {"Kept", QString(), QString()}, QString());
    ItemList list;
    list.add_many(args.mid(3));
    update_database_from_list(home.ctx, list, "Kept", true);
    std::printf("saved\n");
    std::fflush(stdout);
    for (;;) {
        pause();
    }
}
