#pragma once

#include <QString>

class ProfileFile;
struct AppState;

// The Resize tab's settings as the settings file holds them (section Current,
// but `Thumbnail Prefix`, which the tab reads from section Output), each empty
// key replaced by its default.
struct ResizeSettings {
    QString dither;            // "1": list index, 0 low, 1 default, 2 high quality
    QString optimize;          // "No"
    QString quality;           // "75"
    QString smoothing;         // "0"
    QString size;              // "100", the thumbnail size
    QString max_size;          // "300", the largest side of a resized copy
    QString target_directory;  // ""
    QString background_color;  // "": a decimal colour number
    QString file_type;         // "": "Resize" or "Thumbnail"
    QString thumbnail_type;    // "": "Flat" or "3D"
    QString selected_only;     // "": on when it holds "y" in any case
    QString prefix;            // "" (section Output)
};

ResizeSettings read_resize_settings(const ProfileFile& settings);

// The engine's values in the application state from those settings, as a run
// with no window takes them: the 3D flag is off only for "Flat".
void apply_resize_settings(AppState& app, const ResizeSettings& s);

// What the Resize command is asked to do, read from its controls.
struct ResizeRequest {
    bool main_list_empty = false;
    QString target_directory;
    QString file_type;
    QString thumbnail_type;
};

// The message of the last check that fails, in the fixed order of the checks;
// "" when every check passes.
QString resize_refusal(const ResizeRequest& r);

// Writes one value of the tab to section Current.
void store_resize_setting(AppState& app, const QString& key, const QString& value);
