#pragma once

#include <QByteArray>
#include <QImage>

// libjpeg's own knobs, as the control's save settings set them.
struct JpegSettings {
    int quality = 75;       // 1 to 100, jpeg_set_quality
    int smoothing = 0;      // 0 to 100, the compressor's smoothing_factor
    bool optimize = false;  // optimize_coding: Huffman tables made for the picture
    bool operator==(const JpegSettings&) const = default;
};

// The picture as a baseline JFIF file (greyscale pictures as one component).
// Throws RunError when libjpeg refuses it.
QByteArray encode_jpeg(const QImage& image, const JpegSettings& settings);
