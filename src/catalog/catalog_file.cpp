#include "catalog/catalog_file.h"

#include <QFile>
#include <QFileInfo>
#include <QUrl>

#include <sqlite3.h>
#include <unistd.h>

namespace {

// How long a batch's rows wait in memory before they are committed.
constexpr int kBatchIntervalMs = 200;
// How long the last commit of a batch keeps trying while other programs
// read the catalog; past it the batch's uncommitted rows are given up.
constexpr int kLastCommitWaitMs = 2000;

bool can_write(const QString& path, int mode) {
    return ::access(QFile::encodeName(path).constData(), mode) == 0;
}

}  // namespace

CatalogFile inspect_catalog_file(const QString& path) {
    CatalogFile f;
    QFile file(path);
    if (file.open(QIODevice::ReadOnly)) {
        // The two format bytes of the header say 2 while the file keeps a
        // write-ahead log.
        const QByteArray head = file.read(20);
        f.write_ahead = head.size() == 20 && head.startsWith("SQLite format 3") &&
                        (head.at(18) == 2 || head.at(19) == 2);
    }
    // The journal is made beside the file itself, where a link leads.
    const QFileInfo info(path);
    const QString real = info.canonicalFilePath().isEmpty() ? path : info.canonicalFilePath();
    f.writable = can_write(real, W_OK) && can_write(QFileInfo(real).absolutePath(), W_OK | X_OK);
    f.log_beside = QFileInfo(path + QStringLiteral("-wal")).size() > 0;
    return f;
}

QString unchanging_catalog_uri(const QString& path) {
    return QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath()).toString(QUrl::FullyEncoded) +
           QStringLiteral("?immutable=1");
}

void set_up_catalog_connection(sqlite3* handle, bool convert) {
    if (convert) {
        // Copies the log into the file and removes it; a catalog that another
        // program holds open this way stays as it is.
        sqlite3_exec(handle, "pragma journal_mode=delete", nullptr, nullptr, nullptr);
    }
    sqlite3_exec(handle, "pragma synchronous=full; pragma cache_size=-16384", nullptr, nullptr,
                 nullptr);
    // Searches and audit counts read every row of the catalog: mapped, its
    // pages are read in place instead of copied page by page. Writes still go
    // through the journal as before.
    sqlite3_exec(handle, "pragma mmap_size=1073741824", nullptr, nullptr, nullptr);
    sqlite3_busy_timeout(handle, kCatalogLockWaitMs);
}

// ---------------------------------------------------------------- batches

bool CommitBatches::ours() const {
    return started_ && handle_ && !sqlite3_get_autocommit(handle_);
}

bool CommitBatches::try_begin() {
    started_ = false;
    since_.start();
    if (!handle_ || !sqlite3_get_autocommit(handle_)) {
        return false;
    }
    // Taking the write lock at once keeps another program from writing
    // half-way through, which would leave both sides waiting on each other;
    // when that program holds the catalog, the rows commit one by one.
    sqlite3_busy_timeout(handle_, 0);
    started_ = sqlite3_exec(handle_, "begin immediate", nullptr, nullptr, nullptr) == SQLITE_OK;
    sqlite3_busy_timeout(handle_, kCatalogLockWaitMs);
    return started_;
}

bool CommitBatches::try_commit() {
    if (ours() && sqlite3_exec(handle_, "commit", nullptr, nullptr, nullptr) != SQLITE_OK &&
        !sqlite3_get_autocommit(handle_)) {
        return false;  // readers of another program still hold the file
    }
    started_ = false;
    return true;
}

void CommitBatches::begin() {
    if (depth_++ == 0) {
        try_begin();
    }
}

void CommitBatches::tick() {
    if (depth_ == 0 || since_.elapsed() < kBatchIntervalMs) {
        return;
    }
    if (try_commit()) {
        try_begin();
    } else {
        since_.start();
    }
}

void CommitBatches::end() {
    if (depth_ == 0 || --depth_ > 0) {
        return;
    }
    QElapsedTimer waited;
    waited.start();
    while (!try_commit() && (sqlite3_errcode(handle_) & 0xff) == SQLITE_BUSY &&
           waited.elapsed() < kLastCommitWaitMs) {
    }
    if (ours()) {
        sqlite3_exec(handle_, "rollback", nullptr, nullptr, nullptr);
    }
    started_ = false;
}

void CommitBatches::commit_now() {
    if (try_commit() && depth_ > 0) {
        try_begin();
    }
}
