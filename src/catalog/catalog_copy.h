#pragma once

#include <QString>
#include <QStringList>

// Copies a whole catalog, row for row, between a file and a server (either
// way, or between two of a kind). The target gets the catalog's tables when
// it has none: a new file, or an empty server database. A target that already
// holds catalogued files, catalog names or templates is refused unless
// `replace` is set; then its rows give way to the source's. The copy is all
// or nothing. Returns one line per table ("filenames: 12 rows"); throws
// RunError with the reason.
QStringList copy_catalog(const QString& from, const QString& to, bool replace);
