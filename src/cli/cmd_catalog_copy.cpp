#include "cli/cli.h"

#include "catalog/catalog_copy.h"
#include "core/catalog_location.h"

namespace {

// Moves a catalog between a file and a server, row for row, and prints the
// rows of each table. A target that holds rows is left alone unless
// --replace is given.
int run_catalog_copy(CliSession& s, const QStringList& args) {
    const CliArgs a(args, {QStringLiteral("replace")});
    if (!a.error.isEmpty()) {
        return s.usage_error(a.error);
    }
    if (a.words.size() != 2) {
        return s.usage_error(QStringLiteral(
            "catalog-copy needs FROM and TO: a catalog file or a postgresql:// URL each"));
    }
    if (a.words.at(0) == a.words.at(1)) {
        return s.usage_error(QStringLiteral("catalog-copy needs two different catalogs"));
    }
    for (const QString& line :
         copy_catalog(a.words.at(0), a.words.at(1), a.has(QStringLiteral("replace")))) {
        s.out << line << '\n';
    }
    return 0;
}

const CliRegistration registration{
    "catalog-copy",
    "[--replace] FROM TO",
    &run_catalog_copy,
    false,
    false,
    "Copies a catalog row for row, between a catalog file and a catalog on a server.\n"
    "  --replace  writes over a catalog that already holds rows\n"
    "  FROM       the catalog copied: a .mdb file or a postgresql:// URL\n"
    "  TO         the catalog written: a .mdb file or a postgresql:// URL\n"};

}  // namespace
