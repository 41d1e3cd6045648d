#include "shell/directory_reader.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>

#include <algorithm>

namespace {

// Lists one level of `dir` with the given entry filters. QDirIterator takes
// the entry type from the directory listing itself where the file system
// gives it, so only links cost a look at their target.
QStringList list_entries(const QString& dir, QDir::Filters filters, bool full_paths) {
    QStringList out;
    if (dir.isEmpty()) {
        return out;
    }
    QDirIterator it(dir, filters | QDir::NoDotAndDotDot);
    while (it.hasNext()) {
        it.next();
        out << (full_paths ? it.filePath() : it.fileName());
    }
    return out;
}

QString folded(const QString& s) {
    return s.toCaseFolded();
}

}  // namespace

void sort_ignoring_case(QStringList& names) {
    // Folding once per name keeps the sort to plain comparisons.
    std::vector<std::pair<QString, QString>> keyed;
    keyed.reserve(names.size());
    for (const QString& n : names) {
        keyed.emplace_back(folded(n), n);
    }
    std::sort(keyed.begin(), keyed.end());
    for (qsizetype i = 0; i < names.size(); ++i) {
        names[i] = std::move(keyed[i].second);
    }
}

QStringList subdirectory_paths(const QString& dir) {
    QString base = dir;
    while (base.size() > 1 && base.endsWith(u'/')) {
        base.chop(1);
    }
    QStringList out = list_entries(base, QDir::Dirs, false);
    sort_ignoring_case(out);
    const QString prefix = base.endsWith(u'/') ? base : base + u'/';
    for (QString& name : out) {
        name.prepend(prefix);
    }
    return out;
}

QStringList matching_file_names(const QString& dir, const QString& patterns) {
    const FilePatterns match(patterns);
    QStringList names = list_entries(dir, QDir::Files, false);
    if (!match.matches_everything()) {
        names.removeIf([&match](const QString& n) { return !match.matches(n); });
    }
    sort_ignoring_case(names);
    return names;
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
