#pragma once

#include <QString>
#include <QStringList>

// One run of the built command-line program on an application directory.
struct CliRun {
    int code = -1;      // the exit code; -1 when it crashed or did not finish
    QString out;        // standard output
    QStringList lines;  // its non-empty lines
    QString err;        // standard error
};

// Runs `quilldex-cli --home HOME ARGS...` and waits for it to end.
CliRun run_cli(const QString& home, const QStringList& args, int timeout_ms = 120000);
