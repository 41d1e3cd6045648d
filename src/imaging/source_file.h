#pragma once

#include <QByteArray>
#include <QIODevice>
#include <QString>

#include <memory>

// What tells one version of a file from another: a file replaced or written
// again since it was opened has another identity.
struct FileIdentity {
    quint64 device = 0;
    quint64 inode = 0;
    qint64 size = -1;
    qint64 modified_ns = 0;
    bool operator==(const FileIdentity&) const = default;
};

// A picture file held open from the moment a control loads it until it loads
// another, so that its pixels can be decoded later, at the scale then needed,
// even when the file has been deleted or replaced in between (a thumbnail
// written over its own source). Reads are positioned, so one open file can be
// read by one decoder at a time without a shared offset.
class SourceFile {
public:
    // Opens `path` for reading; null when it cannot be opened.
    static std::shared_ptr<SourceFile> open(const QString& path);
    ~SourceFile();
    SourceFile(const SourceFile&) = delete;
    SourceFile& operator=(const SourceFile&) = delete;

    const QString& path() const { return path_; }
    qint64 size() const { return identity_.size; }
    const FileIdentity& identity() const { return identity_; }

    // Up to `length` bytes from `offset`; fewer at the end of the file.
    QByteArray read(qint64 offset, qint64 length) const;
    // The whole file (throws RunError when it is too large to hold).
    QByteArray read_all() const;
    // Reads into `buffer`; returns the bytes read, 0 at the end, -1 on error.
    qint64 read_into(qint64 offset, char* buffer, qint64 length) const;
    // A device reading the same open file from its start, for readers that
    // take a QIODevice; null when the file cannot be opened again.
    std::unique_ptr<QIODevice> device() const;

private:
    SourceFile(QString path, int fd, FileIdentity identity);
    QString path_;
    int fd_ = -1;
    FileIdentity identity_;
};
