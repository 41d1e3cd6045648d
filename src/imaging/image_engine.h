#pragma once

#include "imaging/file_failures.h"

#include <QString>

class ImageControl;
struct AppState;
struct Context;

// Turns one source image into one output file on the hidden worker
// (`app.worker`): a thumbnail or a resized copy, always written as JPEG, or a
// plain copy of a source that is already small enough for a thumbnail.
//
// `path` comes in as the full source path, already loaded into the worker by
// the caller's write of its FileName, and goes out as the path written (the
// source path when the source was copied or nothing was made). `kind`
// "thumbnail" makes a thumbnail, whose size is the global `thumbnail_size`
// whatever limits are passed; any other word makes a resized copy within
// `max_height` x `max_width` pixels (texts, read by their numeric value).
//
// A missing source is skipped without a word. An error after the small-image
// test is shown in a plain message box and the call returns with `path`
// unchanged; an error before it (the copy of a small image) reaches the caller.
// A batch that goes on past its failures passes `failed`, which is then told
// of the error (with the source path) in place of the box.
void make_image_file(Context& ctx, QString& path, const QString& target_directory,
                     const QString& kind, const QString& max_height, const QString& max_width,
                     const FailureSink& failed = {});

// The page engine's way in: a resized copy ("jpg") of `path` in `target_directory`.
void resize_to_directory(Context& ctx, QString& path, const QString& target_directory,
                         const QString& max_height, const QString& max_width,
                         const FailureSink& failed = {});

// The thumbnail values the engine reads, taken from the application state at
// one moment, so that a batch can plan its work ahead on other threads.
struct ThumbnailValues {
    QString dither;
    QString optimize;
    QString quality;
    QString smoothing;
    QString size;
    QString background_color;
    bool three_d = true;
    bool prefix = false;

    static ThumbnailValues of(const AppState& app);
    bool operator==(const ThumbnailValues&) const = default;
};

// The output path for `source` in `target_directory`: the directory, a "/"
// unless it ends in one, the source's file name, then the naming rule of the
// kind. The tests for "_tn.jpg", "tn_" and ".jpg" are case-sensitive searches
// of the whole path, directory included.
QString image_target_path(const QString& source, const QString& target_directory, bool thumbnail,
                          bool prefix);

// True when a thumbnail of the picture loaded in `worker` would be a plain
// copy: neither side is larger than the thumbnail size.
bool thumbnail_is_copy(const ImageControl& worker, const QString& thumbnail_size);

// Sets the worker's save settings for one output, in their fixed order, and
// the thumbnail size when the output is a thumbnail or the source a metafile.
// Returns the ThumbSize that was in force before, to be restored after the save.
int configure_for_save(ImageControl& worker, const ThumbnailValues& values, bool thumbnail,
                       const QString& source);

// Brings the worker's picture within the limits (pixels as text) for a
// resized copy, keeping its proportions and never enlarging it.
void fit_to_limits(ImageControl& worker, const QString& max_height, const QString& max_width);
