#include "cli/cli.h"

#include "catalog/update_database.h"

#include <QDir>

namespace {

// Enters the paths into the catalog as the "Database" button does over a
// whole list, and prints the statistics message.
int run_catalog_add(CliSession& s, const QStringList& args) {
    const CliArgs a(args);
    if (!a.error.isEmpty()) {
        s.err << a.error << '\n';
        return 1;
    }
    if (!a.has(QStringLiteral("catalog"))) {
        s.err << "catalog-add needs --catalog NAME\n";
        return 1;
    }
    ItemList list;
    QStringList paths;
    for (const QString& word : a.words) {
        paths << (QDir::isRelativePath(word) ? QDir::current().absoluteFilePath(word) : word);
    }
    list.add_many(paths);
    const UpdateStatistics stats =
        update_database_from_list(s.ctx, list, a.value(QStringLiteral("catalog")), true);
    s.out << update_statistics_message(stats);
    return 0;
}

const CliRegistration registration{"catalog-add", "--catalog NAME PATH...", &run_catalog_add,
                                   false};

}  // namespace
