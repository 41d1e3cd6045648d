#pragma once

#include <QByteArray>
#include <QSize>
#include <QString>

#include <functional>

// The GraphicsMagick library, kept apart from the rest of the imaging code
// (its headers name types as ours do). One call reads one picture held in
// memory, under resource limits that keep any file from allocating without
// bound. Calls are serialised: the library is used by one thread at a time.
//
// `magick` names the type ("PCX", "WMF", ...). With `pixels` empty only the
// header is read. Otherwise `pixels` is called with the picture's size and
// returns where its 32-bit pixels go, in memory order B G R A on a
// little-endian machine (rows without padding); it may throw to refuse the
// size. Returns "" on success, else the reason the picture could not be read.
QString magick_read(const QByteArray& data, const char* magick, QSize& size,
                    const std::function<uchar*(QSize)>& pixels, qint64 max_pixels);
