#include "cli/cli.h"

#include "catalog/catalog_check.h"
#include "core/catalog_location.h"
#include "core/file_helpers.h"
#include "core/settings.h"
#include "core/startup.h"

#include <QCoreApplication>
#include <QDir>
#ifdef QUILLDEX_CLI_PICTURES
#include <QGuiApplication>
#endif

#include <unistd.h>

#include <climits>
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
    QString help;
};

std::map<std::string, Command>& commands() {
    static std::map<std::string, Command> table;
    return table;
}

const char* const program_usage = "usage: quilldex-cli [--home DIR] COMMAND [ARGS...]\n";

// The first line of a command's help: its summary.
QString summary(const Command& c) {
    return c.help.section(u'\n', 0, 0);
}

void print_usage(QTextStream& to) {
    to << program_usage;
    to << "       quilldex-cli COMMAND --help\n"
          "       quilldex-cli --help | --version\n";
}

void print_help(QTextStream& to) {
    print_usage(to);
    to << "\nRuns Quilldex's commands without the window, on the application directory\n"
          "DIR (default: the one the desktop program uses).\n\ncommands:\n";
    for (const auto& [name, c] : commands()) {
        to << "  " << QString::fromStdString(name).leftJustified(12) << ' ' << summary(c) << '\n';
    }
}

void print_command_help(QTextStream& to, const std::string& name, const Command& c) {
    to << "usage: quilldex-cli [--home DIR] " << QString::fromStdString(name) << ' ' << c.usage
       << '\n';
    if (!c.help.isEmpty()) {
        to << '\n' << c.help;
        if (!c.help.endsWith(u'\n')) {
            to << '\n';
        }
    }
}

}  // namespace

Dialogs::Answer CliDialogs::message(const QString& text, Buttons buttons, Icon) {
    err_ << text << '\n';
    err_.flush();
    return buttons == Buttons::Ok ? Answer::Ok : Answer::No;
}

CliSession::CliSession() : out(stdout), err(stderr) {}

CliHooks::CliHooks() : terminal_(isatty(STDERR_FILENO) == 1) {}

void CliHooks::show_progress(int done, int total) {
    // A terminal is redrawn a few times a second, not for every file.
    if (!terminal_ || (drawn_ && shown_.isValid() && shown_.elapsed() < 100)) {
        return;
    }
    if (total > 0) {
        std::fprintf(stderr, "\033[K[%d/%d]\r", done, total);
    } else {
        std::fprintf(stderr, "\033[K[%d]\r", done);
    }
    std::fflush(stderr);
    drawn_ = true;
    shown_.start();
}

void CliHooks::end_progress() {
    if (drawn_) {
        std::fputs("\033[K", stderr);
        std::fflush(stderr);
        drawn_ = false;
    }
}

int CliSession::usage_error(const QString& message) {
    err << "quilldex-cli: " << message << '\n';
    err << "usage: quilldex-cli [--home DIR] " << command << ' ' << usage << '\n';
    err.flush();
    return 2;
}

CliRegistration::CliRegistration(const char* name, const char* usage, CliRun run, bool needs_images,
                                 bool needs_catalog, const char* help) {
    commands()[name] = {QString::fromLatin1(usage), run, needs_images, needs_catalog,
                        help ? QString::fromUtf8(help) : QString()};
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

#ifndef QUILLDEX_CLI_PICTURES
// Hands the whole command line on to the picture program: beside this one in
// a build or portable tree, or in the installation's library directory.
// Returns only when neither can be started.
void hand_on_to_picture_program(char** argv) {
    char self[PATH_MAX];
    const ssize_t n = ::readlink("/proc/self/exe", self, sizeof self - 1);
    if (n <= 0) {
        return;
    }
    self[n] = '\0';
    std::string dir(self);
    dir.erase(dir.rfind('/') + 1);
    for (const char* place : {"quilldex-cli-images", "../libexec/quilldex/quilldex-cli-images"}) {
        ::execv((dir + place).c_str(), argv);
    }
}
#endif

// Answers --help, --version and "COMMAND --help", which need no application
// directory; returns -1 for every other command line.
int answer_without_directory(const QStringList& args) {
    QTextStream out(stdout);
    if (args.size() == 1 && (args.at(0) == QLatin1String("--help") || args.at(0) == u"-h")) {
        print_help(out);
        return 0;
    }
    if (args.size() == 1 && args.at(0) == QLatin1String("--version")) {
        out << "quilldex-cli " << QUILLDEX_VERSION << '\n';
        return 0;
    }
    if (args.size() >= 2 && (args.contains(QLatin1String("--help")) || args.contains(u"-h"))) {
        const auto found = commands().find(args.at(0).toStdString());
        if (found != commands().end()) {
            print_command_help(out, found->first, found->second);
            return 0;
        }
    }
    return -1;
}

}  // namespace

int main(int argc, char** argv) {
    const std::string word = command_word(argc, argv);
#ifndef QUILLDEX_CLI_PICTURES
    if (!commands().count(word)) {
        // A picture command, a question about all commands, or none: the
        // picture program knows them all.
        hand_on_to_picture_program(argv);
    }
#endif
    use_private_runtime_directory();
    {
        QStringList raw;
        for (int i = 1; i < argc; ++i) {
            raw << QString::fromLocal8Bit(argv[i]);
        }
        if (raw.size() >= 2 && raw.at(0) == QLatin1String("--home")) {
            raw = raw.mid(2);
        }
        const int answered = answer_without_directory(raw);
        if (answered >= 0) {
            return answered;
        }
    }
#ifdef QUILLDEX_CLI_PICTURES
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
#else
    QCoreApplication application(argc, argv);
#endif
    CliSession session;
    QStringList args = QCoreApplication::arguments().mid(1);
    QString home;
    if (!args.isEmpty() && args.at(0) == QLatin1String("--home")) {
        if (args.size() < 2) {
            session.err << "quilldex-cli: option --home needs a value\n";
            print_usage(session.err);
            return 2;
        }
        home = args.at(1);
        args = args.mid(2);
    }
    if (args.isEmpty()) {
        print_usage(session.err);
        return 2;
    }
    if (!commands().count(args.at(0).toStdString())) {
        session.err << "quilldex-cli: unknown command '" << args.at(0)
                    << "' (quilldex-cli --help lists the commands)\n";
        print_usage(session.err);
        return 2;
    }
    const Command command = commands()[args.at(0).toStdString()];
    session.command = args.at(0);
    session.usage = command.usage;
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
