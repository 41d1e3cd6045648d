#pragma once

#include <QPair>
#include <QSet>
#include <QString>

struct AppState;

// The files the running program holds: the catalog in use with its
// -journal, -wal and -shm files, the settings file, and the program's own
// executables and the libraries it runs on. Where the platform's locks once
// made a delete of them fail, a command that deletes files passes over them
// the same way, so that clearing the application directory keeps the catalog
// and the settings. Taken once, as they stand, for one command.
class HeldFiles {
public:
    explicit HeldFiles(const AppState& app);

    // True when `path` (not following a last symbolic link) is one of them.
    bool holds(const QString& path) const;

private:
    HeldFiles() = default;
    static QSet<QPair<quint64, quint64>> program_files();
    void add(const QString& path);
    void add_native(const char* path);
    QSet<QPair<quint64, quint64>> ids_;
};

// Throws, as writing over a locked file did, when `held` holds `path`: the
// RunError "Permission denied: " + path. For a command about to write over it.
void refuse_held_file(const HeldFiles& held, const QString& path);

// Deletes `path` unless `held` holds it. A held file fails as a locked one
// did, with RunError "Permission denied: " + path; other failures are those
// of delete_file.
void delete_unheld_file(const HeldFiles& held, const QString& path);
