#include "lists/image_panels.h"

#include "imaging/image_control.h"

#include <array>

bool is_image_file(const QString& path) {
    static const std::array<const char*, 22> kTypes = {
        ".art", ".bmp", ".cut", ".dib", ".emf", ".gem", ".gif", ".hrz", ".iff", ".img", ".jpg",
        ".lbm", ".mac", ".msp", ".pcx", ".png", ".ras", ".rle", ".tga", ".tif", ".wmf", ".wpg"};
    const QString lower = path.toLower();
    for (const char* t : kTypes) {
        if (lower.contains(QLatin1String(t))) {
            return true;
        }
    }
    return false;
}

void fit_to_frame(ImageControl& v, float frame_width, float frame_height) {
    v.set_view_mode(1);
    // Each side over the frame is trimmed on its own before the ratios, so a
    // picture bigger than the frame loses its proportions here and is fitted
    // from that shape.
    if (v.height() > frame_height) {
        v.set_height(frame_height + 300);
    }
    if (v.width() > frame_width) {
        v.set_width(frame_width + 300);
    }
    float h = v.height();
    float w = v.width();
    float limit = frame_width - 300;
    if (w >= limit) {
        const float r = limit / w;
        v.set_width(r * w);
        v.set_height(r * h);
        v.set_view_mode(2);
    }
    h = v.height();
    w = v.width();
    limit = frame_height - 300;
    if (h >= limit) {
        const float r = limit / h;
        v.set_width(r * w);
        v.set_height(r * h);
        v.set_view_mode(3);
    }
}
