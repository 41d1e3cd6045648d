#include "core/startup.h"

#include "core/file_helpers.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

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
    // Seed a new per-user directory from the installed copy.
    const QStringList sources = {own, own + QStringLiteral("/../share/quilldex")};
    for (const char* name : {"qd.mdb", "qdhelp.htm"}) {
        const QString target = data + u'/' + QLatin1String(name);
        if (QFileInfo::exists(target)) {
            continue;
        }
        for (const QString& s : sources) {
            const QString from = s + u'/' + QLatin1String(name);
            if (QFileInfo(from).isFile() && QFile::copy(from, target)) {
                QFile(target).setPermissions(QFile(target).permissions() | QFileDevice::WriteOwner);
                break;
            }
        }
    }
    return data;
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
