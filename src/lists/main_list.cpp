#include "lists/main_list.h"

#include "catalog/catalog_names.h"
#include "catalog/database.h"
#include "core/file_helpers.h"
#include "core/run_error.h"

#include <QDateTime>
#include <QFileInfo>

#include <algorithm>

namespace {

// A null text would be written as Null; a control always holds a text.
QString not_null(const QString& text) {
    return text.isNull() ? QStringLiteral("") : text;
}

}  // namespace

std::optional<FileFields> load_file_fields(Context& ctx, const QString& path) {
    Recordset rs;
    if (!passed_over([&] {
            rs.open(ctx.app.database,
                    Sql(QStringLiteral("select * from filenames where filename='%1'")).arg(path));
        })) {
        return std::nullopt;
    }
    FileFields f;
    if (rs.record_count() > 0) {
        passed_over([&] { f.description = rs.text_or_empty(QStringLiteral("description")); });
        passed_over([&] { f.catalog = rs.text_or_empty(QStringLiteral("catalog")); });
        passed_over([&] { f.title = rs.text_or_empty(QStringLiteral("title")); });
    }
    rs.close();
    return f;
}

void save_file_fields(Context& ctx, const QString& selected_file, const FileFields& fields,
                      const QString& load_catalog) {
    if (!fields.catalog.isEmpty()) {
        add_catalog_unless_found(ctx, load_catalog, fields.catalog);
    }
    Recordset& rs = ctx.app.shared_recordset;
    passed_over([&] {
        rs.open(
            ctx.app.database,
            Sql(QStringLiteral("select * from filenames where filename='%1'")).arg(selected_file));
    });
    bool none = true;
    passed_over([&] { none = rs.record_count() < 1; });
    if (none) {
        passed_over([&] { rs.add_new(); });
    } else {
        passed_over([&] { rs.edit(); });
    }
    // An empty control writes an empty text, not Null.
    passed_over([&] { rs.set_field(QStringLiteral("filename"), selected_file); });
    passed_over([&] { rs.set_field(QStringLiteral("title"), not_null(fields.title)); });
    passed_over([&] { rs.set_field(QStringLiteral("description"), not_null(fields.description)); });
    passed_over([&] { rs.set_field(QStringLiteral("catalog"), not_null(fields.catalog)); });
    passed_over([&] { rs.update(); });
    rs.close();
}

int remove_main_row(ItemList& list, int row) {
    list.remove(row);
    if (row > 0) {
        --row;
    }
    if (list.empty()) {
        return -1;
    }
    return row;
}

namespace {

void swap_rows(ItemList& list, int from, int to) {
    const QString moving = list.item(from);
    list.set_item(from, list.item(to));
    list.set_item(to, moving);
    list.set_selected(to, true);
    list.set_list_index(to);
    list.set_selected(from, false);
}

}  // namespace

void move_row_up(ItemList& list) {
    const int i = list.list_index();
    if (i - 1 >= 0) {
        swap_rows(list, i, i - 1);
    }
}

void move_row_down(ItemList& list) {
    const int i = list.list_index();
    if (i + 1 <= list.count() - 1) {
        // With no current row this asks for row -1, an error.
        swap_rows(list, i, i + 1);
    }
}

QString date_sort_key(const QString& path) {
    const QFileInfo info(path);
    if (!info.isFile()) {
        throw RunError(QStringLiteral("File not found"));
    }
    return info.lastModified().toLocalTime().toString(QStringLiteral("yyyy/MM/dd HH:mm:ss-"));
}

namespace {

// The order of a sorted list box: case is ignored, equal texts keep the
// order in which they were added.
void sort_like_list_box(QStringList& rows) {
    std::stable_sort(rows.begin(), rows.end(), [](const QString& a, const QString& b) {
        return a.compare(b, Qt::CaseInsensitive) < 0;
    });
}

}  // namespace

QStringList sort_by_name(Context& ctx, ItemList& list) {
    QStringList scratch;
    scratch.reserve(list.count());
    // A copy: the turns of the message loop may change the list meanwhile.
    const QStringList rows = list.items();
    for (const QString& row : rows) {
        scratch << row;
        ctx.ui.yield();
    }
    sort_like_list_box(scratch);
    list.set_items(scratch);
    return scratch;
}

QStringList sort_by_date(Context& ctx, ItemList& list) {
    QStringList scratch;
    scratch.reserve(list.count());
    const QStringList rows = list.items();
    for (const QString& row : rows) {
        scratch << date_sort_key(row) + row;
        ctx.ui.yield();
    }
    sort_like_list_box(scratch);
    QStringList sorted;
    sorted.reserve(scratch.size());
    for (const QString& row : scratch) {
        QString path = row.mid(row.indexOf(u'-') + 1);
        if (file_exists(path)) {
            sorted << path;
        }
    }
    list.set_items(sorted);
    return scratch;
}
