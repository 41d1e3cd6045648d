#pragma once

#include "core/context.h"

#include <QString>

// The file-pick helpers that the tabs and dialogs share. Each opens the
// open-file dialog with its own title and filter at the last directory (the
// HTML background keeps a directory of its own) and gives "" when cancelled.

// "Select Background Image": the caller puts a non-empty result into
// o_html_background_image.
QString select_background_image(Context& ctx);
// "Select Preview Image": a non-empty result is written to
// Current/Preview Image; the caller shows it in o_options_preview_image.
QString select_preview_image(Context& ctx);
// "Select Include File": the path, for the caller.
QString select_include_file(Context& ctx);
// "Select Music/MP3s": a non-empty result moves the last directory to the
// file's directory; the caller adds it to o_slides_music.
QString select_music(Context& ctx);
// "Select HTML Background", opened at `initial_directory`, which the caller
// keeps between calls: a non-empty result moves it to the file's directory.
// A name that holds neither ".gif" nor ".jpg" (an empty one included) is
// refused with a message and gives "", so the caller keeps its former value.
QString select_html_background(Context& ctx, QString& initial_directory);
