#include "imaging/resize_settings.h"

#include "core/app_state.h"
#include "core/profile_file.h"

namespace {

QString read_or(const ProfileFile& ini, const QString& section, const QString& key,
                const QString& fallback) {
    const QString v = ini.read(section, key, QString(), ProfileFile::kBuffer);
    return v.isEmpty() ? fallback : v;
}

}  // namespace

ResizeSettings read_resize_settings(const ProfileFile& ini) {
    const QString cur = QStringLiteral("Current");
    ResizeSettings s;
    s.dither = read_or(ini, cur, QStringLiteral("Thumbnail Dither"), QStringLiteral("1"));
    const QString optimize = read_or(ini, cur, QStringLiteral("Thumbnail Optimize"), QString());
    s.optimize = optimize.contains(QLatin1String("yes"), Qt::CaseInsensitive)
                     ? QStringLiteral("Yes")
                     : QStringLiteral("No");
    s.quality = read_or(ini, cur, QStringLiteral("Thumbnail Quality"), QStringLiteral("75"));
    s.smoothing = read_or(ini, cur, QStringLiteral("Thumbnail smoothing"), QStringLiteral("0"));
    s.size = read_or(ini, cur, QStringLiteral("Thumbnail Size"), QStringLiteral("100"));
    s.max_size = read_or(ini, cur, QStringLiteral("Max Image Size"), QStringLiteral("300"));
    s.target_directory = read_or(ini, cur, QStringLiteral("Thumbnail Target Directory"), QString());
    s.background_color = read_or(ini, cur, QStringLiteral("Thumbnail Background Color"), QString());
    s.file_type = read_or(ini, cur, QStringLiteral("Resize File Type"), QString());
    s.thumbnail_type = read_or(ini, cur, QStringLiteral("Resize Thumbnail Type"), QString());
    s.selected_only = read_or(ini, cur, QStringLiteral("Resize Selected Images"), QString());
    s.prefix =
        read_or(ini, QStringLiteral("Output"), QStringLiteral("Thumbnail Prefix"), QString());
    return s;
}

void apply_resize_settings(AppState& app, const ResizeSettings& s) {
    app.thumbnail_dither = s.dither;
    app.thumbnail_optimize = s.optimize;
    app.thumbnail_quality = s.quality;
    app.thumbnail_smoothing = s.smoothing;
    app.thumbnail_size = s.size;
    app.thumbnail_background_color = s.background_color;
    app.thumbnail_target_directory = s.target_directory;
    app.thumbnail_3d = s.thumbnail_type.toLower() != QLatin1String("flat");
}

QString resize_refusal(const ResizeRequest& r) {
    QString message;
    if (r.main_list_empty) {
        message = QStringLiteral("There are no file names in the list on the 'Main' tab.");
    }
    if (r.target_directory.isEmpty()) {
        message = QStringLiteral("The target directory must be specified.");
    }
    if (r.file_type.isEmpty()) {
        message = QStringLiteral("The file type must be selected to resize the image.");
    }
    if (r.file_type == QLatin1String("Thumbnail") && r.thumbnail_type.isEmpty()) {
        message = QStringLiteral("The thumbnail type must be selected to create thumbnails.");
    }
    return message;
}

void store_resize_setting(AppState& app, const QString& key, const QString& value) {
    app.settings.write(QStringLiteral("Current"), key, value);
}
