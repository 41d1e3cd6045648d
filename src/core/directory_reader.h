#pragma once

#include <QString>
#include <QStringList>

#include <vector>

// Reading one directory level, without widgets: what the directory and file
// boxes show, and what a directory walk gathers. Hidden entries (names that
// begin with ".") are left out, as the boxes leave them out. An unreadable or
// missing directory, or one that can be listed but not entered, gives an
// empty list. Every name listed opens again under that name: a name the
// toolkit cannot turn back into its bytes (not UTF-8) is left out.

// Full paths of the subdirectories of `dir`, symbolic links to directories
// included, sorted by name without regard to case.
QStringList subdirectory_paths(const QString& dir);

// Names of the plain files of `dir` (links to files included) that match one
// of the patterns of `patterns`, sorted by name without regard to case.
// Patterns are separated by ";" ("*.gif;*.jpg"), blanks around them are
// ignored, and matching ignores case. "*" stands for any run of characters
// and "?" for one character; a closing ".*" may also match nothing, so that
// "*.*" takes every file, a name without an extension included.
QStringList matching_file_names(const QString& dir, const QString& patterns);

// One compiled pattern list, for callers that test many names.
class FilePatterns {
public:
    explicit FilePatterns(const QString& patterns);
    bool matches(const QString& name) const;
    bool matches_everything() const { return all_; }

private:
    struct Pattern {
        QString text;  // lower-cased, closing ".*" runs removed
        bool optional_extension = false;
    };
    static bool wildcard_match(const QString& pattern, const QString& name);
    std::vector<Pattern> patterns_;
    bool all_ = false;
};

// One level of a directory read in one pass, for a walk of a whole tree: the
// same lists as subdirectory_paths and matching_file_names give, the files as
// full paths.
// `opened` tells whether the directory could be read; `device` and `node`
// then name it whatever path reached it, so a walk can tell a directory it has
// seen through a symbolic link.
struct DirectoryLevel {
    QStringList subdirectories;  // full paths
    QStringList file_paths;      // full paths
    bool opened = false;
    quint64 device = 0;
    quint64 node = 0;
};
DirectoryLevel read_directory_level(const QString& dir, const FilePatterns& patterns);

// Turns the names of entries of `directory` into full paths, with no second
// "/" after a root.
void prefix_paths(QStringList& names, const QString& directory);

// Sorts names or paths by text without regard to case; equal texts keep a
// fixed order by their exact case.
void sort_ignoring_case(QStringList& names);
// The same order for texts that share their first `from` characters, which
// are not compared: the paths of one directory.
void sort_names_ignoring_case(QStringList& paths, qsizetype from);
