#pragma once

#include "core/item_list.h"
#include "core/profile_file.h"

#include <QString>
#include <QTimer>

class Database;
class ImageControl;
class MusicDevice;
class Recordset;
class MusicPlayer;

// The directory monitor's timer, t_monitor, with what its events share. The
// timer is off at start; the Monitor tab's button turns it on and off, and
// each of its events is one tick of the monitor.
struct MonitorTimer {
    static constexpr int kPeriodMs = 5000;
    QTimer t_monitor;
    // The period the button gives the timer; tests shorten it.
    int period_ms = kPeriodMs;
    // Ticks since monitoring started or since the last pass ended.
    qint16 tick_count = 0;
    // A pass is waiting on one of its boxes: the ticks meanwhile start none.
    bool pass_open = false;
    // The directory the pass's reader, o_filelist, lists: a row whose
    // directory cannot be entered leaves it where it was.
    QString filelist_path;
};

// The application-wide values every command shares: set at start, read and
// written directly by the commands. One instance is owned by the program (the
// window or the command-line program) and passed by reference. The catalog
// connection and the hidden worker belong to their subsystems; the program
// that owns this state owns them beside it and hands them in.
struct AppState {
    AppState(Database& database, Recordset& shared_recordset, ImageControl* worker);
    AppState(const AppState&) = delete;
    AppState& operator=(const AppState&) = delete;

    // "Quilldex v1.62": caption of the main window and of every message box.
    QString application_title;
    // The application directory, without a closing "/".
    QString app_dir;
    QString ini_path;
    QString uninstall_ini_path;
    bool log_messages = false;
    QString windows_directory;  // set at start, used by nothing else
    QString system_directory;   // set at start, used by nothing else
    QString slide_shows_directory;

    // Working directory of all file dialogs and of the Load tab.
    QString last_directory;
    QString last_drive;

    QString database_path;
    Database& database;
    Recordset& shared_recordset;

    QString selected_file;  // file whose fields are being edited
    QString preview_file;   // file that a click on a viewer opens in the preview
    bool stop_scan = false;
    bool scan_started = false;
    bool directory_chooser_cancelled = false;

    // Values that the settings file carries between start and exit.
    QString help_file;
    QString editor;
    QString pixel_height;
    QString pixel_width;
    qint16 load_delay = 0;
    bool ratio = false;
    bool auto_start_editor = false;
    QString max_cd_size;
    QString full_size_location;
    QString use_text;
    QString use_options;

    // The thumbnail settings, as strings, that the image engine reads.
    QString thumbnail_dither;
    QString thumbnail_optimize;  // "Yes"/"No" from the control, "True"/"False" as read at start
    QString thumbnail_quality;
    QString thumbnail_smoothing;
    QString thumbnail_size;
    QString thumbnail_background_color;
    QString thumbnail_target_directory;
    bool thumbnail_3d = true;
    bool thumbnail_prefix = false;

    // Colours of generated pages, "#RRGGBB".
    QString color_text;
    QString color_vlink;
    QString color_link;
    QString color_alink;
    QString color_image_border;
    QString color_background;

    // The settings file, quilldex.ini.
    ProfileFile settings;

    // The main list: the ordered paths every output command works from.
    ItemList main_list;
    // Hidden lists that commands share: the page engine's file list, the
    // directory reader and the queue of a directory walk.
    ItemList file_list;
    ItemList filelist;
    ItemList directory_list;
    // The hidden worker: every thumbnail and resized copy is made on it, and
    // page expansion asks it the size of each image.
    // None in a program that makes no picture (the command line's commands
    // that only list or catalog files), which then loads no image library.
    ImageControl* worker;
    MonitorTimer monitor;

    // The music player, when the slide show has made one; the preview sends
    // its pause, resume and stop here. Not owned.
    MusicDevice* music_device = nullptr;
    // The Slides tab's music player: its list, its end-of-track timer and its
    // button. The music operations go through it when it is there. Not owned.
    MusicPlayer* music_player = nullptr;
    // The slide show's pause flag, set and cleared by the space key in the preview.
    bool slide_show_paused = false;

    // Paths beside the application.
    QString log_path() const { return app_dir + QStringLiteral("/msglog.txt"); }
    QString temp_directory() const { return app_dir + QStringLiteral("/temp"); }
};
