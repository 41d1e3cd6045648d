#include "lists/item_menu.h"

#include "catalog/database.h"
#include "core/file_helpers.h"
#include "core/held_files.h"
#include "core/item_list.h"
#include "core/run_error.h"

namespace {

bool is(const QString& caption, const char* word) {
    return caption == QLatin1String(word);
}

// The row at the list index, when that row is selected; -1 otherwise. A row
// with the focus that is not selected counts as no row.
int focused_selected_row(ItemList& list) {
    const int i = list.list_index();
    return i >= 0 && i < list.count() && list.selected(i) ? i : -1;
}

void remove_from_list(ItemMenuTarget& t) {
    ItemList& list = *t.list;
    if (is(t.caption, "Main") || is(t.caption, "Load") || is(t.caption, "Resize")) {
        // From the last row up, so that the indices still to come stay valid.
        for (int i = list.count() - 1; i >= 0; --i) {
            passed_over([&] {
                if (list.selected(i)) {
                    list.remove(i);
                }
            });
        }
        if ((is(t.caption, "Load") || is(t.caption, "Resize")) && t.show_count) {
            t.show_count(list.count());
        }
    } else if (is(t.caption, "Search")) {
        // Only the row with the focus goes; other selected rows stay.
        passed_over([&] {
            const int i = focused_selected_row(list);
            if (i >= 0) {
                list.remove(i);
            }
        });
    }
}

void delete_from_disk(Context& ctx, ItemMenuTarget& t) {
    if (!(is(t.caption, "Main") || is(t.caption, "Load") || is(t.caption, "Search"))) {
        return;
    }
    ItemList& list = *t.list;
    const int i = focused_selected_row(list);
    if (i < 0) {
        return;
    }
    const QString path = list.item(i);
    const QString ending =
        is(t.caption, "Main") ? QStringLiteral("'?") : QStringLiteral("' from disk?");
    if (!ctx.dialogs.ask_yes_no(QStringLiteral("Are you sure you want to permanently delete '") +
                                path + ending)) {
        return;
    }
    // The row leaves the list even when the file could not be deleted; the
    // catalog row, if any, stays.
    passed_over([&] { delete_unheld_file(HeldFiles(ctx.app), path); });
    passed_over([&] { list.remove(i); });
}

void delete_from_disk_and_database(Context& ctx, ItemMenuTarget& t) {
    AppState& app = ctx.app;
    if ((is(t.caption, "Search") || is(t.caption, "Main")) && t.list) {
        ItemList& list = *t.list;
        const int i = focused_selected_row(list);
        if (i >= 0) {
            const QString path = list.item(i);
            if (ctx.dialogs.ask_yes_no(
                    QStringLiteral("Are you sure you want to permanently delete '") + path +
                    QStringLiteral("' from disk and the database?"))) {
                passed_over([&] {
                    app.database.execute(
                        Sql(QStringLiteral("delete * from filenames where filename = '%1'"))
                            .arg(path));
                });
                passed_over([&] { delete_unheld_file(HeldFiles(ctx.app), path); });
                passed_over([&] { list.remove(i); });
            }
        }
    }
    // On any tab, the catalog's record count is shown afresh.
    passed_over([&] {
        Recordset& rs = app.shared_recordset;
        rs.open(app.database,
                Sql(QStringLiteral("select count(filename) as fcount from filenames")));
        if (t.show_record_count) {
            t.show_record_count(QStringLiteral("Database Record Count:  ") +
                                rs.field(QStringLiteral("fcount")).toString());
        }
        rs.close();
    });
}

void open_with_application(Context& ctx, ItemMenuTarget& t) {
    if (!(is(t.caption, "Main") || is(t.caption, "Load") || is(t.caption, "Search"))) {
        return;
    }
    QString path;
    passed_over([&] {
        const int i = focused_selected_row(*t.list);
        if (i >= 0) {
            path = t.list->item(i);
        }
    });
    if (!path.isEmpty()) {
        passed_over([&] { ctx.shell.open_document(path); });
    }
}

}  // namespace

void run_item_menu(Context& ctx, int row, ItemMenuTarget& target) {
    if (row == kDeleteFromDiskAndDatabase) {
        delete_from_disk_and_database(ctx, target);
        return;
    }
    if (!target.list) {
        return;
    }
    switch (row) {
        case kRemoveFromList:
            remove_from_list(target);
            break;
        case kDeleteFromDisk:
            delete_from_disk(ctx, target);
            break;
        case kOpenWithApplication:
            open_with_application(ctx, target);
            break;
        default:
            break;
    }
}
