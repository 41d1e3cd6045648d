#include "shell/held_files.h"

#include "shell/app_state.h"
#include "shell/file_helpers.h"
#include "shell/run_error.h"

#include <QByteArray>
#include <QDir>
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

HeldFiles::HeldFiles(const AppState& app) {
    if (!app.database_path.isEmpty()) {
        for (const char* companion : kCatalogCompanions) {
            add(app.database_path + QLatin1String(companion));
        }
    }
    add(app.settings.path());
    add(app.ini_path);

    // The running program and its companion program beside it.
    const QString self = QFile::symLinkTarget(QStringLiteral("/proc/self/exe"));
    if (!self.isEmpty()) {
        const QString dir = QFileInfo(self).path();
        for (const char* program : kPrograms) {
            add(dir + u'/' + QLatin1String(program));
        }
    }

    // Every file open in the process (the catalog and its journal among
    // them), each as what it is on disk, whatever name opened it.
    const QDir fds(QStringLiteral("/proc/self/fd"));
    for (const QString& fd :
         fds.entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)) {
        struct stat st;
        if (::stat(QFile::encodeName(fds.filePath(fd)).constData(), &st) == 0 &&
            S_ISREG(st.st_mode)) {
            ids_.insert(id_of(st));
        }
    }
    // Every file mapped: the executable and the libraries it runs on.
    if (FILE* maps = std::fopen("/proc/self/maps", "re")) {
        char line[4096];
        while (std::fgets(line, sizeof line, maps)) {
            const char* slash = std::strchr(line, '/');
            if (!slash) {
                continue;
            }
            std::string path(slash);
            while (!path.empty() && (path.back() == '\n' || path.back() == ' ')) {
                path.pop_back();
            }
            add_native(path.c_str());
        }
        std::fclose(maps);
    }
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

void delete_unheld_file(const HeldFiles& held, const QString& path) {
    if (held.holds(path)) {
        throw RunError(QStringLiteral("Permission denied: ") + path);
    }
    delete_file(path);
}
