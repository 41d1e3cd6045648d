#include "core/settings.h"

#include "core/file_helpers.h"
#include "core/run_error.h"

namespace {

const QString kCurrent = QStringLiteral("Current");

QString read_current(AppState& app, const char* key) {
    return app.settings.read(kCurrent, QLatin1String(key));
}

// Writes a value, an empty one included (a null string would delete the key).
void put(AppState& app, const QString& section, const char* key, const QString& value) {
    app.settings.write(section, QLatin1String(key), value.isNull() ? QStringLiteral("") : value);
}

QString yes_no(bool on) {
    return on ? QStringLiteral("Yes") : QStringLiteral("No");
}

QString or_default(const QString& value, const char* fallback) {
    return value.isEmpty() ? QString::fromLatin1(fallback) : value;
}

// The numeric value of the leading number of a text, as a 16-bit whole number.
qint16 val16(const QString& text) {
    const QString t = text.trimmed();
    int end = 0;
    if (end < t.size() && (t.at(end) == u'-' || t.at(end) == u'+')) {
        ++end;
    }
    while (end < t.size() && t.at(end).isDigit()) {
        ++end;
    }
    bool ok = false;
    const long v = t.left(end).toLong(&ok);
    if (!ok) {
        return 0;
    }
    return static_cast<qint16>(std::clamp<long>(v, -32768, 32767));
}

}  // namespace

void log_settings_step(AppState& app, const QString& second) {
    if (!app.log_messages) {
        return;
    }
    passed_over([&] { write_log(app.log_path(), QStringLiteral("readwriteini"), second, 0); });
}

void read_settings(Context& ctx, const std::function<void(Context&)>& find_database) {
    AppState& app = ctx.app;
    app.max_cd_size = or_default(read_current(app, "Max CD Size"), "650");
    log_settings_step(app, QStringLiteral("read"));

    if (find_database) {
        find_database(ctx);
    }

    app.thumbnail_dither = or_default(read_current(app, "Thumbnail Dither"), "1");
    // Kept as a boolean in text form; the control stores "Yes" or "No", so
    // only a choice made in this run is written back as "Yes".
    app.thumbnail_optimize =
        read_current(app, "Thumbnail Optimize").toLower().contains(QStringLiteral("yes"))
            ? QStringLiteral("True")
            : QStringLiteral("False");
    app.thumbnail_quality = or_default(read_current(app, "Thumbnail Quality"), "75");
    app.thumbnail_smoothing = or_default(read_current(app, "Thumbnail smoothing"), "0");

    const QString color = QStringLiteral("Color");
    app.color_text = or_default(app.settings.read(color, QStringLiteral("Text")), "#000000");
    app.color_vlink = or_default(app.settings.read(color, QStringLiteral("VLink")), "#FF0000");
    app.color_link = or_default(app.settings.read(color, QStringLiteral("Link")), "#0000FF");
    app.color_alink = or_default(app.settings.read(color, QStringLiteral("ALink")), "#000000");
    app.color_image_border =
        or_default(app.settings.read(color, QStringLiteral("Image Border")), "#0000FF");
    app.color_background =
        or_default(app.settings.read(color, QStringLiteral("BackGround")), "#FFFFFF");

    const QString full = QStringLiteral("Full Size Image");
    app.full_size_location =
        or_default(app.settings.read(full, QStringLiteral("Location")), "left");
    app.use_text = app.settings.read(full, QStringLiteral("Use Text"));
    app.use_options = app.settings.read(full, QStringLiteral("Use Options"));

    QString help = read_current(app, "Help File");
    const int old = help.indexOf(QStringLiteral("vlkxhelp"));
    if (old >= 0) {
        help.replace(old + 2, 2, QStringLiteral("32"));
    }
    if (help.isEmpty() || !file_exists_at(help)) {
        help = app.app_dir + QStringLiteral("/qdhelp.htm");
    }
    app.help_file = help;

    read_current(app, "Directory");  // read and dropped: every exit deletes it
    app.editor = read_current(app, "Editor");
    app.last_directory = read_current(app, "Last Directory");
    if (app.last_directory.isEmpty()) {
        app.last_directory = app.app_dir + QStringLiteral("/html");
        make_directory(app.last_directory);
    }

    app.last_drive = read_current(app, "Last Drive");
    app.pixel_height = or_default(read_current(app, "Pixel Height"), "25");
    app.pixel_width = or_default(read_current(app, "Pixel Width"), "25");
    app.auto_start_editor = read_current(app, "Auto Start Editor") == QLatin1String("Yes");
    app.thumbnail_size = or_default(read_current(app, "Thumbnail Size"), "100");
    app.load_delay = val16(read_current(app, "Load Delay"));
    app.ratio = read_current(app, "Ratio") == QLatin1String("Yes");
}

void write_settings(AppState& app, const QStringList& monitor_directories,
                    const QStringList& monitor_file_types,
                    const std::optional<WindowPlacement>& window, bool monitor_table_loaded) {
    log_settings_step(app, QStringLiteral("write"));
    app.settings.remove(kCurrent, QStringLiteral("Directory"));
    put(app, kCurrent, "Editor", app.editor);
    put(app, kCurrent, "Last Directory", app.last_directory);
    put(app, kCurrent, "Last Drive", app.last_drive);
    put(app, kCurrent, "Pixel Height", app.pixel_height);
    put(app, kCurrent, "Pixel Width", app.pixel_width);
    put(app, kCurrent, "Load Delay", QString::number(app.load_delay));
    put(app, kCurrent, "Help File", app.help_file);
    for (const char* banner :
         {"Top Banner", "Top Banner Link", "Bottom Banner", "Bottom Banner Link"}) {
        app.settings.remove(kCurrent, QLatin1String(banner));
    }
    put(app, kCurrent, "Thumbnail Dither", app.thumbnail_dither);
    put(app, kCurrent, "Thumbnail Quality", app.thumbnail_quality);
    put(app, kCurrent, "Thumbnail Smoothing", app.thumbnail_smoothing);

    // Only the key one past the end is deleted: a table that shrank by two
    // leaves its last key behind, beyond the gap where reading stops. Lists
    // that were never filled in this run stand for nothing, and the stored
    // table stays as it is.
    if (monitor_table_loaded) {
        const QString dirs = QStringLiteral("Monitor Directories");
        const QString types = QStringLiteral("Monitor File Types");
        const int rows = static_cast<int>(monitor_directories.size());
        for (int i = 0; i < rows; ++i) {
            const QString key = QStringLiteral("monitor_%1").arg(i + 1);
            app.settings.write(dirs, key, monitor_directories.at(i));
            app.settings.write(types, key, monitor_file_types.value(i, QStringLiteral("")));
        }
        const QString past = QStringLiteral("monitor_%1").arg(rows + 1);
        app.settings.remove(dirs, past);
        app.settings.remove(types, past);
    }

    put(app, kCurrent, "Thumbnail Optimize",
        yes_no(app.thumbnail_optimize == QLatin1String("Yes")));
    const QString color = QStringLiteral("Color");
    put(app, color, "Text", app.color_text);
    put(app, color, "VLink", app.color_vlink);
    put(app, color, "Link", app.color_link);
    put(app, color, "Alink", app.color_alink);
    put(app, color, "Image Border", app.color_image_border);
    put(app, color, "BackGround", app.color_background);
    put(app, kCurrent, "Prefix Thumbnail File", yes_no(app.thumbnail_prefix));
    put(app, kCurrent, "Thumbnail Style", QStringLiteral("With Borders"));
    const QString full = QStringLiteral("Full Size Image");
    put(app, full, "Use Text", QStringLiteral("No"));
    put(app, full, "Use Options", QStringLiteral("No"));
    put(app, kCurrent, "Thumbnail Size", app.thumbnail_size);
    if (window) {
        put(app, kCurrent, "Form Top", QString::number(window->top));
        put(app, kCurrent, "Form Left", QString::number(window->left));
        put(app, kCurrent, "Form Height", QString::number(window->height));
        put(app, kCurrent, "Form Width", QString::number(window->width));
    }
    put(app, kCurrent, "Rename HTML", QStringLiteral("No"));
    put(app, kCurrent, "Auto Start Editor", yes_no(app.auto_start_editor));
    put(app, kCurrent, "Ratio", yes_no(app.ratio));
}
