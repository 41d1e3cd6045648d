#pragma once

#include "core/context.h"
#include "core/item_list.h"

#include <QString>

#include <functional>

// "Scan Now": a walk of the whole tree below a directory, breadth first,
// parents before children, gathering the full paths of the files that match
// a pattern list ("*.gif;*.jpg"). The queue of directories is the shared
// hidden list `directory_list`; it keeps its rows when a walk is cancelled,
// until the next walk clears it.
//
// The walk gives the message loop a turn once per directory and stops when
// `stop_scan` is set then. A link back to a directory above it on its own
// path is passed by, so a link cycle ends; a directory reached through two
// different links is walked each time. A directory that cannot be read or
// entered, or is gone when its turn comes, gives nothing and the walk goes on.
// Every path gathered names a file that was there, under that very text.
struct DirectoryWalk {
    // Called with each directory as it is walked, before its files are added.
    std::function<void(const QString& directory)> visiting;
};

// Walks the tree below `root`, handing the full paths of each directory's
// matching files to `found`, directory by directory in walk order. Sets
// `scan_started`; clears `stop_scan` at the start. Returns the last directory
// walked ("" when none was).
QString walk_directory_tree(Context& ctx, const QString& root, const QString& patterns,
                            const std::function<void(const QStringList& paths)>& found,
                            const DirectoryWalk& hooks = {});

// Walks the tree below `root` into `files` (cleared first). Sets
// `scan_started`; clears `stop_scan` at the start. Returns the last
// directory walked ("" when none was).
QString scan_directory_tree(Context& ctx, const QString& root, const QString& patterns,
                            ItemList& files, const DirectoryWalk& hooks = {});
