#include "cli/cli.h"

#include "lists/directory_walk.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cstdio>

namespace {

// Prints the paths that "Scan Now" gathers below DIR, in the walk's order.
int run_scan(CliSession& s, const QStringList& args) {
    const CliArgs a(args);
    if (!a.error.isEmpty()) {
        return s.usage_error(a.error);
    }
    if (a.words.size() != 1) {
        return s.usage_error(QStringLiteral("scan needs one directory"));
    }
    if (!QFileInfo(a.words.at(0)).isDir()) {
        s.err << "Path not found: " << a.words.at(0) << '\n';
        return 1;
    }
    const QString root = QDir(a.words.at(0)).absolutePath();
    // Each directory's paths are printed as the walk gathers them, encoded in
    // one piece: the reader keeps only names whose bytes the file-name
    // encoding (UTF-8 here) gives back, so this is that encoding, name by name.
    QString text;
    QByteArray bytes;
    walk_directory_tree(s.ctx, root, a.value(QStringLiteral("filter"), QStringLiteral("*.*")),
                        [&](const QStringList& paths) {
                            if (paths.isEmpty()) {
                                return;
                            }
                            qsizetype size = 0;
                            for (const QString& path : paths) {
                                size += path.size() + 1;
                            }
                            text.clear();
                            text.reserve(size);
                            for (const QString& path : paths) {
                                text += path;
                                text += u'\n';
                            }
                            bytes = text.toUtf8();
                            std::fwrite(bytes.constData(), 1, static_cast<size_t>(bytes.size()),
                                        stdout);
                        });
    std::fflush(stdout);
    return 0;
}

const CliRegistration registration{
    "scan",
    "DIR [--filter PATTERNS]",
    &run_scan,
    false,
    false,
    "Prints the files below DIR that \"Scan Now\" gathers, in the same order.\n"
    "  --filter PATTERNS  the file types, as the Load tab's filter: *.jpg;*.gif (default *.*)\n"
    "  DIR                the directory to walk\n"};

}  // namespace
