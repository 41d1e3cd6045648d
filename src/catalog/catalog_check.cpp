#include "catalog/catalog_check.h"

#include "catalog/database.h"
#include "core/catalog_location.h"
#include "core/file_helpers.h"

namespace {

const char* kNotCorrect =
    "The database you have selected does not appear to be the correct database.";
const char* kMustBeMdb = "The database must be an Access Database (*.mdb).";

void write_database_key(AppState& app) {
    if (app.database_path.isEmpty()) {
        app.settings.remove(QStringLiteral("Current"), QStringLiteral("Database"));
    } else {
        app.settings.write(QStringLiteral("Current"), QStringLiteral("Database"),
                           app.database_path);
    }
}

}  // namespace

void open_database(AppState& app, const QString& path) {
    QString p = path;
    if (p.isEmpty() || !catalog_exists(p)) {
        return;
    }
    // A file that cannot be opened leaves the former one in place and is
    // judged by the check; a server that cannot be reached says why, since
    // the former catalog is not the one asked for.
    if (!app.database.open(p) && is_server_catalog(p)) {
        throw DbError(app.database.open_error());
    }
}

bool is_correct_database(AppState& app, const QString& path) {
    open_database(app, path);
    Recordset& rs = app.shared_recordset;
    rs.open(app.database, Sql(QStringLiteral("select * from version")));
    bool correct = false;
    if (rs.record_count() >= 1) {
        rs.move_first();
        // The field's text is looked for in the title, so a row naming the
        // product passes for any version, and an empty name passes too.
        if (!rs.is_null(QStringLiteral("name"))) {
            const QString name = rs.text(QStringLiteral("name")).toLower();
            correct = app.application_title.toLower().contains(name);
        }
    }
    rs.close();
    return correct;
}

namespace {

// The handler in force while the database is found at start: the error's
// own text, and the path emptied.
template <typename F>
void resuming(Context& ctx, F&& step) {
    try {
        step();
    } catch (const RunError& e) {
        ctx.dialogs.plain(e.text());
        ctx.app.database_path.clear();
    } catch (const std::exception& e) {
        ctx.dialogs.plain(QString::fromUtf8(e.what()));
        ctx.app.database_path.clear();
    }
}

}  // namespace

void find_database_at_start(Context& ctx) {
    AppState& app = ctx.app;
    QString path = app.settings.read(QStringLiteral("Current"), QStringLiteral("Database"));
    if (path.isEmpty()) {
        path = app.app_dir + QStringLiteral("/qd.mdb");
    }
    app.database_path = path;
    if (!catalog_exists(app.database_path)) {
        resuming(ctx, [&] { select_database(ctx); });
        return;
    }
    // A file that cannot be read shows its error, then goes the way of a
    // refused one, so that another is asked for.
    bool correct = false;
    resuming(ctx, [&] { correct = is_correct_database(app, app.database_path); });
    if (correct) {
        resuming(ctx, [&] {
            write_database_key(app);
            if (!is_server_catalog(app.database_path)) {
                app.last_directory = directory_of(app.database_path);
            }
        });
    } else {
        ctx.dialogs.info(QString::fromLatin1(kNotCorrect));
        app.database_path.clear();
    }
    if (app.database_path.isEmpty()) {
        resuming(ctx, [&] { select_database(ctx); });
    }
}

DatabaseChoice select_database(Context& ctx) {
    AppState& app = ctx.app;
    Dialogs::FileRequest request;
    request.title = QStringLiteral("Select Database");
    request.filter = QStringLiteral("Database (*.mdb)|*.mdb|All Files (*.*)|*.*");
    request.initial_directory = app.last_directory;
    request.takes_server_url = true;
    const QString chosen = ctx.dialogs.open_file(request);
    // A server's URL may be typed into the file name box.
    const bool server = is_server_catalog(chosen.trimmed());
    if (!server && !chosen.toLower().contains(QStringLiteral("mdb"))) {
        ctx.dialogs.info(QString::fromLatin1(kMustBeMdb));
        return DatabaseChoice::NotChosen;
    }
    // The password of a typed URL serves this run only.
    app.database_path = location_without_password(server ? chosen.trimmed() : chosen);
    // The chosen file is opened before it is judged, so the open database is
    // the chosen one even when it is refused. A server that cannot be reached
    // shows the driver's text and is refused.
    bool correct = false;
    if (server) {
        try {
            correct = is_correct_database(app, chosen.trimmed());
        } catch (const RunError& e) {
            ctx.dialogs.info(e.text());
        }
    } else {
        correct = is_correct_database(app, app.database_path);
    }
    if (correct) {
        write_database_key(app);
        if (!server) {
            app.last_directory = directory_of(chosen);
        }
        return DatabaseChoice::Accepted;
    }
    ctx.dialogs.info(QString::fromLatin1(kNotCorrect));
    app.database_path.clear();
    return DatabaseChoice::Refused;
}
