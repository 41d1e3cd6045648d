#include "cli/cli.h"

#include "catalog/audit.h"
#include "catalog/search.h"
#include "core/item_list.h"

namespace {

// Prints the found files that exist, one path a line, as the Search tab
// lists them; its messages go to standard error.
int run_search(CliSession& s, const QStringList& args) {
    if (args.isEmpty() || args.size() > 2) {
        return s.usage_error(QStringLiteral("search needs KIND [VALUE]"));
    }
    const QString kind = args.at(0);
    if (!search_kinds().contains(kind)) {
        s.err << "unknown kind \"" << kind << "\"; the kinds are:\n";
        for (const QString& k : search_kinds()) {
            s.err << "  " << k << '\n';
        }
        return 1;
    }
    // A value with an apostrophe fails its statement; the error is printed.
    ItemList results;
    if (search_database(s.ctx, kind, args.value(1), results)) {
        for (const QString& path : results.items()) {
            s.out << path << '\n';
        }
    }
    return 0;
}

// The five counts of the Audit tab, "label: number" a line.
int run_audit(CliSession& s, const QStringList& args) {
    if (!args.isEmpty()) {
        return s.usage_error(QStringLiteral("audit takes no arguments"));
    }
    for (const auto& [label, number] : audit_counts(s.ctx)) {
        s.out << label << ": " << number << '\n';
    }
    return 0;
}

const CliRegistration search_registration{
    "search",
    "KIND [VALUE]",
    &run_search,
    false,
    true,
    "Prints the catalogued files that a search of the Search tab finds and that exist.\n"
    "  KIND   the kind as the tab names it, e.g. \"Search File Title\"\n"
    "  VALUE  the text searched for; a * inside it matches any text\n"};
const CliRegistration audit_registration{
    "audit", "",   &run_audit,
    false,   true, "Prints the five counts of the Audit tab, one \"label: number\" a line.\n"};

}  // namespace
