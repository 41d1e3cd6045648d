#pragma once

#include "catalog/database.h"
#include "core/context.h"

#include <QElapsedTimer>
#include <QHash>
#include <QString>
#include <QStringList>
#include <QTextStream>

#include <memory>

// Dialogs of the command-line program: a message goes to standard error, a
// question is answered No, and every other dialog is cancelled.
class CliDialogs : public Dialogs {
public:
    explicit CliDialogs(QTextStream& err) : err_(err) {}
    Answer message(const QString& text, Buttons buttons, Icon icon) override;
    QString input(const QString&, const QString&, const QString&) override { return QString(); }
    QString open_file(const FileRequest&) override { return QString(); }
    std::optional<int> choose_color(int) override { return std::nullopt; }
    DirectoryChoice choose_directory(const QString& start) override { return {start, true}; }

private:
    QTextStream& err_;
};

// The command line is two programs, so that a command pays only for what it
// uses: quilldex-cli runs the commands that make no picture and loads no image
// library; for any other command it hands the whole command line on to the
// picture program beside it, quilldex-cli-images, which runs every command.
// The worker of the picture program, and nothing in the other.
ImageControl* make_cli_worker();
void free_cli_worker(ImageControl* worker);

// What a running command sees of the command line: a progress line on
// standard error while that is a terminal, nothing when it is a file or pipe.
// The line ends in a carriage return, so that the next output overwrites it.
class CliHooks : public UiHooks {
public:
    CliHooks();
    void show_progress(int done, int total) override;
    void end_progress() override;

private:
    bool terminal_ = false;
    bool drawn_ = false;
    QElapsedTimer shown_;
};

// One run of the command-line program: an application directory opened as
// the window's start opens it, without the window.
struct CliSession {
    CliSession();
    QTextStream out;
    QTextStream err;
    Database database;
    Recordset shared_recordset;
    // The hidden worker, in the picture program only (cli_worker.cpp).
    std::unique_ptr<ImageControl, void (*)(ImageControl*)> worker{make_cli_worker(),
                                                                  &free_cli_worker};
    AppState app{database, shared_recordset, worker.get()};
    CliDialogs dialogs{err};
    CliHooks ui;
    NoShellServices shell;
    Context ctx{app, dialogs, ui, shell};
    // The running command's word and usage, for `usage_error`.
    QString command;
    QString usage;
    // A mistake in the command line: prints MESSAGE and the command's usage
    // line to standard error and gives the exit code 2.
    int usage_error(const QString& message);
};

using CliRun = int (*)(CliSession& session, const QStringList& args);

// A command of the program; one static instance per command file registers it.
// A command pays only for what it uses: one that decodes or draws no picture
// says so with `needs_images` false, and starts without the graphical
// application object; one that reads or writes no catalog says so with
// `needs_catalog` false, and runs without finding or opening one.
// `help`, when given, is what "COMMAND --help" prints below the usage line:
// a one-line summary, then one line per option (the first line also heads
// the command's row in "--help" and its entry in the manual page).
struct CliRegistration {
    CliRegistration(const char* name, const char* usage, CliRun run, bool needs_images = true,
                    bool needs_catalog = true, const char* help = nullptr);
};

// Reads "--name VALUE" options and bare words from a command's arguments.
// Options listed in `flags` take no value.
struct CliArgs {
    CliArgs(const QStringList& args, const QStringList& flags = {});
    bool has(const QString& name) const { return options.contains(name); }
    QString value(const QString& name, const QString& fallback = QString()) const {
        return options.value(name, fallback);
    }
    QHash<QString, QString> options;
    QStringList words;
    QString error;  // the first unknown or incomplete option
};
