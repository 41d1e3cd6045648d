#include "support/cli_run.h"

#include <QProcess>

CliRun run_cli(const QString& home, const QStringList& args, int timeout_ms,
               const std::function<void()>& in_child, const QProcessEnvironment& env) {
    QProcess p;
    p.setProcessEnvironment(env);
    if (in_child) {
        p.setChildProcessModifier(in_child);
    }
    p.start(QStringLiteral(QD_APP_DIR "/quilldex-cli"), QStringList{"--home", home} + args);
    CliRun r;
    if (!p.waitForFinished(timeout_ms)) {
        p.kill();
        p.waitForFinished();
        return r;
    }
    r.code = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
    r.out = QString::fromLocal8Bit(p.readAllStandardOutput());
    r.lines = r.out.split(u'\n', Qt::SkipEmptyParts);
    r.err = QString::fromLocal8Bit(p.readAllStandardError());
    return r;
}
