#include "cli/cli.h"

#include "catalog/update_database.h"

#include <QDir>
#include <QFile>

namespace {

// Enters the paths into the catalog as the "Database" button does over a
// whole list, and prints the statistics message. Every row is in the catalog
// file when the statistics are printed.
int run_catalog_add(CliSession& s, const QStringList& args) {
    const CliArgs a(args);
    if (!a.error.isEmpty()) {
        return s.usage_error(a.error);
    }
    if (!a.has(QStringLiteral("catalog"))) {
        return s.usage_error(QStringLiteral("catalog-add needs --catalog NAME"));
    }
    QStringList words = a.words;
    if (a.has(QStringLiteral("from"))) {
        // A list too long for the command line, one path a line ("-" for
        // standard input).
        const QString from = a.value(QStringLiteral("from"));
        QFile file(from);
        const bool opened = from == QLatin1String("-")
                                ? file.open(stdin, QIODevice::ReadOnly | QIODevice::Text)
                                : file.open(QIODevice::ReadOnly | QIODevice::Text);
        if (!opened) {
            s.err << "cannot read " << from << '\n';
            return 1;
        }
        const QStringList lines = QString::fromUtf8(file.readAll()).split(u'\n');
        for (const QString& line : lines) {
            if (!line.isEmpty()) {
                words << line;
            }
        }
    }
    ItemList list;
    QStringList paths;
    paths.reserve(words.size());
    for (const QString& word : words) {
        paths << (QDir::isRelativePath(word) ? QDir::current().absoluteFilePath(word) : word);
    }
    list.add_many(paths);
    const UpdateStatistics stats =
        update_database_from_list(s.ctx, list, a.value(QStringLiteral("catalog")), true);
    s.out << update_statistics_message(stats);
    return 0;
}

const CliRegistration registration{
    "catalog-add",
    "--catalog NAME [--from LIST|-] PATH...",
    &run_catalog_add,
    false,
    true,
    "Enters the files into the catalog under a catalog name, as \"Database\" does.\n"
    "  --catalog NAME  the catalog name given to every file\n"
    "  --from LIST     also the paths in the file LIST, one a line (\"-\": standard input)\n"
    "  PATH...         the files to enter\n"};

}  // namespace
