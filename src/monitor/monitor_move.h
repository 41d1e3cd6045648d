#pragma once

#include <QString>
#include <QStringList>

// The careful half of a monitored move: a file that is still being written
// is neither copied in part nor deleted, and a source goes only once its
// copy is known to be whole.

// What tells one state of a file from another: its identity on the disk, its
// size and its modification time. `ok` is false for a path that is no file.
struct FileStamp {
    bool ok = false;
    quint64 device = 0;
    quint64 node = 0;
    qint64 size = 0;
    qint64 mtime_ns = 0;
    bool operator==(const FileStamp& o) const {
        return ok == o.ok && device == o.device && node == o.node && size == o.size &&
               mtime_ns == o.mtime_ns;
    }
};
FileStamp stamp_of(const QString& path);

// True when some process holds the file open for writing, as far as the
// system can tell (it cannot for a file owned by another user or on a file
// system without leases; the stamps still guard those).
bool open_for_writing(const QString& path);

// True when `a` and `b` name the same directory on the disk.
bool same_directory(const QString& a, const QString& b);

// Copies `source` to `destination`, replacing a file of that name, through a
// hidden file beside it that takes the destination's name only when the copy
// has the source's size and the source stayed the same meanwhile, with no
// writer holding it open. Returns false, with nothing left behind, when the
// source is still changing; `stamp` then says nothing. Throws RunError when
// the copy cannot be made.
bool copy_settled(const QString& source, const QString& destination, FileStamp& stamp);

// Deletes `source` if it is still as it was copied (`stamp`) and no writer
// holds it. Throws RunError otherwise, and for the files the application
// holds open itself (the catalog in use, the settings file), which it never
// deletes.
void delete_settled(const QString& source, const FileStamp& stamp, const QStringList& files_in_use);
