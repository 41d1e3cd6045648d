#pragma once

#include <QString>

// Where the warnings about pictures go: a file that loads but is not quite
// well formed (a JPEG without its end marker), and what the image libraries
// underneath say as they read (Qt's readers, libtiff). They go to the
// diagnostic log while logging is on and nowhere otherwise; never to the
// standard error of either program.
//
// Thread-safe: batches decode on their own threads.

// Turns the log on at `log_path`; "" turns it off.
void set_image_log(const QString& log_path);

// One warning about the picture at `path` ("" when the library did not say).
void image_warning(const QString& path, const QString& text);

// Takes the image libraries' own warnings from Qt's message handling, once
// per process; every other message goes on as before.
void route_library_warnings();

// True for a message that an image library gave while reading a picture.
bool is_image_library_message(const QString& category, const QString& text);

// Takes libtiff's own warnings and errors, which it would print on standard
// error itself, once per process (before the first TIFF is read).
void route_tiff_warnings();
