#include "imaging/file_failures.h"

#include "core/run_error.h"

#include <QTextStream>

QString failure_text(const std::exception& e) {
    if (const auto* r = dynamic_cast<const RunError*>(&e)) {
        return r->text();
    }
    return QString::fromLocal8Bit(e.what());
}

void FailureLog::report(const QString& path, const QString& reason) {
    if (paths_.contains(path)) {
        return;  // a file that failed at several steps is one failure
    }
    paths_.insert(path);
    // Most errors already name their file ("Cannot read PATH: ...").
    err_ << (reason.contains(path) ? reason : path + QStringLiteral(": ") + reason) << '\n';
    err_.flush();
}

int FailureLog::finish() {
    const int n = count();
    if (n == 1) {
        err_ << "1 file failed\n";
    } else if (n > 1) {
        err_ << n << " files failed\n";
    }
    err_.flush();
    return n;
}
