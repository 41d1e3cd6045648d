#include "core/profile_file.h"

#include "core/file_helpers.h"

#include <QFile>
#include <QFileInfo>

namespace {

bool is_header(const QString& line, QString* name = nullptr) {
    const QString t = line.trimmed();
    if (!t.startsWith(u'[')) {
        return false;
    }
    const int close = t.indexOf(u']');
    if (close < 0) {
        return false;
    }
    if (name) {
        *name = t.mid(1, close - 1).trimmed();
    }
    return true;
}

// The key of a "Key=Value" line, trimmed; a null string for other lines.
QString key_of(const QString& line) {
    const int eq = line.indexOf(u'=');
    if (eq < 0) {
        return QString();
    }
    return line.left(eq).trimmed();
}

QString value_of(const QString& line) {
    QString v = line.mid(line.indexOf(u'=') + 1).trimmed();
    if (v.size() >= 2 && (v.front() == u'"' || v.front() == u'\'') && v.back() == v.front()) {
        v = v.mid(1, v.size() - 2);
    }
    return v;
}

// The file is one entry a line: a line break inside a name or a value would
// end it early and turn the rest into a line of its own. Each break (CR LF,
// CR or LF) is stored as one blank instead, so that the file reads back
// whole.
QString on_one_line(const QString& text) {
    if (!text.contains(u'\n') && !text.contains(u'\r')) {
        return text;
    }
    QString out = text;
    out.replace(QStringLiteral("\r\n"), QStringLiteral(" "));
    out.replace(u'\r', u' ');
    out.replace(u'\n', u' ');
    return out;
}

}  // namespace

ProfileFile::ProfileFile(QString path) : path_(std::move(path)) {}

void ProfileFile::set_path(const QString& path) {
    path_ = path;
    loaded_ = false;
}

bool ProfileFile::exists() const {
    return QFileInfo(path_).isFile();
}

void ProfileFile::load() const {
    const QFileInfo info(path_);
    const QDateTime stamp = info.exists() ? info.lastModified() : QDateTime();
    const qint64 size = info.exists() ? info.size() : -1;
    if (loaded_ && stamp == stamp_ && size == size_) {
        return;
    }
    lines_.clear();
    QFile f(path_);
    if (f.open(QIODevice::ReadOnly)) {
        const QString all = QString::fromUtf8(f.readAll());
        QStringList split = all.split(u'\n');
        if (!split.isEmpty() && split.back().isEmpty()) {
            split.removeLast();
        }
        for (QString& l : split) {
            if (l.endsWith(u'\r')) {
                l.chop(1);
            }
            lines_.push_back(l);
        }
    }
    loaded_ = true;
    stamp_ = stamp;
    size_ = size;
}

bool ProfileFile::save() {
    QByteArray bytes;
    for (const QString& l : lines_) {
        bytes += l.toUtf8();
        bytes += "\r\n";
    }
    if (!write_whole_file(path_, bytes).isEmpty()) {
        loaded_ = false;
        return false;
    }
    const QFileInfo info(path_);
    stamp_ = info.lastModified();
    size_ = info.size();
    return true;
}

int ProfileFile::find_section(const QString& section) const {
    const QString wanted = section.trimmed();
    QString name;
    for (int i = 0; i < static_cast<int>(lines_.size()); ++i) {
        if (is_header(lines_[i], &name) && name.compare(wanted, Qt::CaseInsensitive) == 0) {
            return i;
        }
    }
    return -1;
}

int ProfileFile::section_end(int header) const {
    int i = header + 1;
    while (i < static_cast<int>(lines_.size()) && !is_header(lines_[i])) {
        ++i;
    }
    return i;
}

int ProfileFile::find_key(int header, const QString& key) const {
    const QString wanted = key.trimmed();
    const int end = section_end(header);
    for (int i = header + 1; i < end; ++i) {
        const QString k = key_of(lines_[i]);
        if (!k.isNull() && k.compare(wanted, Qt::CaseInsensitive) == 0) {
            return i;
        }
    }
    return -1;
}

QString ProfileFile::read(const QString& section, const QString& key, const QString& fallback,
                          int buffer_size) const {
    load();
    QString value = fallback.isNull() ? QStringLiteral("") : fallback;
    const int header = find_section(section);
    if (header >= 0) {
        const int line = find_key(header, key);
        if (line >= 0) {
            value = value_of(lines_[line]);
        }
    }
    if (buffer_size > 0 && value.size() > buffer_size - 1) {
        value.truncate(buffer_size - 1);
    }
    return value;
}

bool ProfileFile::contains(const QString& section, const QString& key) const {
    load();
    const int header = find_section(section);
    return header >= 0 && find_key(header, key) >= 0;
}

bool ProfileFile::write(const QString& section_text, const QString& key_text,
                        const QString& value_text) {
    const QString section = on_one_line(section_text);
    const QString key = on_one_line(key_text);
    const QString value = on_one_line(value_text);  // a null value stays null
    load();
    int header = find_section(section);
    if (value.isNull()) {
        if (header < 0) {
            return true;
        }
        const int line = find_key(header, key);
        if (line < 0) {
            return true;
        }
        lines_.erase(lines_.begin() + line);
        return save();
    }
    const QString text = key.trimmed() + u'=' + value;
    if (header < 0) {
        lines_.push_back(u'[' + section.trimmed() + u']');
        lines_.push_back(text);
        return save();
    }
    const int line = find_key(header, key);
    if (line >= 0) {
        // The key keeps the spelling it has in the file. A value that is
        // already there as written costs no write.
        const QString replaced = key_of(lines_[line]) + u'=' + value;
        if (replaced == lines_[line]) {
            return true;
        }
        lines_[line] = replaced;
        return save();
    }
    // A new key goes after the last non-blank line of its section.
    int at = section_end(header);
    while (at > header + 1 && lines_[at - 1].trimmed().isEmpty()) {
        --at;
    }
    lines_.insert(lines_.begin() + at, text);
    return save();
}

QStringList ProfileFile::sections() const {
    load();
    QStringList out;
    QString name;
    for (const QString& l : lines_) {
        if (is_header(l, &name)) {
            out << name;
        }
    }
    return out;
}

QStringList ProfileFile::keys(const QString& section) const {
    load();
    QStringList out;
    const int header = find_section(section);
    if (header < 0) {
        return out;
    }
    const int end = section_end(header);
    for (int i = header + 1; i < end; ++i) {
        const QString k = key_of(lines_[i]);
        if (!k.isNull()) {
            out << k;
        }
    }
    return out;
}
