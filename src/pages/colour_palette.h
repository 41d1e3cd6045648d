#pragma once

#include <QColor>
#include <QString>

#include <array>
#include <optional>

// The 16 fixed colours of the colour form. `value` is the platform's colour
// number (red in the low byte, blue in the high byte); `read` is the text a
// working colour string is recognised by when the form loads, `saved` the
// text it is given back on "Save / Exit". The dark red swatch is read as
// "#800000" and saved as "#0000FF": a page made after saving shows blue
// where the sample showed dark red, for every role.
struct Swatch {
    int value;
    const char* read;
    const char* saved;
};

inline constexpr int kSwatches = 16;
const std::array<Swatch, kSwatches>& colour_palette();

// The colour number of the swatch whose load text is `text` ("#RRGGBB",
// compared exactly); nothing when no swatch reads so.
std::optional<int> swatch_value_for_text(const QString& text);

// The save text of the swatch of colour number `value`; nothing when no
// swatch has it.
std::optional<QString> saved_text_for_value(int value);

// A colour number as a colour, and back.
QColor colour_of_value(int value);
int value_of_colour(const QColor& colour);

// The six colour roles of the form, as its option buttons number them.
enum class ColourRole {
    VisitedLink = 0,
    Link = 1,
    ActiveLink = 2,
    Background = 3,
    ImageBorder = 4,
    Text = 5,
};

// True when a chosen background image may be used: its lower-cased name
// holds ".gif" or ".jpg" anywhere (so "image.gif.txt" passes).
bool is_background_image_name(const QString& path);
