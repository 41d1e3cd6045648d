#include "lists/directory_walk.h"

#include "shell/directory_reader.h"
#include "shell/file_helpers.h"

#include <QFileInfo>
#include <QSet>

QStringList directory_file_paths(const QString& directory, const QString& patterns) {
    QStringList paths = matching_file_names(directory, patterns);
    for (QString& name : paths) {
        name = join_path(directory, name);
    }
    return paths;
}

QString scan_directory_tree(Context& ctx, const QString& root, const QString& patterns,
                            ItemList& files, const DirectoryWalk& hooks) {
    AppState& app = ctx.app;
    app.stop_scan = false;
    app.scan_started = true;

    ItemList& queue = app.directory_list;
    queue.clear();
    queue.add(root);
    files.clear();

    // Canonical paths of the directories walked: a link back up the tree
    // meets one of them and is passed by.
    QSet<QString> walked;
    QString last;
    while (!queue.empty()) {
        ctx.ui.yield();
        if (app.stop_scan) {
            break;
        }
        const QString directory = queue.item(0);
        const QString canonical = QFileInfo(directory).canonicalFilePath();
        const bool seen = !canonical.isEmpty() && walked.contains(canonical);
        if (!seen) {
            if (!canonical.isEmpty()) {
                walked.insert(canonical);
            }
            last = directory;
            if (hooks.visiting) {
                hooks.visiting(directory);
            }
            queue.add_many(subdirectory_paths(directory));
            files.add_many(directory_file_paths(directory, patterns));
        }
        queue.remove(0);
    }
    return last;
}
