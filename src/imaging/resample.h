#pragma once

#include <QImage>
#include <QSize>

// How carefully a picture is reduced; the control's Dither setting chooses it:
// 0 Fast (nearest pixel, and the fast integer transform when a JPEG is
// decoded), 1 Default (area averaging), 2 High (a Lanczos-3 filter from a
// picture decoded at twice the size asked for at least).
enum class Resampling { Fast, Default, High };

Resampling resampling_for_dither(int dither);

// `image` scaled to exactly `size` (aspect not kept: the caller chose the size).
QImage resample(const QImage& image, QSize size, Resampling quality);
