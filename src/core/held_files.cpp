#include "core/held_files.h"

#include "core/app_state.h"
#include "core/file_helpers.h"
#include "core/run_error.h"

#include <QByteArray>
#include <QFile>
#include <QFileInfo>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>

namespace {

constexpr const char* kCatalogCompanions[] = {"", "-journal", "-wal", "-shm"};
constexpr const char* kPrograms[] = {"quilldex", "quilldex-cli"};

QPair<quint64, quint64> id_of(const struct stat& st) {
    return {static_cast<quint64>(st.st_dev), static_cast<quint64>(st.st_ino)};
}

}  // namespace

// The running program, its companion program beside it, and every file
// mapped to run it: the executable and the libraries it runs on, as the
// platform locks them while they are in use. (Files that are merely open,
// such as an image being read, are not held: a command may write a thumbnail
// over its own source.)
QSet<QPair<quint64, quint64>> HeldFiles::program_files() {
    HeldFiles found;
    // The running program and its companion program beside it.
    const QString self = QFile::symLinkTarget(QStringLiteral("/proc/self/exe"));
    if (!self.isEmpty()) {
        const QString dir = QFileInfo(self).path();
        for (const char* program : kPrograms) {
            found.add(dir + u'/' + QLatin1String(program));
        }
    }

    // Every file mapped to run: the executable and the libraries it runs
    // on, as the platform locks them while they are in use. (Files that are
    // merely open, such as an image being read, are not held: a command may
    // write a thumbnail over its own source.) A file's mappings come one
    // after another: each is looked at once.
    if (FILE* maps = std::fopen("/proc/self/maps", "re")) {
        char line[4096];
        std::string previous;
        while (std::fgets(line, sizeof line, maps)) {
            // "start-end perms offset device inode path"
            const char* perms = std::strchr(line, ' ');
            const char* slash = std::strchr(line, '/');
            if (!perms || !slash || perms[3] != 'x') {
                continue;
            }
            std::string path(slash);
            if (!path.empty() && path.back() == '\n') {
                path.pop_back();
            }
            if (path != previous) {
                found.add_native(path.c_str());
                previous = std::move(path);
            }
        }
        std::fclose(maps);
    }
    return found.ids_;
}

HeldFiles::HeldFiles(const AppState& app) {
    if (!app.database_path.isEmpty()) {
        for (const char* companion : kCatalogCompanions) {
            add(app.database_path + QLatin1String(companion));
        }
    }
    add(app.settings.path());
    add(app.ini_path);

    // The program's own files, found once for the run: a command that checks
    // every file it writes must not read the process's mappings each time.
    static const QSet<QPair<quint64, quint64>> program = program_files();
    ids_.unite(program);
}

void HeldFiles::add(const QString& path) {
    if (!path.isEmpty()) {
        add_native(QFile::encodeName(path).constData());
    }
}

// A name counts both as itself and as what it leads to, so that neither a
// link to the catalog nor the catalog behind a link is taken for a free file.
void HeldFiles::add_native(const char* path) {
    struct stat st;
    if (::lstat(path, &st) == 0) {
        ids_.insert(id_of(st));
        if (S_ISLNK(st.st_mode) && ::stat(path, &st) == 0) {
            ids_.insert(id_of(st));
        }
    }
}

bool HeldFiles::holds(const QString& path) const {
    struct stat st;
    return ::lstat(QFile::encodeName(path).constData(), &st) == 0 && ids_.contains(id_of(st));
}

void refuse_held_file(const HeldFiles& held, const QString& path) {
    if (held.holds(path)) {
        throw RunError(QStringLiteral("Permission denied: ") + path);
    }
}

void delete_unheld_file(const HeldFiles& held, const QString& path) {
    refuse_held_file(held, path);
    delete_file(path);
}
