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
        s.err << a.error << '\n';
        return 1;
    }
    if (a.words.size() != 2) {
        s.err << "catalog-copy needs FROM and TO: a catalog file or a postgresql:// URL each\n";
        return 1;
    }
    if (a.words.at(0) == a.words.at(1)) {
        s.err << "catalog-copy needs two different catalogs\n";
        return 1;
    }
    for (const QString& line :
         copy_catalog(a.words.at(0), a.words.at(1), a.has(QStringLiteral("replace")))) {
        s.out << line << '\n';
    }
    return 0;
}

const CliRegistration registration{"catalog-copy", "[--replace] FROM TO", &run_catalog_copy, false,
                                   false};

}  // namespace
