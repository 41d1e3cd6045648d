#pragma once

#include <QString>
#include <QStringList>

class QTextStream;
struct Context;

// A thumbnail or resize run asked for on the command line.
struct ImageCommand {
    QStringList paths;
    QString target_directory;
    bool resize = false;
    QString size;  // the thumbnail size or the maximum size; "" keeps the setting's
    bool prefix = false;
};

// Runs the Resize tab's batch without the window: the other thumbnail values
// come from the settings file and each file written is printed on `out`. The
// run goes on past a file it cannot read or make (a missing one among them):
// each is told on `err` with its path and reason, and a last line counts them.
// Returns 0 when every source gave its file, 1 otherwise.
int run_image_command(Context& ctx, const ImageCommand& command, QTextStream& out,
                      QTextStream& err);
