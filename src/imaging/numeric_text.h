#pragma once

#include <QString>

// The numeric value of a setting typed as text, read the way the settings
// have always been read: blanks anywhere are ignored, the number is taken from
// the start of the text up to the first character that cannot continue it,
// "&H" and "&O" start hexadecimal and octal numbers, and a text with no number
// in front is 0 ("12px" is 12, "px" is 0, "1 000" is 1000).
double val_of_text(const QString& text);

// A number put into a 16-bit whole-number property: rounded half to even,
// RunError "Overflow" outside -32768..32767.
int to_int16(double value);
