#pragma once

#include <QSet>
#include <QString>

#include <exception>
#include <functional>

class QTextStream;

// Where a batch that goes on past a file it cannot read or make tells of that
// file: its path and the error's text. A batch given none behaves as its
// window command does (the error ends the command, shows its box, or is
// passed over without a word).
using FailureSink = std::function<void(const QString& path, const QString& reason)>;

// The text of an error as a message box would show it.
QString failure_text(const std::exception& e);

// The failures of one command-line batch: each file is told once on `err`,
// with its path and reason, and the count closes the run.
class FailureLog {
public:
    explicit FailureLog(QTextStream& err) : err_(err) {}
    FailureSink sink() {
        return [this](const QString& path, const QString& reason) { report(path, reason); };
    }
    void report(const QString& path, const QString& reason);
    int count() const { return static_cast<int>(paths_.size()); }
    // Writes "1 file failed" or "N files failed" when any did; returns the count.
    int finish();

private:
    QTextStream& err_;
    QSet<QString> paths_;
};
