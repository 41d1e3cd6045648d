#include "cli/cli.h"

#include "catalog/catalog_check.h"
#include "core/catalog_location.h"
#include "core/file_helpers.h"
#include "core/settings.h"
#include "core/startup.h"

#include <QDir>
#include <QGuiApplication>

#include <cstdio>
#include <map>
#include <memory>
#include <string>

namespace {

struct Command {
    QString usage;
    CliRun run;
    bool needs_images = true;
    bool needs_catalog = true;
};

std::map<std::string, Command>& commands() {
    static std::map<std::string, Command> table;
    return table;
}

void print_usage(QTextStream& err) {
    err << "usage: quilldex-cli [--home DIR] COMMAND ARGS...\n";
    for (const auto& [name, c] : commands()) {
        err << "  " << QString::fromStdString(name) << ' ' << c.usage << '\n';
    }
}

}  // namespace

Dialogs::Answer CliDialogs::message(const QString& text, Buttons buttons, Icon) {
    err_ << text << '\n';
    err_.flush();
    return buttons == Buttons::Ok ? Answer::Ok : Answer::No;
}

CliSession::CliSession() : out(stdout), err(stderr) {}

CliRegistration::CliRegistration(const char* name, const char* usage, CliRun run, bool needs_images,
                                 bool needs_catalog) {
    commands()[name] = {QString::fromLatin1(usage), run, needs_images, needs_catalog};
}

CliArgs::CliArgs(const QStringList& args, const QStringList& flags) {
    for (int i = 0; i < args.size(); ++i) {
        const QString& a = args.at(i);
        if (a.startsWith(QLatin1String("--")) && a.size() > 2) {
            const QString name = a.mid(2);
            if (flags.contains(name)) {
                options.insert(name, QStringLiteral("yes"));
            } else if (i + 1 < args.size()) {
                options.insert(name, args.at(++i));
            } else if (error.isEmpty()) {
                error = QStringLiteral("option --%1 needs a value").arg(name);
            }
        } else {
            words << a;
        }
    }
}

namespace {

// The command word of the command line, or "".
std::string command_word(int argc, char** argv) {
    int i = 1;
    if (i < argc && std::string(argv[i]) == "--home") {
        i += 2;
    }
    return i < argc ? std::string(argv[i]) : std::string();
}

}  // namespace

int main(int argc, char** argv) {
    const std::string word = command_word(argc, argv);
    const bool images = !commands().count(word) || commands()[word].needs_images;
    std::unique_ptr<QCoreApplication> application;
    if (images) {
        // Images are decoded and painted without a screen.
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
            qputenv("QT_QPA_PLATFORM", "offscreen");
        }
        application = std::make_unique<QGuiApplication>(argc, argv);
    } else {
        application = std::make_unique<QCoreApplication>(argc, argv);
    }
    CliSession session;
    QStringList args = QCoreApplication::arguments().mid(1);
    QString home;
    if (args.size() >= 2 && args.at(0) == QLatin1String("--home")) {
        home = args.at(1);
        args = args.mid(2);
    }
    if (args.isEmpty() || !commands().count(args.at(0).toStdString())) {
        print_usage(session.err);
        return 2;
    }
    const Command command = commands()[args.at(0).toStdString()];
    if (!home.isEmpty()) {
        if (!QFileInfo(home).isDir()) {
            session.err << "The application directory " << home << " does not exist.\n";
            return 2;
        }
        qputenv("QUILLDEX_HOME", QDir(home).absolutePath().toUtf8());
    }
    AppState& app = session.app;
    set_application_paths(app,
                          resolve_application_directory(QCoreApplication::applicationDirPath()));
    make_application_directories(app);
    if (command.needs_catalog) {
        read_settings(session.ctx, find_database_at_start);
        if (!catalog_exists(app.database_path)) {
            session.err.flush();
            return 2;
        }
    } else {
        read_settings(session.ctx);
    }
    try {
        const int code = command.run(session, args.mid(1));
        session.out.flush();
        session.err.flush();
        return code;
    } catch (const RunError& e) {
        session.err << e.text() << '\n';
    } catch (const std::exception& e) {
        session.err << e.what() << '\n';
    }
    return 1;
}
