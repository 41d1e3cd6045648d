#pragma once

#include "app/program_state.h"
#include "core/app_state.h"
#include "core/context.h"
#include "support/qt_print.h"
#include "support/scripted_dialogs.h"

#include <QImage>
#include <QString>
#include <QTemporaryDir>

#include <vector>

// A temporary application directory for one test: a copy of the delivered
// catalog, a settings file path, and a context with scripted dialogs. The
// catalog is open and `database_path` set, as after a normal start.
class TestHome {
public:
    // `with_catalog` false gives an empty directory, as on a first run.
    explicit TestHome(bool with_catalog = true);

    QString dir() const { return tmp_.path(); }
    QString path(const QString& name) const { return tmp_.path() + u'/' + name; }
    // Writes a small text file and returns its path (directories made as needed).
    QString write_file(const QString& name, const QByteArray& bytes = QByteArray("x")) const;
    // Makes a file, or a directory when `name` ends in "/", under a name of
    // raw bytes (such as Latin-1 "\xe9t\xe9.jpg", which no text names). The
    // toolkit cannot remove such names; the home removes them at its end.
    void make_raw(const QByteArray& name);
    // Writes an image of the given size and returns its path; the type follows the name.
    QString write_image(const QString& name, int width, int height,
                        QColor color = QColor(200, 120, 40)) const;

    ProgramState program;
    AppState& app = program.app;
    ScriptedDialogs dialogs;
    RecordingUi ui;
    RecordingShell shell;
    Context ctx{app, dialogs, ui, shell};

    ~TestHome();

private:
    QTemporaryDir tmp_;
    std::vector<QByteArray> raw_;
};

// The bytes of a file, empty when it cannot be read; and the same as text.
QByteArray read_bytes(const QString& path);
QString read_text(const QString& path);

// Runs `sql` on the test's catalog and returns the first column of every row.
QStringList query_column(AppState& app, const QString& sql);
