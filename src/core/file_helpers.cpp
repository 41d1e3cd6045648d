#include "core/file_helpers.h"

#include "core/run_error.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

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

namespace {

// Copies the bytes of one open file to another in the kernel, falling back
// to reading and writing where the file system cannot.
bool copy_bytes(int in, int out) {
    struct stat st {};
    if (::fstat(in, &st) != 0) {
        return false;
    }
    off_t left = st.st_size;
    while (left > 0) {
        const ssize_t n =
            ::copy_file_range(in, nullptr, out, nullptr, static_cast<size_t>(left), 0);
        if (n > 0) {
            left -= n;
            continue;
        }
        if (n == 0) {
            break;
        }
        if (errno == EINTR) {
            continue;
        }
        // Not supported here: the plain way.
        char buffer[1 << 16];
        for (;;) {
            const ssize_t r = ::read(in, buffer, sizeof buffer);
            if (r == 0) {
                return true;
            }
            if (r < 0) {
                if (errno == EINTR) {
                    continue;
                }
                return false;
            }
            for (ssize_t done = 0; done < r;) {
                const ssize_t w = ::write(out, buffer + done, static_cast<size_t>(r - done));
                if (w < 0) {
                    if (errno == EINTR) {
                        continue;
                    }
                    return false;
                }
                done += w;
            }
        }
    }
    return true;
}

}  // namespace

QString write_whole_file(const QString& path, const QByteArray& bytes) {
    QSaveFile file(path);
    file.setDirectWriteFallback(true);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit()) {
        return file.errorString();
    }
    return QString();
}

void copy_file(const QString& from, const QString& to) {
    const QFileInfo source(from);
    if (!source.isFile()) {
        throw RunError(QStringLiteral("File not found: ") + from);
    }
    if (source.canonicalFilePath() == QFileInfo(to).canonicalFilePath()) {
        return;
    }
    const QByteArray in_name = QFile::encodeName(from);
    const QByteArray out_name = QFile::encodeName(to);
    const int in = ::open(in_name.constData(), O_RDONLY | O_CLOEXEC);
    if (in < 0) {
        throw RunError(QStringLiteral("Permission denied: ") + from);
    }
    struct stat st {};
    ::fstat(in, &st);
    // A copy is the user's own file: keep it writable whatever the source was.
    const mode_t mode = (st.st_mode & 0777) | S_IWUSR;
    ::unlink(out_name.constData());
    const int out = ::open(out_name.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, mode);
    if (out < 0) {
        ::close(in);
        throw RunError(QStringLiteral("Path/File access error: ") + to);
    }
    const bool ok = copy_bytes(in, out);
    ::close(in);
    if (::close(out) != 0 || !ok) {
        ::unlink(out_name.constData());
        throw RunError(QStringLiteral("Path/File access error: ") + to);
    }
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
