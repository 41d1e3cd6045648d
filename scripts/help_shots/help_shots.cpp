// Makes the help page's pictures: the main window on each tab, as a user
// first sees it, one PNG per tab named after its caption.
// usage: help_shots OUTPUT_DIR   (with QUILLDEX_HOME naming a seeded directory)

#include "app/program_state.h"
#include "core/startup.h"
#include "shell/application.h"
#include "shell/desktop_shell.h"
#include "shell/main_window.h"
#include "shell/qt_dialogs.h"
#include "shell/tab_strip.h"

#include <QDir>
#include <QFont>
#include <QTextStream>
#include <QToolButton>

#include <cstdio>

int main(int argc, char** argv) {
    use_private_runtime_directory();
    QuilldexApplication application(argc, argv);
    application.setFont(QFont(QStringLiteral("DejaVu Sans"), 8));
    const QStringList args = application.arguments();
    if (args.size() != 2 || qEnvironmentVariableIsEmpty("QUILLDEX_HOME")) {
        std::fputs("usage: QUILLDEX_HOME=DIR help_shots OUTPUT_DIR\n", stderr);
        return 2;
    }
    const QString out = QDir(args.at(1)).absolutePath();
    QDir().mkpath(out);

    ProgramState program;
    set_application_paths(program.app,
                          resolve_application_directory(QCoreApplication::applicationDirPath()));
    QtDialogs dialogs(program.app.application_title);
    DesktopShell shell;
    MainWindow window(program.app, dialogs, shell);
    dialogs.set_parent(&window);
    if (!window.start_application({})) {
        return 1;
    }
    window.show();
    QTextStream written(stdout);
    TabStrip& tabs = window.tabs();
    for (int i = 0; i < tabs.count(); ++i) {
        if (!tabs.is_tab_visible(i)) {
            continue;
        }
        tabs.tab_button(i)->click();
        QCoreApplication::processEvents();
        const QString name = QStringLiteral("tab_%1.png")
                                 .arg(tabs.caption(i).toLower().remove(u'&').replace(u' ', u'_'));
        if (!window.grab().save(out + u'/' + name)) {
            std::fprintf(stderr, "cannot write %s\n", qPrintable(out + u'/' + name));
            return 1;
        }
        written << out << '/' << name << '\n';
    }
    return 0;
}
