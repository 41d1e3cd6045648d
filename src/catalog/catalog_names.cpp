#include "catalog/catalog_names.h"

#include "catalog/busy_pointer.h"
#include "catalog/database.h"
#include "core/run_error.h"

QStringList catalog_names(Context& ctx) {
    Recordset& rs = ctx.app.shared_recordset;
    rs.open(ctx.app.database, Sql(QStringLiteral("select catalog from catalog group by catalog")));
    QStringList names;
    if (rs.record_count() > 0) {
        rs.move_last();
        rs.move_first();
        while (!rs.eof()) {
            names << rs.text_or_empty(QStringLiteral("catalog"));
            rs.move_next();
        }
    }
    rs.close();
    return names;
}

bool add_catalog_name(Context& ctx, const QString& name) {
    Recordset& rs = ctx.app.shared_recordset;
    bool failed = false;
    // Each statement runs on its own: a failure is noted and the next runs.
    auto step = [&](auto&& statement) {
        if (!passed_over(statement)) {
            failed = true;
        }
    };
    step([&] {
        rs.open(ctx.app.database,
                Sql(QStringLiteral("select catalog from catalog where catalog = '%1'")).arg(name));
    });
    bool none = true;
    step([&] { none = rs.record_count() == 0; });
    bool appended = false;
    if (none) {
        step([&] { rs.add_new(); });
        step([&] { rs.set_field(QStringLiteral("catalog"), name); });
        step([&] { rs.update(); });
        appended = !failed;
    }
    rs.close();
    return appended;
}

void add_catalog_unless_found(Context& ctx, const QString& looked_up, const QString& added) {
    Recordset& rs = ctx.app.shared_recordset;
    passed_over([&] {
        rs.open(ctx.app.database,
                Sql(QStringLiteral("select * from catalog where catalog = '%1'")).arg(looked_up));
    });
    bool none = true;
    passed_over([&] { none = rs.record_count() < 1; });
    if (none) {
        passed_over([&] { rs.add_new(); });
        passed_over([&] { rs.set_field(QStringLiteral("catalog"), added); });
        passed_over([&] { rs.update(); });
    }
    rs.close();
}

bool delete_catalog_name(Context& ctx, const QString& name) {
    BusyPointer busy(ctx.ui);
    if (name.isEmpty()) {
        return false;
    }
    const QString question = QStringLiteral("Are you sure you want to delete the catalog '") +
                             name + QStringLiteral("'?  ") +
                             QStringLiteral(
                                 "The catalog field for each file using this catalog name will be "
                                 "cleared.");
    if (!ctx.dialogs.ask_yes_no(question)) {
        return false;
    }
    ctx.app.database.execute(
        Sql(QStringLiteral("delete * from catalog where catalog = '%1'")).arg(name));
    ctx.app.database.execute(
        Sql(QStringLiteral("update filenames set catalog = null where catalog = '%1'")).arg(name));
    return true;
}
