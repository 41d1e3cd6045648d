#include "core/mount_roots.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

// File system types that hold no user files.
bool is_system_type(const QString& type) {
    static const QStringList kTypes = {
        QStringLiteral("proc"),           QStringLiteral("sysfs"),
        QStringLiteral("devtmpfs"),       QStringLiteral("devpts"),
        QStringLiteral("cgroup"),         QStringLiteral("cgroup2"),
        QStringLiteral("mqueue"),         QStringLiteral("debugfs"),
        QStringLiteral("tracefs"),        QStringLiteral("securityfs"),
        QStringLiteral("pstore"),         QStringLiteral("bpf"),
        QStringLiteral("autofs"),         QStringLiteral("configfs"),
        QStringLiteral("fusectl"),        QStringLiteral("hugetlbfs"),
        QStringLiteral("binfmt_misc"),    QStringLiteral("nsfs"),
        QStringLiteral("efivarfs"),       QStringLiteral("rpc_pipefs"),
        QStringLiteral("selinuxfs"),      QStringLiteral("squashfs"),
        QStringLiteral("ramfs"),          QStringLiteral("fuse.portal"),
        QStringLiteral("fuse.gvfsd-fuse")};
    return kTypes.contains(type);
}

// Places of the system's own mounts; removable media under /run/media stay.
bool is_system_place(const QString& path) {
    static const QStringList kPlaces = {QStringLiteral("/proc"), QStringLiteral("/sys"),
                                        QStringLiteral("/dev"),  QStringLiteral("/run"),
                                        QStringLiteral("/boot"), QStringLiteral("/snap"),
                                        QStringLiteral("/tmp"),  QStringLiteral("/var"),
                                        QStringLiteral("/etc"),  QStringLiteral("/usr")};
    if (path.startsWith(QLatin1String("/run/media/"))) {
        return false;
    }
    for (const QString& place : kPlaces) {
        if (path == place || path.startsWith(place + u'/')) {
            return true;
        }
    }
    return false;
}

// The mounts table writes blanks and a few other characters as "\ooo".
QString unescape_octal(const QString& field) {
    if (!field.contains(u'\\')) {
        return field;
    }
    QByteArray out;
    const QByteArray in = field.toUtf8();
    for (qsizetype i = 0; i < in.size(); ++i) {
        if (in[i] == '\\' && i + 3 < in.size()) {
            bool ok = false;
            const int code = in.mid(i + 1, 3).toInt(&ok, 8);
            if (ok) {
                out.append(static_cast<char>(code));
                i += 3;
                continue;
            }
        }
        out.append(in[i]);
    }
    return QString::fromUtf8(out);
}

bool readable_directory(const QString& path) {
    const QFileInfo info(path);
    return info.isDir() && info.isReadable() && info.isExecutable();
}

bool holds(const QString& root, const QString& path) {
    if (root == QLatin1String("/")) {
        return path.startsWith(u'/');
    }
    return path == root || path.startsWith(root + u'/');
}

}  // namespace

QStringList mounted_roots_from(const QString& mounts_text, bool (*usable)(const QString&)) {
    if (!usable) {
        usable = readable_directory;
    }
    QStringList roots{QStringLiteral("/")};
    const QStringList lines = mounts_text.split(u'\n', Qt::SkipEmptyParts);
    for (const QString& line : lines) {
        const QStringList fields = line.split(u' ', Qt::SkipEmptyParts);
        if (fields.size() < 3) {
            continue;
        }
        const QString point = QDir::cleanPath(unescape_octal(fields.at(1)));
        const QString& type = fields.at(2);
        if (point == QLatin1String("/") || roots.contains(point) || is_system_type(type) ||
            is_system_place(point) || !usable(point)) {
            continue;
        }
        roots << point;
    }
    return roots;
}

QStringList mounted_roots() {
    QFile f(QStringLiteral("/proc/mounts"));
    if (!f.open(QIODevice::ReadOnly)) {
        return {QStringLiteral("/")};
    }
    return mounted_roots_from(QString::fromUtf8(f.readAll()));
}

QString root_of(const QString& path, const QStringList& roots) {
    const QString clean = QDir::cleanPath(path);
    QString best;
    for (const QString& root : roots) {
        if (holds(root, clean) && root.size() > best.size()) {
            best = root;
        }
    }
    if (best.isEmpty() && !roots.isEmpty()) {
        best = roots.contains(QStringLiteral("/")) ? QStringLiteral("/") : roots.first();
    }
    return best;
}
