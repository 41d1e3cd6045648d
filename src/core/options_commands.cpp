#include "core/options_commands.h"

#include "core/file_helpers.h"

namespace {

QString non_null(const QString& s) {
    return s.isNull() ? QStringLiteral("") : s;
}

}  // namespace

SetupValues read_setup_values(AppState& app) {
    SetupValues v;
    v.database = non_null(app.database_path);
    v.file_copy_directory =
        app.settings.read(QStringLiteral("Current"), QStringLiteral("File Copy Directory"));
    v.preview_image = app.settings.read(QStringLiteral("Current"), QStringLiteral("Preview Image"));
    return v;
}

QString choose_directory(Context& ctx) {
    const Dialogs::DirectoryChoice choice = ctx.dialogs.choose_directory(ctx.app.last_directory);
    if (choice.cancelled) {
        ctx.app.directory_chooser_cancelled = true;
    }
    return choice.path;
}

QString choose_file_copy_directory(Context& ctx) {
    ctx.app.thumbnail_target_directory = ctx.app.last_directory;
    const QString path = non_null(choose_directory(ctx));
    ctx.app.last_directory = path;
    ctx.app.settings.write(QStringLiteral("Current"), QStringLiteral("File Copy Directory"), path);
    return path;
}

QString make_new_directory(Dialogs& dialogs, const QString& path) {
    const QString name =
        dialogs.input(QStringLiteral("Enter the name of the directory you want to create under ") +
                          path + QStringLiteral("."),
                      QStringLiteral("Make New Directory"));
    if (name.isEmpty()) {
        return QString();
    }
    const QString new_path = path + u'/' + name;
    if (!dialogs.ask_yes_no(QStringLiteral("Is ") + new_path +
                            QStringLiteral(" the directory you want to create?"))) {
        return QString();
    }
    make_directory(new_path);
    return new_path;
}
