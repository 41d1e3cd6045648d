#pragma once

#include "core/context.h"
#include "pages/template_expander.h"
#include "pages/template_store.h"

#include <QDateTime>
#include <QString>
#include <QStringList>

// The commands of the template editor that need no window: copy, delete,
// preview and the listing of a template as text. The editor reads its fields
// into a TemplateSections and calls these.

// The tags that the editor offers, in the list's order.
QStringList editor_tags();
// The shorter list of the section notepad (no size tags).
QStringList notepad_tags();

// The setting `Save Template On Close`: on when the lower-cased value holds "y".
bool save_on_close(AppState& app);
void set_save_on_close(AppState& app, bool on);

// "Copy": asks for a name until it holds no apostrophe (the refused text is
// the next default), then for a description, and adds a row of type "C"
// whose sections are `fields` as shown, named by the answer cut to 100
// characters. `previous_answer` is the default of the first question and
// keeps the last answer. Returns the answer, uncut, when a row was added;
// "" when the user gave no name or the template shown has no row. Throws
// DbError.
QString copy_template(Context& ctx, const TemplateSections& fields, QString& previous_answer);

// "Delete": asks, and on Yes deletes the row of `name` if there is one.
// Returns true when a row was deleted. Throws DbError.
bool delete_template_row(Context& ctx, const QString& name);

// "Preview": asks how many images to show (the setting `Preview Image
// Count`, "5" when missing), fills the page engine's file list with the
// preview image (`Current`/`Preview Image`) that many times, and expands
// `fields` into `output_path` with sample texts. A count of 0 or a cancel
// leaves the file list as it was, and the page is made all the same.
void preview_template(Context& ctx, const PageOptions& page, const TemplateSections& fields,
                      const QString& output_path);

// The listing of "Template Text": the name, the time it was made, and each
// section under its heading, between rules of 80 dashes; lines end in CR LF.
QString template_listing(const TemplateSections& fields, const QDateTime& when);

// "Template Text": writes the listing to template.txt in the application
// directory, shows that file's text to the user in a read-only window, and
// deletes the file at once.
void show_template_text(Context& ctx, const TemplateSections& fields);
