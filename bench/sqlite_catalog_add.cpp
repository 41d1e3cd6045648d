// The reference side of bench/catalog_add.sh: enters the paths of LIST (one a
// line) into CATALOG_FILE through SQLite's C interface, as `quilldex-cli
// catalog-add` does, with the same journal settings.
// Usage: sqlite_catalog_add CATALOG_FILE LIST

#include "sqlite_reference.h"

#include <QFile>

#include <cstdio>

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: sqlite_catalog_add CATALOG_FILE LIST\n");
        return 2;
    }
    QFile list(QString::fromLocal8Bit(argv[2]));
    if (!list.open(QIODevice::ReadOnly | QIODevice::Text)) {
        std::fprintf(stderr, "cannot read %s\n", argv[2]);
        return 1;
    }
    const QStringList paths = QString::fromUtf8(list.readAll()).split(u'\n', Qt::SkipEmptyParts);
    if (bench::sqlite_add(QString::fromLocal8Bit(argv[1]), paths, "Bench") < 0) {
        std::fprintf(stderr, "cannot open %s\n", argv[1]);
        return 1;
    }
    return 0;
}
