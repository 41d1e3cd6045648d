#include "monitor/monitor_move.h"

#include "core/file_helpers.h"
#include "core/run_error.h"

#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

QByteArray native(const QString& path) {
    return QFile::encodeName(path);
}

}  // namespace

FileStamp stamp_of(const QString& path) {
    FileStamp s;
    struct stat st {};
    if (::stat(native(path).constData(), &st) != 0 || !S_ISREG(st.st_mode)) {
        return s;
    }
    s.ok = true;
    s.device = st.st_dev;
    s.node = st.st_ino;
    s.size = st.st_size;
    s.mtime_ns = static_cast<qint64>(st.st_mtim.tv_sec) * 1000000000LL + st.st_mtim.tv_nsec;
    return s;
}

bool open_for_writing(const QString& path) {
    const int fd = ::open(native(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        return false;
    }
    // A read lease is refused while anyone has the file open for writing.
    // Were a writer to open it in the instant the lease is held, the system
    // would tell us by a signal: one that is ignored unless handled, so that
    // it cannot end the application.
    ::fcntl(fd, F_SETSIG, SIGURG);
    bool writing = false;
    if (::fcntl(fd, F_SETLEASE, F_RDLCK) == 0) {
        ::fcntl(fd, F_SETLEASE, F_UNLCK);
    } else {
        writing = errno == EAGAIN;
    }
    ::close(fd);
    return writing;
}

bool same_directory(const QString& a, const QString& b) {
    struct stat sa {
    }, sb{};
    return ::stat(native(a).constData(), &sa) == 0 && ::stat(native(b).constData(), &sb) == 0 &&
           S_ISDIR(sa.st_mode) && sa.st_dev == sb.st_dev && sa.st_ino == sb.st_ino;
}

bool copy_settled(const QString& source, const QString& destination, FileStamp& stamp) {
    const FileStamp before = stamp_of(source);
    if (!before.ok) {
        throw RunError(QStringLiteral("File not found: ") + source);
    }
    if (open_for_writing(source)) {
        return false;
    }
    // Hidden, so that no listing offers it while it grows.
    const QString part =
        directory_of(destination) + u'.' + file_name_of(destination) + QStringLiteral(".part");
    const QByteArray part_name = native(part);
    try {
        copy_file(source, part);
    } catch (...) {
        ::unlink(part_name.constData());
        throw;
    }
    // A moved file keeps its time; a copy without it is a copy still.
    const struct timespec times[2] = {{0, UTIME_OMIT},
                                      {static_cast<time_t>(before.mtime_ns / 1000000000LL),
                                       static_cast<long>(before.mtime_ns % 1000000000LL)}};
    ::utimensat(AT_FDCWD, part_name.constData(), times, 0);

    const FileStamp copied = stamp_of(part);
    if (!(stamp_of(source) == before) || copied.size != before.size || open_for_writing(source)) {
        ::unlink(part_name.constData());
        return false;
    }
    if (::rename(part_name.constData(), native(destination).constData()) != 0) {
        ::unlink(part_name.constData());
        throw RunError(QStringLiteral("Path/File access error: ") + destination);
    }
    stamp = before;
    return true;
}

void delete_settled(const QString& source, const FileStamp& stamp,
                    const QStringList& files_in_use) {
    const QString canonical = QFileInfo(source).canonicalFilePath();
    for (const QString& held : files_in_use) {
        if (!held.isEmpty() && QFileInfo(held).canonicalFilePath() == canonical) {
            throw RunError(QStringLiteral("Permission denied: ") + source);
        }
    }
    if (!(stamp_of(source) == stamp) || open_for_writing(source)) {
        throw RunError(QStringLiteral("Permission denied: ") + source);
    }
    delete_file(source);
}
