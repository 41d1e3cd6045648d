#pragma once

#include <QDateTime>
#include <QString>
#include <QStringList>

#include <vector>

// A settings file in the profile format: "[Section]" lines and "Key=Value"
// lines. Sections and keys compare without regard to case. A read takes a
// buffer size and returns at most that many characters less one, as the
// profile calls do; a value is trimmed of blanks and of one pair of enclosing
// quotes. Every write reaches the disk at once: the whole file is written to
// a temporary file and renamed into place, so a crash never leaves half a file
// (in place where no temporary file can be made beside it). A line break in a
// section, key or value is stored as a blank, so one entry stays one line.
class ProfileFile {
public:
    static constexpr int kBuffer = 255;

    explicit ProfileFile(QString path = QString());

    const QString& path() const { return path_; }
    void set_path(const QString& path);
    bool exists() const;

    // The value of `key` in `section`, or `fallback` when there is no such key;
    // cut to `buffer_size` - 1 characters in both cases.
    QString read(const QString& section, const QString& key, const QString& fallback = QString(),
                 int buffer_size = kBuffer) const;
    // True when the key stands in the section, whatever its value.
    bool contains(const QString& section, const QString& key) const;
    // Writes a value; a null value (QString()) deletes the key instead.
    // Returns false when the file could not be written.
    bool write(const QString& section, const QString& key, const QString& value);
    bool remove(const QString& section, const QString& key) {
        return write(section, key, QString());
    }

    // Section names and keys in file order, for inspection.
    QStringList sections() const;
    QStringList keys(const QString& section) const;

private:
    struct Line {
        QString text;
    };
    void load() const;
    bool save();
    int find_section(const QString& section) const;      // index of the header line, -1
    int find_key(int header, const QString& key) const;  // index of the key line, -1
    int section_end(int header) const;                   // one past the last line of it

    QString path_;
    mutable std::vector<QString> lines_;
    mutable bool loaded_ = false;
    mutable QDateTime stamp_;
    mutable qint64 size_ = -1;
};
