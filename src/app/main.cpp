#include "app/program_state.h"
#include "core/startup.h"
#include "shell/application.h"
#include "shell/desktop_shell.h"
#include "shell/main_window.h"
#include "shell/qt_dialogs.h"

#include <QFont>
#include <QIcon>

int main(int argc, char** argv) {
    use_private_runtime_directory();
    QuilldexApplication application(argc, argv);
    application.setApplicationName(QStringLiteral("quilldex"));
    // Lets the desktop match the window to its menu entry and icon.
    application.setDesktopFileName(QStringLiteral("example.quilldex.Quilldex"));
    application.setWindowIcon(QIcon::fromTheme(QStringLiteral("quilldex")));
    application.setFont(QFont(QStringLiteral("DejaVu Sans"), 8));

    ProgramState program;
    AppState& app = program.app;
    set_application_paths(app,
                          resolve_application_directory(QCoreApplication::applicationDirPath()));
    QtDialogs dialogs(app.application_title);
    DesktopShell shell;
    application.set_error_dialogs(&dialogs);

    MainWindow window(app, dialogs, shell);
    dialogs.set_parent(&window);
    if (!window.start_application(application.arguments().mid(1))) {
        return 0;
    }
    return application.exec();
}
