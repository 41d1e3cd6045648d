#include "core/startup.h"

#include "core/file_helpers.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <sys/stat.h>
#include <unistd.h>
#include <cerrno>

namespace {

// Copies FROM to TO through a temporary file beside TO, so that a copy cut
// short never leaves half a catalog where the program would open it.
bool copy_whole(const QString& from, const QString& to) {
    QDir().mkpath(QFileInfo(to).absolutePath());
    const QString part = to + QStringLiteral(".part");
    QFile::remove(part);
    if (!QFile::copy(from, part)) {
        return false;
    }
    QFile copy(part);
    copy.setPermissions(copy.permissions() | QFileDevice::WriteOwner);
    // The copy keeps the installed file's time, by which an upgrade is seen.
    if (copy.open(QIODevice::ReadWrite)) {
        copy.setFileTime(QFileInfo(from).lastModified(), QFileDevice::FileModificationTime);
        copy.close();
    }
    QFile::remove(to);
    if (!QFile::rename(part, to)) {
        QFile::remove(part);
        return false;
    }
    return true;
}

// Seeds a per-user application directory from the installed copy: what is
// missing is copied. The catalog is the user's from then on and is never
// replaced; the help page and what it shows follow the installed copy when
// that changes (an upgrade of the program).
void seed_application_directory(const QString& installed, const QString& data) {
    QDirIterator it(installed, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString from = it.next();
        const QString relative = QDir(installed).relativeFilePath(from);
        const QString to = data + u'/' + relative;
        const QFileInfo there(to);
        if (there.exists() && (relative == QLatin1String("qd.mdb") ||
                               there.lastModified() == it.fileInfo().lastModified())) {
            continue;
        }
        copy_whole(from, to);
    }
}

}  // namespace

QString resolve_application_directory(const QString& program_directory) {
    const QString home = qEnvironmentVariable("QUILLDEX_HOME");
    if (!home.isEmpty()) {
        QDir().mkpath(home);
        return QDir::cleanPath(QDir(home).absolutePath());
    }
    const QString own = QDir::cleanPath(program_directory);
    if (QFileInfo(own).isWritable() && QFileInfo(own + QStringLiteral("/qd.mdb")).isFile()) {
        return own;
    }
    QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    data = QDir::cleanPath(data + QStringLiteral("/quilldex"));
    QDir().mkpath(data);
    // The installed copy: beside the program when it was unpacked in one
    // directory, else in the shared data of the installation (/usr/share).
    for (const QString& installed :
         {QDir::cleanPath(own + QStringLiteral("/../share/quilldex")), own}) {
        if (QFileInfo(installed + QStringLiteral("/qd.mdb")).isFile()) {
            if (installed == own) {
                for (const char* name : {"qd.mdb", "qdhelp.htm"}) {
                    const QString to = data + u'/' + QLatin1String(name);
                    if (!QFileInfo::exists(to)) {
                        copy_whole(own + u'/' + QLatin1String(name), to);
                    }
                }
            } else {
                seed_application_directory(installed, data);
            }
            break;
        }
    }
    return data;
}

void use_private_runtime_directory() {
    if (!qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")) {
        return;
    }
    const QByteArray dir = QFile::encodeName(QDir::tempPath()) + "/quilldex-runtime-" +
                           QByteArray::number(static_cast<qulonglong>(getuid()));
    if (mkdir(dir.constData(), 0700) != 0 && errno != EEXIST) {
        return;
    }
    // Only a directory of this user's that nobody else can enter will do.
    struct stat st {};
    if (lstat(dir.constData(), &st) != 0 || !S_ISDIR(st.st_mode) || st.st_uid != getuid()) {
        return;
    }
    if ((st.st_mode & 07777) != 0700 && chmod(dir.constData(), 0700) != 0) {
        return;
    }
    qputenv("XDG_RUNTIME_DIR", dir);
}

void set_application_paths(AppState& app, const QString& app_dir) {
    app.app_dir = app_dir;
    if (app.app_dir.size() > 1 && app.app_dir.endsWith(u'/')) {
        app.app_dir.chop(1);
    }
    app.ini_path = app.app_dir + QStringLiteral("/quilldex.ini");
    app.uninstall_ini_path = app.app_dir + QStringLiteral("/uninstall.ini");
    app.settings.set_path(app.ini_path);
}

void update_uninstall_ini(AppState& app) {
    ProfileFile uninstall(app.uninstall_ini_path);
    if (!file_exists_at(app.uninstall_ini_path)) {
        for (int n = 1; n <= 9999; ++n) {
            const QString key = QStringLiteral("%1File").arg(n);
            const QString value = uninstall.read(QStringLiteral("Files"), key);
            if (value.compare(app.ini_path, Qt::CaseInsensitive) == 0) {
                uninstall.write(QStringLiteral("Files"), key, QStringLiteral("{ini file removed}"));
                break;
            }
        }
    }
    uninstall.write(QStringLiteral("Current"), QStringLiteral("Version"), app.application_title);
    uninstall.write(QStringLiteral("Current"), QStringLiteral("Path"), app.app_dir);
}

bool command_line_turns_log_on(const QStringList& arguments) {
    return arguments.join(u' ').toLower() == QLatin1String("log_messages");
}

QString command_line_switch(const QString& command_line, const QString& sw) {
    const QString line = command_line.toLower();
    const int at = line.indexOf(sw.toLower());
    if (at < 0) {
        return QStringLiteral("");
    }
    if (sw.toLower() != QLatin1String("/f")) {
        return sw;
    }
    const int from = at + static_cast<int>(sw.size());
    int to = line.indexOf(u'/', from);
    if (to < 0) {
        to = static_cast<int>(line.size());
    }
    QString path = command_line.mid(from, to - from);
    return file_exists(path) ? path : QStringLiteral("");
}

QStringList load_file_types() {
    return {QStringLiteral("*.*"),         QStringLiteral("*.art"), QStringLiteral("*.avi"),
            QStringLiteral("*.bmp"),       QStringLiteral("*.cut"), QStringLiteral("*.dib"),
            QStringLiteral("*.emf"),       QStringLiteral("*.gem"), QStringLiteral("*.gif"),
            QStringLiteral("*.gif;*.jpg"), QStringLiteral("*.hrz"), QStringLiteral("*.htm"),
            QStringLiteral("*.iff"),       QStringLiteral("*.img"), QStringLiteral("*.jpg"),
            QStringLiteral("*.jpg;*.gif"), QStringLiteral("*.lbm"), QStringLiteral("*.mac"),
            QStringLiteral("*.mid"),       QStringLiteral("*.mpg"), QStringLiteral("*.msp"),
            QStringLiteral("*.pcx"),       QStringLiteral("*.png"), QStringLiteral("*.ras"),
            QStringLiteral("*.rle"),       QStringLiteral("*.rmi"), QStringLiteral("*.tga"),
            QStringLiteral("*.tif"),       QStringLiteral("*.txt"), QStringLiteral("*.wav"),
            QStringLiteral("*.wmf"),       QStringLiteral("*.wpg")};
}

void make_application_directories(AppState& app) {
    make_directory(app.temp_directory());
    app.slide_shows_directory = app.app_dir + QStringLiteral("/slide_shows");
    make_directory(app.slide_shows_directory);
}

void write_page_fragments(AppState& app) {
    const auto write_missing = [&](const char* name, const QStringList& lines) {
        const QString path = app.app_dir + u'/' + QLatin1String(name);
        if (file_exists_at(path)) {
            return;
        }
        QFile f(path);
        if (f.open(QIODevice::WriteOnly)) {
            for (const QString& l : lines) {
                f.write(l.toUtf8() + "\r\n");
            }
        }
    };
    write_missing("htmlhead.htm", {QStringLiteral("<html>"), QStringLiteral("<center>"),
                                   QStringLiteral("<h1>Corvane HTML Output</h1>"),
                                   QStringLiteral("</center>"), QStringLiteral("<p>")});
    write_missing("htmlfoot.htm", {QStringLiteral("</body>"), QStringLiteral("</html>")});
}
