#include "pages/template_store.h"

#include "catalog/database.h"
#include "core/run_error.h"

namespace {

const QString kDescriptionByName =
    QStringLiteral("select description from template where tname='%1'");

}  // namespace

Sql template_row_sql(const QString& name) {
    return Sql(QStringLiteral("select * from template where tname='%1'")).arg(name);
}

void set_template_fields(Recordset& rs, const TemplateSections& t) {
    rs.set_field(QStringLiteral("header"), t.header);
    rs.set_field(QStringLiteral("pre-image"), t.pre_image);
    rs.set_field(QStringLiteral("image1"), t.image1);
    rs.set_field(QStringLiteral("image2"), t.image2);
    rs.set_field(QStringLiteral("post-image"), t.post_image);
    rs.set_field(QStringLiteral("footer"), t.footer);
    rs.set_field(QStringLiteral("description"), t.description);
}

QStringList template_names(AppState& app) {
    QStringList names;
    Recordset& rs = app.shared_recordset;
    rs.open(app.database, Sql(QStringLiteral("select tname from template")));
    if (rs.record_count() > 0) {
        rs.move_last();
        rs.move_first();
        while (!rs.eof()) {
            names << rs.text_or_empty(QStringLiteral("tname"));
            rs.move_next();
        }
    }
    rs.close();
    return names;
}

bool load_template(AppState& app, const QString& name, TemplateSections& t) {
    Recordset& rs = app.shared_recordset;
    rs.open(app.database, template_row_sql(name));
    if (rs.record_count() < 1) {
        rs.close();
        return false;
    }
    rs.move_first();
    TemplateSections out;
    out.name = name;
    out.header = rs.text_or_empty(QStringLiteral("header"));
    out.pre_image = rs.text_or_empty(QStringLiteral("pre-image"));
    out.image1 = rs.text_or_empty(QStringLiteral("image1"));
    out.image2 = rs.text_or_empty(QStringLiteral("image2"));
    out.post_image = rs.text_or_empty(QStringLiteral("post-image"));
    out.footer = rs.text_or_empty(QStringLiteral("footer"));
    out.description = rs.text_or_empty(QStringLiteral("description"));
    rs.close();
    t = out;
    return true;
}

void save_template(AppState& app, const TemplateSections& t) {
    Recordset& rs = app.shared_recordset;
    rs.open(app.database, template_row_sql(t.name));
    if (rs.record_count() > 0) {
        rs.edit();
        set_template_fields(rs, t);
        rs.update();
    }
    rs.close();
}

std::optional<QString> add_template(Context& ctx) {
    QString title = ctx.dialogs.input(QStringLiteral("What is the title of the new template?"),
                                      QStringLiteral("New Template Title"));
    // The name goes between apostrophes in every statement that finds the row.
    title.remove(u'\'');
    if (title.isEmpty()) {
        ctx.dialogs.info(QStringLiteral("You must enter a title to add a new template."));
        return std::nullopt;
    }
    AppState& app = ctx.app;
    Recordset& rs = app.shared_recordset;
    rs.open(app.database, Sql(QStringLiteral("select * from template where tname='trash'")));
    rs.add_new();
    rs.set_field(QStringLiteral("tname"), title);
    rs.set_field(QStringLiteral("ttype"), QStringLiteral("C"));
    rs.set_field(QStringLiteral("description"), QStringLiteral("{custom}"));
    rs.update();
    rs.close();
    return title;
}

std::optional<QString> template_description(AppState& app, const QString& name) {
    Recordset& rs = app.shared_recordset;
    std::optional<QString> shown;
    passed_over([&] { rs.open(app.database, Sql(kDescriptionByName).arg(name)); });
    passed_over([&] {
        if (rs.record_count() == 0) {
            shown = QString();
            return;
        }
        rs.move_first();
        shown = rs.text(QStringLiteral("description"));
    });
    passed_over([&] { rs.close(); });
    return shown;
}

void update_template_description(AppState& app, const QString& name, const QString& text) {
    Recordset& rs = app.shared_recordset;
    rs.open(app.database, Sql(kDescriptionByName).arg(name));
    if (rs.record_count() == 1) {
        rs.edit();
        rs.set_field(QStringLiteral("description"), text);
        rs.update();
    }
    rs.close();
}

bool delete_template(Context& ctx, const QString& name) {
    if (!ctx.dialogs.ask_yes_no(
            QStringLiteral(
                "Are you sure you want to delete this permanently delete this template (") +
            name + QStringLiteral(")?"))) {
        return false;
    }
    AppState& app = ctx.app;
    Recordset& rs = app.shared_recordset;
    rs.open(app.database, template_row_sql(name));
    bool deleted = false;
    if (rs.record_count() == 1) {
        rs.delete_row();
        deleted = true;
    }
    rs.close();
    return deleted;
}
