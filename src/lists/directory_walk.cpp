#include "lists/directory_walk.h"

#include "core/directory_reader.h"

#include <deque>
#include <memory>

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
    // Each queued directory carries the chain of directories, by what they
    // are on disk, that led to it. A link back to one of them would walk the
    // same tree again without end and is passed by; a directory reached
    // through two different links is no ancestor of itself and is walked
    // each time.
    struct Step {
        quint64 device;
        quint64 node;
        std::shared_ptr<const Step> parent;
    };
    std::deque<std::shared_ptr<const Step>> parents{nullptr};
    auto is_ancestor = [](const Step* step, const DirectoryLevel& level) {
        for (; step; step = step->parent.get()) {
            if (step->device == level.device && step->node == level.node) {
                return true;
            }
        }
        return false;
    };
    QString last;
    // How many directories the walk holds is known only at its end.
    Progress progress(ctx.ui, 0);
    int walked = 0;
    while (!queue.empty()) {
        progress.step(walked++);
        ctx.ui.yield();
        if (app.stop_scan) {
            break;
        }
        const QString directory = queue.item(0);
        const std::shared_ptr<const Step> parent = std::move(parents.front());
        parents.pop_front();
        // A directory that cannot be read or entered, or that went away since
        // it was queued, is passed over as the walk goes on.
        DirectoryLevel level = read_directory_level(directory, match);
        if (level.opened && !is_ancestor(parent.get(), level)) {
            last = directory;
            if (hooks.visiting) {
                hooks.visiting(directory);
            }
            auto self = std::make_shared<const Step>(Step{level.device, level.node, parent});
            parents.insert(parents.end(), static_cast<size_t>(level.subdirectories.size()), self);
            queue.add_many(level.subdirectories);
            found(level.file_paths);
        }
        queue.remove(0);
    }
    return last;
}
