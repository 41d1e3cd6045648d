#include "core/directory_reader.h"

#include <QFile>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

// A name from the listing as text, or a null string when the text would not
// name the entry again. Names are bytes here, and an old disk may hold names
// that are not UTF-8 (Latin-1 "\xe9t\xe9.jpg"); every path the program opens
// goes through the toolkit's one conversion to bytes (QFile::encodeName),
// which cannot give such bytes back, so a name that does not come back as it
// was cannot be opened under any text and is passed over, as an unreadable
// directory is. Plain ASCII, the usual case, takes the short way.
QString decoded_name(const char* name) {
    const size_t length = std::strlen(name);
    for (size_t i = 0; i < length; ++i) {
        if (static_cast<unsigned char>(name[i]) >= 0x80) {
            QString text = QFile::decodeName(name);
            const QByteArray back = QFile::encodeName(text);
            if (static_cast<size_t>(back.size()) != length ||
                std::memcmp(back.constData(), name, length) != 0) {
                return QString();
            }
            return text;
        }
    }
    return QString::fromLatin1(name, static_cast<qsizetype>(length));
}

// `prefix` and the name, or a null string when the name is passed over.
QString prefixed_name(const QString& prefix, const char* name) {
    const size_t length = std::strlen(name);
    for (size_t i = 0; i < length; ++i) {
        if (static_cast<unsigned char>(name[i]) >= 0x80) {
            const QString text = decoded_name(name);
            return text.isNull() ? QString() : prefix + text;
        }
    }
    QString path;
    path.reserve(prefix.size() + static_cast<qsizetype>(length));
    path += prefix;
    path += QLatin1StringView(name, static_cast<qsizetype>(length));
    return path;
}

// Lists the names of one level of `dir` in one pass, hidden names left out:
// the subdirectories into `dirs` and the plain files into `files` (either
// may be null). When `level` is given, it is told whether the directory
// opened and what it is on disk. With a `file_prefix`, each file comes as
// that prefix and its name, made in one piece, which a walk of many files
// wants rather than a name and then a path.
// The entry type comes from the directory listing itself where the file
// system gives it; only links (and file systems that give no type) cost a
// look at their target, so that a link to a directory counts as one and a
// broken link as neither. Devices, pipes and sockets are neither.
void list_entries(const QString& dir, QStringList* dirs, QStringList* files,
                  DirectoryLevel* level = nullptr, const QString& file_prefix = QString()) {
    if (dir.isEmpty()) {
        return;
    }
    const int fd = ::open(QFile::encodeName(dir).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) {
        return;
    }
    // A directory that can be listed but not entered (read but no search
    // permission) names entries that cannot be opened: it gives nothing, as
    // an unreadable one. A look at "." through it needs that permission.
    struct stat self;
    if (::fstatat(fd, ".", &self, 0) != 0) {
        ::close(fd);
        return;
    }
    if (level) {
        level->opened = true;
        level->device = static_cast<quint64>(self.st_dev);
        level->node = static_cast<quint64>(self.st_ino);
    }
    // The listing is read in blocks into one buffer kept for the thread, so
    // that a walk of many directories does not take fresh memory for each.
    thread_local std::vector<char> buffer(64 * 1024);
    for (;;) {
        const ssize_t got = ::getdents64(fd, buffer.data(), buffer.size());
        if (got <= 0) {
            break;
        }
        for (ssize_t at = 0; at < got;) {
            const auto* entry = reinterpret_cast<const dirent64*>(buffer.data() + at);
            at += entry->d_reclen;
            const char* name = entry->d_name;
            if (name[0] == '.') {
                continue;  // hidden, and "." and ".."
            }
            bool is_dir = entry->d_type == DT_DIR;
            bool is_file = entry->d_type == DT_REG;
            if (entry->d_type == DT_LNK || entry->d_type == DT_UNKNOWN) {
                struct stat target;
                if (::fstatat(fd, name, &target, 0) == 0) {
                    is_dir = S_ISDIR(target.st_mode);
                    is_file = S_ISREG(target.st_mode);
                }
            }
            if (!(is_dir && dirs) && !(is_file && files)) {
                continue;
            }
            if (is_file && !file_prefix.isEmpty()) {
                QString path = prefixed_name(file_prefix, name);
                if (!path.isNull()) {
                    *files << std::move(path);
                }
                continue;
            }
            QString text = decoded_name(name);
            if (text.isNull()) {
                continue;
            }
            *(is_dir ? dirs : files) << std::move(text);
        }
    }
    ::close(fd);
}

// `dir` without closing "/" (but the root), and the prefix of its children.
QString without_closing_slash(const QString& dir) {
    QString base = dir;
    while (base.size() > 1 && base.endsWith(u'/')) {
        base.chop(1);
    }
    return base;
}

void keep_matching(QStringList& names, const FilePatterns& match) {
    if (!match.matches_everything()) {
        names.removeIf([&match](const QString& n) { return !match.matches(n); });
    }
}

QString folded(const QString& s) {
    return s.toCaseFolded();
}

}  // namespace

void prefix_paths(QStringList& names, const QString& directory) {
    const QString prefix = directory.endsWith(u'/') ? directory : directory + u'/';
    for (QString& name : names) {
        QString full;
        full.reserve(prefix.size() + name.size());
        full += prefix;
        full += name;
        name = std::move(full);
    }
}

void sort_ignoring_case(QStringList& names) {
    sort_names_ignoring_case(names, 0);
}

void sort_names_ignoring_case(QStringList& paths, qsizetype from) {
    // The comparison folds case as it goes, so no folded copies are made.
    std::sort(paths.begin(), paths.end(), [from](const QString& a, const QString& b) {
        const QStringView x = QStringView(a).mid(from);
        const QStringView y = QStringView(b).mid(from);
        const int c = x.compare(y, Qt::CaseInsensitive);
        return c != 0 ? c < 0 : x < y;
    });
}

QStringList subdirectory_paths(const QString& dir) {
    const QString base = without_closing_slash(dir);
    QStringList out;
    list_entries(base, &out, nullptr);
    sort_ignoring_case(out);
    prefix_paths(out, base);
    return out;
}

QStringList matching_file_names(const QString& dir, const QString& patterns) {
    QStringList names;
    list_entries(dir, nullptr, &names);
    keep_matching(names, FilePatterns(patterns));
    sort_ignoring_case(names);
    return names;
}

DirectoryLevel read_directory_level(const QString& dir, const FilePatterns& patterns) {
    const QString base = without_closing_slash(dir);
    const QString prefix = base.endsWith(u'/') ? base : base + u'/';
    DirectoryLevel level;
    list_entries(base, &level.subdirectories, &level.file_paths, &level, prefix);
    sort_ignoring_case(level.subdirectories);
    prefix_paths(level.subdirectories, base);
    if (!patterns.matches_everything()) {
        level.file_paths.removeIf(
            [&](const QString& path) { return !patterns.matches(path.mid(prefix.size())); });
    }
    // Paths of one directory share their prefix: they sort as their names,
    // and only the names are compared.
    sort_names_ignoring_case(level.file_paths, prefix.size());
    return level;
}

FilePatterns::FilePatterns(const QString& patterns) {
    const QStringList parts = patterns.split(u';', Qt::SkipEmptyParts);
    for (const QString& part : parts) {
        Pattern p;
        p.text = folded(part.trimmed());
        if (p.text.isEmpty()) {
            continue;
        }
        // "name.*" also takes "name" itself, as the classic file boxes do, so
        // "*.*" lists files that have no extension.
        while (p.text.size() > 2 && p.text.endsWith(QLatin1String(".*"))) {
            p.text.chop(2);
            p.optional_extension = true;
        }
        if (p.text == QLatin1String("*")) {
            all_ = true;
        }
        patterns_.push_back(p);
    }
    if (patterns_.empty()) {
        all_ = true;  // no pattern at all shows every file
    }
}

bool FilePatterns::matches(const QString& name) const {
    if (all_) {
        return true;
    }
    const QString n = folded(name);
    for (const Pattern& p : patterns_) {
        if (wildcard_match(p.text, n)) {
            return true;
        }
        if (p.optional_extension && wildcard_match(p.text + QLatin1String(".*"), n)) {
            return true;
        }
    }
    return false;
}

// Glob match of "*" and "?" with one backtrack point: linear for the
// patterns file boxes use.
bool FilePatterns::wildcard_match(const QString& pattern, const QString& name) {
    qsizetype p = 0, n = 0, star = -1, resume = 0;
    while (n < name.size()) {
        if (p < pattern.size() && (pattern[p] == u'?' || pattern[p] == name[n])) {
            ++p;
            ++n;
        } else if (p < pattern.size() && pattern[p] == u'*') {
            star = p++;
            resume = n;
        } else if (star >= 0) {
            p = star + 1;
            n = ++resume;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == u'*') {
        ++p;
    }
    return p == pattern.size();
}
