#include "catalog/vellumark_import.h"

#include "catalog/database.h"
#include "core/file_helpers.h"
#include "core/profile_file.h"
#include "core/run_error.h"

#include <QFile>
#include <QRegularExpression>

namespace {

// The lines of a text file, whichever of CR LF, CR or LF ends them.
QStringList lines_of(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        throw RunError(QStringLiteral("File not found: ") + path);
    }
    QString text = QString::fromUtf8(file.readAll());
    static const QRegularExpression line_end(QStringLiteral("\r\n|\r|\n"));
    QStringList lines = text.split(line_end);
    // A closing line end ends the last line; it starts no other.
    if (!lines.isEmpty() && lines.last().isEmpty()) {
        lines.removeLast();
    }
    return lines;
}

}  // namespace

void import_vellumark_ini(Context& ctx) {
    AppState& app = ctx.app;
    Dialogs::FileRequest request;
    request.title = QStringLiteral("Select Vellumark's Ini File");
    request.filter = QStringLiteral("INI (*.ini)|*.ini|All Files (*.*)|*.*");
    request.initial_directory = app.last_directory;
    const QString ini_path = ctx.dialogs.open_file(request);
    if (ini_path.isEmpty()) {
        return;
    }
    // Each failing statement is passed over and the next one runs: a file
    // imported before fails its update, and its pending row is dropped by
    // the next add.
    Recordset& rs = app.shared_recordset;
    passed_over([&] {
        rs.open(app.database,
                Sql(QStringLiteral("select * from filenames where filename = 'trash'")));
    });
    QStringList lines;
    passed_over([&] { lines = lines_of(ini_path); });
    const ProfileFile ini(ini_path);
    WriteBatch batch(app.database);
    for (const QString& line : lines) {
        batch.tick();
        const qsizetype equals = line.indexOf(u'=');
        if (equals < 0) {
            continue;
        }
        QString image = line.left(equals);
        if (!file_exists(image)) {
            continue;
        }
        QString text_file = line.mid(equals + 1);
        if (!file_exists(text_file)) {
            continue;
        }
        QString description = QStringLiteral("");
        passed_over([&] {
            for (const QString& text_line : lines_of(text_file)) {
                description += text_line + QChar(13) + QChar(10);
            }
        });
        passed_over([&] { rs.add_new(); });
        passed_over([&] {
            const QString title = ini.read(QStringLiteral("Associated Text Title"), image,
                                           QStringLiteral(""), ProfileFile::kBuffer);
            if (!title.isEmpty()) {
                rs.set_field(QStringLiteral("title"), title);
            }
        });
        passed_over([&] { rs.set_field(QStringLiteral("filename"), image); });
        passed_over([&] { rs.set_field(QStringLiteral("description"), description); });
        passed_over([&] { rs.update(); });
    }
    passed_over([&] { rs.close(); });
}
