#include "lists/directory_walk.h"

#include "core/directory_reader.h"

#include <QSet>

QString scan_directory_tree(Context& ctx, const QString& root, const QString& patterns,
                            ItemList& files, const DirectoryWalk& hooks) {
    files.clear();
    return walk_directory_tree(
        ctx, root, patterns, [&files](const QStringList& paths) { files.add_many(paths); }, hooks);
}

QString walk_directory_tree(Context& ctx, const QString& root, const QString& patterns,
                            const std::function<void(const QStringList& paths)>& found,
                            const DirectoryWalk& hooks) {
    AppState& app = ctx.app;
    app.stop_scan = false;
    app.scan_started = true;

    ItemList& queue = app.directory_list;
    queue.clear();
    queue.add(root);

    const FilePatterns match(patterns);
    // The directories walked, by what they are on disk: a link back up the
    // tree meets one of them and is passed by.
    QSet<QPair<quint64, quint64>> walked;
    QString last;
    while (!queue.empty()) {
        ctx.ui.yield();
        if (app.stop_scan) {
            break;
        }
        const QString directory = queue.item(0);
        DirectoryLevel level = read_directory_level(directory, match);
        const QPair<quint64, quint64> identity{level.device, level.node};
        if (!level.opened || !walked.contains(identity)) {
            if (level.opened) {
                walked.insert(identity);
            }
            last = directory;
            if (hooks.visiting) {
                hooks.visiting(directory);
            }
            queue.add_many(level.subdirectories);
            prefix_paths(level.file_names, directory);
            found(level.file_names);
        }
        queue.remove(0);
    }
    return last;
}
