#include "catalog/same_info.h"

#include "catalog/database.h"
#include "core/item_list.h"

namespace {

void write_fields(Recordset& rs, const QString& title, const QString& catalog,
                  const QString& description) {
    rs.set_field(QStringLiteral("title"), title);
    rs.set_field(QStringLiteral("catalog"), catalog);
    rs.set_field(QStringLiteral("description"), description);
    rs.update();
}

// Empty text, not Null: an empty control empties the field.
QString text_of(const QString& s) {
    return s.isNull() ? QStringLiteral("") : s;
}

}  // namespace

bool apply_same_information(Context& ctx, ItemList& main_list, const QString& title_in,
                            const QString& catalog_in, const QString& description_in,
                            const std::function<void()>& refill_catalogs) {
    const QString title = text_of(title_in);
    const QString catalog = text_of(catalog_in);
    const QString description = text_of(description_in);
    AppState& app = ctx.app;
    int remembered = 0;
    bool changed = true;
    if (title.isEmpty() && catalog.isEmpty() && description.isEmpty()) {
        ctx.dialogs.info(
            QStringLiteral("No changes were made.  No text or catalog selections were made."));
        changed = false;
    } else {
        Recordset& rs = app.shared_recordset;
        // The rows of a long selection commit together; all are in the file
        // when the command returns, or when it stops at an error.
        WriteBatch batch(app.database);
        if (!catalog.isEmpty()) {
            rs.open(app.database,
                    Sql(QStringLiteral("select * from catalog where catalog = '%1'")).arg(catalog));
            if (rs.record_count() < 1) {
                rs.add_new();
                rs.set_field(QStringLiteral("catalog"), catalog);
                rs.update();
            }
            rs.close();
            if (refill_catalogs) {
                refill_catalogs();
            }
        }
        for (int i = 0; i < main_list.count(); ++i) {
            batch.tick();
            if (main_list.selected(i)) {
                if (remembered == 0) {
                    remembered = i;
                }
                const QString path = main_list.item(i);
                rs.open(
                    app.database,
                    Sql(QStringLiteral("select * from filenames where filename='%1'")).arg(path));
                if (rs.record_count() < 1) {
                    rs.add_new();
                    rs.set_field(QStringLiteral("filename"), path);
                } else {
                    rs.edit();
                }
                write_fields(rs, title, catalog, description);
                rs.close();
            }
            main_list.set_selected(i, false);
        }
    }
    if (remembered < main_list.count()) {
        main_list.set_selected(remembered, true);
    }
    return changed;
}
