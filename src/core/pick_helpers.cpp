#include "core/pick_helpers.h"

#include "core/file_helpers.h"

namespace {

const QString kImageFilter =
    QStringLiteral("GIF (*.gif)|*.gif|JPG (*.jpg)|*.jpg|All Files (*.*)|*.*");

QString pick(Context& ctx, const QString& title, const QString& filter,
             const QString& initial_directory) {
    Dialogs::FileRequest request;
    request.title = title;
    request.filter = filter;
    request.initial_directory = initial_directory;
    request.file_name = QString();
    return ctx.dialogs.open_file(request);
}

}  // namespace

QString select_background_image(Context& ctx) {
    return pick(ctx, QStringLiteral("Select Background Image"), kImageFilter,
                ctx.app.last_directory);
}

QString select_preview_image(Context& ctx) {
    const QString path =
        pick(ctx, QStringLiteral("Select Preview Image"), kImageFilter, ctx.app.last_directory);
    if (!path.isEmpty()) {
        ctx.app.settings.write(QStringLiteral("Current"), QStringLiteral("Preview Image"), path);
    }
    return path;
}

QString select_include_file(Context& ctx) {
    return pick(ctx, QStringLiteral("Select Include File"),
                QStringLiteral("TXT (*.txt)|*.txt|HTM (*.htm)|*.htm|Include (*.inc)|*.inc|"
                               "All Files (*.*)|*.*"),
                ctx.app.last_directory);
}

QString select_music(Context& ctx) {
    const QString path = pick(ctx, QStringLiteral("Select Music/MP3s"),
                              QStringLiteral("MP3 (*.mp3)|*.mp3"), ctx.app.last_directory);
    if (!path.isEmpty()) {
        ctx.app.last_directory = directory_of(path);
    }
    return path;
}

QString select_html_background(Context& ctx, QString& initial_directory) {
    QString name = pick(ctx, QStringLiteral("Select HTML Background"),
                        QStringLiteral("All Files (*.*)|*.*|GIF Files|*.gif|JPG Files|*.jpg"),
                        initial_directory);
    if (!name.isEmpty()) {
        initial_directory = directory_of(name);
    }
    const QString lower = name.toLower();
    if (!lower.contains(QLatin1String(".gif")) && !lower.contains(QLatin1String(".jpg"))) {
        ctx.dialogs.info(
            QStringLiteral("GIF and JPG are the only valid file formats for HTML background."));
        name = QString();
    }
    return name;
}
