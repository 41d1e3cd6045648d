#pragma once

#include "catalog/database.h"
#include "core/context.h"

#include <QString>
#include <QStringList>

#include <optional>

// A template: a named set of mark-up sections, one row of the `template`
// table. The page engine and the editor work on such a copy; the row is
// found by its name, pasted between apostrophes.
struct TemplateSections {
    QString name;
    QString header;
    QString pre_image;
    QString image1;
    QString image2;
    QString post_image;
    QString footer;
    QString description;
};

// The statement that finds the row of the template named `name`, pasted
// between apostrophes.
Sql template_row_sql(const QString& name);

// Writes the six sections and the description of `t` into the current row
// of `rs` (after add_new or edit), in the order header, pre-image, image1,
// image2, post-image, footer, description; the name and the type stay the
// caller's.
void set_template_fields(Recordset& rs, const TemplateSections& t);

// The names of the templates in the table's own row order.
QStringList template_names(AppState& app);

// Reads the row named `name` into `t` (Null columns give ""), leaving the
// name in `t.name`. Returns false, with `t` as it was, when there is no such
// row. Throws DbError when the statement fails (a name with an apostrophe).
bool load_template(AppState& app, const QString& name, TemplateSections& t);

// Writes the sections and the description of `t` back to the row of its
// name; `tname` and `ttype` stay. Nothing happens when there is no such row.
// Throws DbError.
void save_template(AppState& app, const TemplateSections& t);

// "Add New Template": asks for a title, strips its apostrophes, and adds a
// row of type "C" described "{custom}". Returns the title added, or nothing
// when the title came out empty (the user has been told). Throws DbError.
std::optional<QString> add_template(Context& ctx);

// The description of the template named `name` as the Templates tab shows
// it after a click: "" when there is no row, the description otherwise.
// Every failing step is passed over, so a Null description, or a statement
// that fails, leaves nothing to show (std::nullopt): the box keeps its text.
std::optional<QString> template_description(AppState& app, const QString& name);

// "Update Template Description": writes `text` to the row of `name` when
// exactly one row answers. Throws DbError.
void update_template_description(AppState& app, const QString& name, const QString& text);

// "Delete Template": asks, and on Yes deletes the row of `name` when exactly
// one row answers. Returns true when a row was deleted. Throws DbError.
bool delete_template(Context& ctx, const QString& name);
