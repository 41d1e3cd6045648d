#include "pages/colour_palette.h"

const std::array<Swatch, kSwatches>& colour_palette() {
    static const std::array<Swatch, kSwatches> table = {{
        {0, "#000000", "#000000"},
        {8421504, "#808080", "#808080"},
        {12632256, "#C0C0C0", "#C0C0C0"},
        {16777215, "#FFFFFF", "#FFFFFF"},
        {8388608, "#000080", "#000080"},
        {16711680, "#0000FF", "#0000FF"},
        {128, "#800000", "#0000FF"},
        {255, "#FF0000", "#FF0000"},
        {32768, "#008000", "#008000"},
        {65280, "#00FF00", "#00FF00"},
        {8388736, "#800080", "#800080"},
        {16711935, "#FF00FF", "#FF00FF"},
        {32896, "#808000", "#808000"},
        {65535, "#FFFF00", "#FFFF00"},
        {8421376, "#008080", "#008080"},
        {16776960, "#00FFFF", "#00FFFF"},
    }};
    return table;
}

std::optional<int> swatch_value_for_text(const QString& text) {
    for (const Swatch& s : colour_palette()) {
        if (text == QLatin1String(s.read)) {
            return s.value;
        }
    }
    return std::nullopt;
}

std::optional<QString> saved_text_for_value(int value) {
    for (const Swatch& s : colour_palette()) {
        if (s.value == value) {
            return QString::fromLatin1(s.saved);
        }
    }
    return std::nullopt;
}

QColor colour_of_value(int value) {
    return QColor(value & 0xFF, (value >> 8) & 0xFF, (value >> 16) & 0xFF);
}

int value_of_colour(const QColor& colour) {
    return colour.red() | (colour.green() << 8) | (colour.blue() << 16);
}

bool is_background_image_name(const QString& path) {
    const QString lower = path.toLower();
    return lower.contains(QLatin1String(".gif")) || lower.contains(QLatin1String(".jpg"));
}
