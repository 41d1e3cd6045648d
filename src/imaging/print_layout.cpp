#include "imaging/print_layout.h"

PageGrid page_grid(const QString& layout, bool landscape, double sw, double sh) {
    // clang-format off
    //                    style         N  X0  X1       XS      Y0  Y1       YS      CW         CH
    if (layout == QLatin1String("1 image/page")) {
        return landscape ? PageGrid{"horizontal", 1, 10, 10,      10,     80, 80,      80,     sw,         sh}
                         : PageGrid{"vertical",   1, 10, 10,      10,     80, 80,      80,     sw,         sh};
    }
    if (layout == QLatin1String("2 images/page")) {
        return landscape ? PageGrid{"vertical",   2, 10, sw - 10, sw / 2, 50, 50,      50,     sw / 2 - 20, sh}
                         : PageGrid{"horizontal", 2, 10, 10,      10,     50, sh - 50, sh / 2, sw,          sh / 2 - 30};
    }
    if (layout == QLatin1String("4 images/page")) {
        return landscape ? PageGrid{"horizontal", 4, 5,  sw - 5,  sw / 2, 50, sh - 50, sh / 2, sw / 2 - 20, sh / 2 - 30}
                         : PageGrid{"vertical",   4, 10, sw - 10, sw / 2, 50, sh - 50, sh / 2, sw / 2 - 20, sh / 2 - 30};
    }
    if (layout == QLatin1String("8 images/page")) {
        return landscape ? PageGrid{"vertical",   8, 5,  sw - 5,  sw / 4, 50, sh - 50, sh / 2, sw / 4 - 20, sh / 2 - 30}
                         : PageGrid{"horizontal", 8, 5,  sw - 5,  sw / 2, 35, sh - 35, sh / 4, sw / 2 - 20, sh / 4 - 30};
    }
    // clang-format on
    return {};
}

bool wrong_shape(const QString& style, int image_width, int image_height) {
    return (style == QLatin1String("horizontal") && image_width < image_height) ||
           (style == QLatin1String("vertical") && image_width > image_height);
}

double axis_zoom(int side, double cell, double start) {
    // The factor is counted in twentieths so that the walk lands on 0.2
    // itself rather than on a sum that drifted past it.
    const int first = static_cast<int>(start * 20 + 0.5);
    double p = 0;
    for (int k = first; k >= 4; --k) {
        const double f = k / 20.0;
        p = side * f;
        if (p < cell) {
            return f;
        }
    }
    return p;
}

double print_zoom(int image_width, int image_height, double cw, double ch, bool use_max_size) {
    const double start = use_max_size ? 100 : 1;
    const double vertical = axis_zoom(image_height, ch, start);
    const double horizontal = axis_zoom(image_width, cw, start);
    return vertical < horizontal ? vertical : horizontal;
}

int print_quality_number(const QString& word) {
    static const char* const kWords[] = {"Draft", "Low", "Medium", "High"};
    for (int i = 0; i < 4; ++i) {
        if (word == QLatin1String(kWords[i])) {
            return -(i + 1);
        }
    }
    return 0;
}
