#pragma once

#include <QString>

#include <vector>

// Section text as the user wrote it, kept through an edit box. A box shows a
// text in its own form: every line end (CR LF, CR or LF) is one paragraph
// break, U+2029. Read back as the box gives it, a text would lose its CR LF
// pairs; so the text as written is kept beside the box, and what the user
// changed in the box is put into it, every character they did not touch
// staying as it was. Line ends the user types are CR LF, the line end of every
// page. Plain text, no widgets.

// `text` as the box shows it. With `map`, also where each character of the
// shown form (and its end) stands in `text`.
QString shown_form(const QString& text, std::vector<qsizetype>* map = nullptr);

// The text after the user's edits: `kept` was put into a box, which showed
// `shown_before` (its shown form) and now shows `shown_now`.
QString merge_kept_text(const QString& kept, const QString& shown_before, const QString& shown_now);
