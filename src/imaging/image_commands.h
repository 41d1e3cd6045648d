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
// come from the settings file, each file written is printed on `out`, and a
// missing source or a file that could not be made is reported on `err`
// (error boxes go there too, through the dialogs). Returns 0 when every
// source gave its file, 1 otherwise.
int run_image_command(Context& ctx, const ImageCommand& command, QTextStream& out,
                      QTextStream& err);
