#include "shell/file_helpers.h"

#include "shell/run_error.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

bool file_exists(QString& path) {
    path = path.trimmed();
    return file_exists_at(path);
}

bool file_exists_at(const QString& path) {
    const QString p = path.trimmed();
    if (p.isEmpty()) {
        return false;
    }
    QFileInfo info(p);
    if (!info.isFile()) {
        return false;
    }
    QFile f(p);
    return f.open(QIODevice::ReadOnly);
}

void split_path(const QString& path, QString& directory, QString& file) {
    directory.clear();
    file.clear();
    const int slash = path.lastIndexOf(u'/');
    if (slash < 0) {
        file = path;
        return;
    }
    directory = path.left(slash + 1);
    file = path.mid(slash + 1);
}

QString directory_of(const QString& path) {
    QString d, f;
    split_path(path, d, f);
    return d;
}

QString file_name_of(const QString& path) {
    QString d, f;
    split_path(path, d, f);
    return f;
}

void make_directory(const QString& path) {
    if (!path.isEmpty()) {
        QDir().mkdir(path);
    }
}

void copy_file(const QString& from, const QString& to) {
    if (!QFileInfo(from).isFile()) {
        throw RunError(QStringLiteral("File not found: ") + from);
    }
    if (QFileInfo(from).canonicalFilePath() == QFileInfo(to).canonicalFilePath()) {
        return;
    }
    if (QFileInfo::exists(to) && !QFile::remove(to)) {
        throw RunError(QStringLiteral("Permission denied: ") + to);
    }
    if (!QFile::copy(from, to)) {
        throw RunError(QStringLiteral("Path/File access error: ") + to);
    }
    // A copy is the user's own file: keep it writable whatever the source was.
    QFile(to).setPermissions(QFile(to).permissions() | QFileDevice::WriteOwner);
}

void delete_file(const QString& path) {
    if (!QFileInfo::exists(path) && !QFileInfo(path).isSymLink()) {
        throw RunError(QStringLiteral("File not found: ") + path);
    }
    if (!QFile::remove(path)) {
        throw RunError(QStringLiteral("Permission denied: ") + path);
    }
}

qint64 file_length(const QString& path) {
    QFileInfo info(path);
    if (!info.isFile()) {
        throw RunError(QStringLiteral("File not found: ") + path);
    }
    return info.size();
}

QString join_path(const QString& directory, const QString& name) {
    if (directory.endsWith(u'/')) {
        return directory + name;
    }
    return directory + u'/' + name;
}

void write_log(const QString& log_path, const QString& first, const QString& second, int mode) {
    QFile f(log_path);
    const QIODevice::OpenMode how =
        mode == 1 ? QIODevice::WriteOnly | QIODevice::Truncate : QIODevice::Append;
    if (!f.open(how)) {
        throw RunError(QStringLiteral("Path/File access error: ") + log_path);
    }
    QString line = first;
    // The second text starts at column 30; a first text that reaches it
    // pushes the second one to the next line.
    if (line.size() >= 30) {
        line += QStringLiteral("\r\n");
        line += QString(29, u' ');
    } else {
        line += QString(29 - line.size(), u' ');
    }
    line += second;
    line += QStringLiteral("\r\n");
    f.write(line.toUtf8());
}
