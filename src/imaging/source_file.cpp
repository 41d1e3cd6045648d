#include "imaging/source_file.h"

#include "core/run_error.h"

#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>

namespace {
// A picture file that large is no picture we can hold in memory whole.
constexpr qint64 kMaxWholeFile = 512ll * 1024 * 1024;
}  // namespace

std::shared_ptr<SourceFile> SourceFile::open(const QString& path) {
    const QByteArray native = QFile::encodeName(path);
    const int fd = ::open(native.constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        return nullptr;
    }
    struct stat st {};
    if (::fstat(fd, &st) != 0 || !S_ISREG(st.st_mode)) {
        ::close(fd);
        return nullptr;
    }
    FileIdentity id;
    id.device = static_cast<quint64>(st.st_dev);
    id.inode = static_cast<quint64>(st.st_ino);
    id.size = static_cast<qint64>(st.st_size);
    id.modified_ns = static_cast<qint64>(st.st_mtim.tv_sec) * 1000000000ll + st.st_mtim.tv_nsec;
    return std::shared_ptr<SourceFile>(new SourceFile(path, fd, id));
}

SourceFile::SourceFile(QString path, int fd, FileIdentity identity)
    : path_(std::move(path)), fd_(fd), identity_(identity) {}

SourceFile::~SourceFile() {
    if (fd_ >= 0) {
        ::close(fd_);
    }
}

qint64 SourceFile::read_into(qint64 offset, char* buffer, qint64 length) const {
    qint64 done = 0;
    while (done < length) {
        const ssize_t n = ::pread(fd_, buffer + done, static_cast<size_t>(length - done),
                                  static_cast<off_t>(offset + done));
        if (n < 0) {
            if (errno == EINTR) {
                continue;
            }
            return done > 0 ? done : -1;
        }
        if (n == 0) {
            break;
        }
        done += n;
    }
    return done;
}

QByteArray SourceFile::read(qint64 offset, qint64 length) const {
    if (offset < 0 || length <= 0 || offset >= identity_.size) {
        return QByteArray();
    }
    length = std::min(length, identity_.size - offset);
    QByteArray out(static_cast<qsizetype>(length), Qt::Uninitialized);
    const qint64 n = read_into(offset, out.data(), length);
    out.resize(n > 0 ? static_cast<qsizetype>(n) : 0);
    return out;
}

std::unique_ptr<QIODevice> SourceFile::device() const {
    // A descriptor of its own, so that the device's offset is not ours.
    const int fd =
        ::open(("/proc/self/fd/" + QByteArray::number(fd_)).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        return nullptr;
    }
    auto file = std::make_unique<QFile>();
    if (!file->open(fd, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        ::close(fd);
        return nullptr;
    }
    return file;
}

QByteArray SourceFile::read_all() const {
    if (identity_.size > kMaxWholeFile) {
        throw RunError(QStringLiteral("Cannot read ") + path_ +
                       QStringLiteral(": the file is too large."));
    }
    return read(0, identity_.size);
}
