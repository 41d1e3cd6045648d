#pragma once

#include <QString>

class QPlainTextEdit;

// A section box that gives back the text it was given, byte for byte, with the
// user's edits put in (see kept_text.h). The text as written is kept on the
// box itself.

// Puts `text` into the box (a change of the box, as any program write is).
void set_box_text(QPlainTextEdit* box, const QString& text);
// The box's text: as it was given, with what the user changed since.
QString box_text(const QPlainTextEdit* box);
