#pragma once

#include "imaging/file_failures.h"

#include <QString>
#include <QStringList>

#include <functional>

struct Context;

// One run of the Resize tab's command over a list of files, in list order.
struct ResizeRun {
    QStringList paths;
    QString target_directory;
    bool resize = false;  // a resized copy of each; else a thumbnail
    QString size;         // the maximum size (resize) or the thumbnail size, as typed
    bool prefix = false;  // the thumbnail prefix flag
    // Threads that work ahead of the loop: 0 for as many as the machine has,
    // 1 for none (the loop does all the work itself).
    int threads = 0;
    // Told of each file as soon as it is written.
    std::function<void(const QString&)> written;
    // Unset, the run is the tab's: a file the worker cannot load ends it with
    // its RunError, and an error making a file shows its box. Set, the run
    // goes on past every file it cannot read or make, and tells of each here,
    // a missing source among them.
    FailureSink failed;
};

struct ResizeOutcome {
    QStringList written;  // every file written, in order
    int failed = 0;       // sources that gave no file (missing ones only when told)
};

// For each path in order: writes it to the worker's FileName, sets the prefix
// flag, and calls make_image_file with kind "resize" and the size for both
// limits, or kind "thumbnail". So status texts, error boxes, the files written
// and the worker's final state are those of that plain loop; the decoding,
// scaling and encoding are done ahead on the machine's other cores, and each
// file is decoded once, at the scale its output needs.
ResizeOutcome run_resize_batch(Context& ctx, const ResizeRun& run);
