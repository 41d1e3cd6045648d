#include "catalog/update_database.h"

#include "catalog/busy_pointer.h"
#include "catalog/catalog_names.h"
#include "catalog/database.h"
#include "core/run_error.h"

namespace {

// A path of this length is never entered: kept on purpose.
constexpr int kPassedOverLength = 200;

}  // namespace

UpdateStatistics update_database_from_list(Context& ctx, const ItemList& list,
                                           const QString& catalog, bool use_entire_list) {
    // Every row is in the file when the command returns, committed with the
    // others of its fifth of a second rather than on its own.
    WriteBatch batch(ctx.app.database);
    // A failure here comes before the counters start and leaves no trace.
    add_catalog_unless_found(ctx, catalog, catalog);

    UpdateStatistics stats;
    Recordset& rs = ctx.app.shared_recordset;
    bool file_failed = false;
    bool failure_counted = false;
    // The command's handler: a failing statement counts its file once, marks
    // it, and the command resumes at the next statement.
    auto step = [&](auto&& statement) {
        if (passed_over(statement)) {
            return true;
        }
        if (!failure_counted) {
            ++stats.files_failed;
            failure_counted = true;
        }
        file_failed = true;
        return false;
    };

    const int rows = list.count();
    Progress progress(ctx.ui, rows);
    for (int i = 0; i < rows; ++i) {
        progress.step(i);
        batch.tick();
        ctx.ui.yield();
        file_failed = false;
        failure_counted = false;
        QString path;
        if (use_entire_list) {
            path = list.item(i);
            ctx.ui.set_status(QStringLiteral("Processing ") + path);
            ctx.ui.yield();
        } else if (list.selected(i)) {
            path = list.item(i);
        } else {
            continue;
        }
        if (path.size() == kPassedOverLength) {
            continue;
        }
        step([&] {
            rs.open(ctx.app.database,
                    Sql(QStringLiteral("select * from filenames where filename='%1'")).arg(path));
        });
        // A failing test resumes inside its branch, as the handler does.
        bool none = true;
        step([&] { none = rs.record_count() < 1; });
        if (none) {
            step([&] { rs.add_new(); });
            step([&] { rs.set_field(QStringLiteral("filename"), path); });
            step([&] { rs.set_field(QStringLiteral("catalog"), catalog); });
            step([&] { rs.update(); });
            if (!file_failed) {
                ++stats.files_added;
            }
        }
        rs.close();
    }
    stats.total_files = rows;
    return stats;
}

QString update_statistics_message(const UpdateStatistics& stats) {
    const int added = stats.files_added - stats.files_failed;
    QString text = QStringLiteral("Update statistics:\n");
    text += QStringLiteral("       Total Files:  ") + QString::number(stats.total_files) + u'\n';
    text += QStringLiteral("       Total Files Added:  ") + QString::number(added < 0 ? 0 : added) +
            u'\n';
    if (stats.files_failed > 0) {
        text += QStringLiteral("       Total Files Not Added:  ") +
                QString::number(stats.files_failed) + u'\n';
        text += u'\n';
        text += QStringLiteral(
                    "(files are not added because they already exist in the database or there "
                    "was a problem)") +
                u'\n';
    }
    return text;
}

UpdateStatistics run_update_database(Context& ctx, const ItemList& list, const QString& catalog,
                                     bool use_entire_list) {
    UpdateStatistics stats;
    {
        BusyPointer busy(ctx.ui);
        stats = update_database_from_list(ctx, list, catalog, use_entire_list);
    }
    ctx.dialogs.info(update_statistics_message(stats));
    return stats;
}
