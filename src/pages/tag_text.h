#pragma once

#include <QString>

#include <functional>

// The text routines of page making: how a tag is found and replaced, the
// include loop, and the small tests and conversions that the page engine,
// the Web Pages run and the index share. Plain text, no widgets.

// Line end of every line the page engine writes.
inline const QString kCrLf = QStringLiteral("\r\n");

// Where `tag` (written in lower case) first stands in `text`, compared
// without regard to case; -1 when it is not there.
qsizetype find_tag(const QString& text, const QString& tag);

// The replace-once rule: when `tag` stands in `text`, its first occurrence
// is replaced by the value that `value` gives, and true is returned. The
// value is asked for only when the tag is there, so work that a tag costs
// (a query, a copy, a thumbnail) is done only for a tag that is used. When
// `value` throws, the text stays as it was and the error goes to the caller.
bool replace_once(QString& text, const QString& tag, const std::function<QString()>& value);
// The same with a ready value.
bool replace_once(QString& text, const QString& tag, const QString& value);

// How deep includes may nest: a file put in by an include that was itself put
// in by an include is at depth 2. An include tag deeper than this is removed
// unexpanded, so a file that includes itself stops there instead of growing
// for ever. Any number of includes side by side expand.
inline constexpr int kMaxIncludeDepth = 8;
// Most characters the include loop lets a text grow to; an include that would
// pass it is removed unexpanded (a file that includes itself twice doubles at
// every level).
inline constexpr qsizetype kMaxIncludedText = 4 * 1024 * 1024;

// Replaces every "[include=PATH]" of `text` by the lines of the file PATH,
// joined with nothing between them; a file that is not there removes the
// whole tag, and "[include=" with no "]" after it loses only those nine
// characters. The search starts again from the beginning after each step,
// so an included file may include in its turn. The file's bytes come in as
// they are, whatever their encoding (see page_text and page_bytes).
void expand_includes(QString& text);

// Bytes of a file as page text: UTF-8 where they are UTF-8, and each byte of
// anything else as a stand-in character that page_bytes turns back into that
// very byte, so that text in any encoding passes through a page unchanged.
QString page_text(const QByteArray& bytes);
// Page text as the bytes written to a page: UTF-8, with the stand-ins of
// page_text written as their bytes.
QByteArray page_bytes(const QString& text);

// A file the browser shows by itself: the lower-cased path holds ".gif" or
// ".jpg" anywhere (so ".jpeg" does not count, and a directory named x.gif
// makes everything below it a web image).
bool is_web_image(const QString& path);

// Occurrences of "[imgsrc]" plus those of "[timgsrc]", without regard to case.
int count_image_tags(const QString& text);

// A 16-bit size as the page engine writes it: one leading blank for a number
// that is not negative (" 480"), a minus sign otherwise.
QString size_text(int value);

// Today in the form MM-DD-YYYY and the time as HH:MM:SS, 24 hours.
QString page_date();
QString page_time();

// The page name of a slide: the file name of `path` cut before its first dot
// when it has one, with ".htm" behind it.
QString slide_page_name(const QString& path);
