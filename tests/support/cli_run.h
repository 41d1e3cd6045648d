#pragma once

#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

#include <functional>

// One run of the built command-line program on an application directory.
struct CliRun {
    int code = -1;      // the exit code; -1 when it crashed or did not finish
    QString out;        // standard output
    QStringList lines;  // its non-empty lines
    QString err;        // standard error
};

// Runs `quilldex-cli --home HOME ARGS...` and waits for it to end.
// `in_child`, when given, runs in the new process before the program starts;
// it may share this process's memory, so the program's environment is given
// as `env` rather than changed there.
CliRun run_cli(const QString& home, const QStringList& args, int timeout_ms = 120000,
               const std::function<void()>& in_child = {},
               const QProcessEnvironment& env = QProcessEnvironment::systemEnvironment());
