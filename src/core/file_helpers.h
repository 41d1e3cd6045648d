#pragma once

#include <QByteArray>
#include <QString>

// Small file routines that every subsystem shares.

// Trims blanks from `path` in place, then tells whether it names a file that
// can be opened for reading. A directory, an empty path and a file locked
// against reading count as missing.
bool file_exists(QString& path);
// The same, for a path the caller does not need trimmed.
bool file_exists_at(const QString& path);

// Splits at the last "/": `directory` is everything up to and with it, `file`
// what follows. With no "/", `directory` is "" and `file` the whole text.
void split_path(const QString& path, QString& directory, QString& file);
// The directory part of `path`, with its closing "/".
QString directory_of(const QString& path);
// The file name part of `path`.
QString file_name_of(const QString& path);

// Makes one directory; every error, an existing directory included, is ignored.
void make_directory(const QString& path);

// Copies `from` to `to`, replacing what is there. Throws RunError on failure.
void copy_file(const QString& from, const QString& to);
// Writes `bytes` as the whole of `path`: to a temporary file beside it that is
// renamed into place, so that a failed write leaves the former file whole;
// where no file can be made beside it (a directory the user may not write
// in, a file the user may), over the file in place. Gives "" when written,
// else the reason.
QString write_whole_file(const QString& path, const QByteArray& bytes);
// Deletes a file. Throws RunError when it is there and cannot be deleted.
void delete_file(const QString& path);
// Length of a file in bytes. Throws RunError when it cannot be read.
qint64 file_length(const QString& path);

// Joins a directory and a name with "/" unless the directory already ends in one.
QString join_path(const QString& directory, const QString& name);

// Writes one line of the diagnostic log: `first`, then `second` starting at
// column 30 (a first text of 30 or more characters pushes it to the next
// line), then the line end. Mode 1 starts the file afresh, 0 appends. Throws
// RunError when the log cannot be written.
void write_log(const QString& log_path, const QString& first, const QString& second, int mode);
