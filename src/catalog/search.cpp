#include "catalog/search.h"

#include "catalog/busy_pointer.h"
#include "catalog/database.h"
#include "core/file_helpers.h"
#include "core/item_list.h"
#include "core/run_error.h"

#include <QFile>

namespace {

// Kind and statement; value kinds paste the value between the wildcards.
struct Kind {
    const char* item;
    const char* statement;
};

constexpr Kind kKinds[] = {
    {"Search Blank Catalogs", "select * from filenames where catalog is null"},
    {"Search Blank Descriptions", "select * from filenames where description  is null"},
    {"Search Blank Titles", "select * from filenames where title is null"},
    {"Search Catalog Names", "select * from filenames where catalog like '*%1*'"},
    {"Search Description", "select * from filenames where description like '*%1*'"},
    {"Search File Title", "select * from filenames where title like '*%1*'"},
    {"Search File Name", "select * from filenames where filename like '*%1*'"},
};

// The statement of a kind, or an empty one for a text that names none.
Sql statement_for(const QString& kind, const QString& value) {
    for (const Kind& k : kKinds) {
        if (kind == QLatin1String(k.item)) {
            Sql sql{QString::fromLatin1(k.statement)};
            if (sql.text().contains(QLatin1String("%1"))) {
                sql.arg(value);
            }
            return sql;
        }
    }
    return Sql{QString()};
}

}  // namespace

const QStringList& search_kinds() {
    static const QStringList kinds = [] {
        QStringList out;
        for (const Kind& k : kKinds) {
            out << QString::fromLatin1(k.item);
        }
        return out;
    }();
    return kinds;
}

QString record_count_caption(Context& ctx) {
    Recordset& rs = ctx.app.shared_recordset;
    rs.open(ctx.app.database,
            Sql(QStringLiteral("select count(filename) as fcount from filenames")));
    const QString caption =
        QStringLiteral("Database Record Count:  ") + rs.field(QStringLiteral("fcount")).toString();
    rs.close();
    return caption;
}

bool search_database(Context& ctx, const QString& kind, const QString& value, ItemList& results) {
    BusyPointer busy(ctx.ui);
    ctx.ui.set_status(QStringLiteral("Searching database..."));
    const Sql sql = statement_for(kind, value);
    bool listed = false;
    // An empty value, or one that begins or ends with the wildcard, leaves two
    // in a row: the only check made of what was typed.
    if (sql.pasted().contains(QLatin1String("**"))) {
        ctx.dialogs.info(QStringLiteral("You must enter a value to search."));
    } else {
        Recordset& rs = ctx.app.shared_recordset;
        rs.open(ctx.app.database, sql);
        if (rs.record_count() < 1) {
            ctx.dialogs.info(QStringLiteral("No files found."));
        } else {
            results.clear();
            rs.move_last();
            rs.move_first();
            const int records = rs.record_count();
            int missing = 0;
            QStringList found;
            found.reserve(records);
            for (int i = 0; i < records; ++i) {
                QString path = rs.text(QStringLiteral("filename"));
                if (file_exists(path)) {
                    found << path;
                } else {
                    ++missing;
                }
                rs.move_next();
            }
            results.add_many(found);
            listed = true;
            if (missing > 0) {
                const QString first =
                    records == 1
                        ? QStringLiteral(
                              "There was 1 record in the database matching your search criteria.")
                        : QStringLiteral("There were ") + QString::number(records) +
                              QStringLiteral(" records in the database.");
                ctx.dialogs.info(first + QChar(10) + QString::number(missing) +
                                 QStringLiteral(" of which could not be found."));
            }
        }
        rs.close();
    }
    ctx.ui.set_status(QString());
    return listed;
}

bool search_to_main_list(Context& ctx, const ItemList& results, bool selected_only) {
    BusyPointer busy(ctx.ui);
    if (results.empty()) {
        ctx.ui.set_status(QString());
        return false;
    }
    ItemList& main_list = ctx.app.main_list;
    if (!main_list.empty() &&
        !ctx.dialogs.ask_yes_no(QStringLiteral(
            "Are you sure you want to replace the main list of files with the search results?"))) {
        ctx.ui.set_status(QString());
        return false;
    }
    ctx.ui.set_status(QStringLiteral("Loading main file list..."));
    ctx.ui.yield();
    main_list.clear();
    QStringList rows;
    for (int i = 0; i < results.count(); ++i) {
        QString path = results.item(i);
        if (!file_exists(path)) {
            continue;
        }
        if (!selected_only || results.selected(i)) {
            rows << results.item(i);
        }
    }
    main_list.add_many(rows);
    ctx.ui.set_status(QString());
    return true;
}

void copy_found_files(Context& ctx, const ItemList& results, bool selected_only) {
    int copied = 0;
    if (!results.empty()) {
        ctx.app.directory_chooser_cancelled = false;
        const Dialogs::DirectoryChoice choice =
            ctx.dialogs.choose_directory(ctx.app.last_directory);
        ctx.app.directory_chooser_cancelled = choice.cancelled;
        QString target = choice.path;
        if (!choice.cancelled) {
            for (int i = 0; i < results.count(); ++i) {
                const QString source = results.item(i);
                bool wanted = !selected_only || results.selected(i);
                QString checked = source;
                wanted = wanted && file_exists(checked);
                if (!wanted) {
                    ctx.ui.set_status(QStringLiteral("Processing ") + source);
                    ctx.ui.yield();
                    continue;
                }
                QString directory;
                QString name;
                split_path(source, directory, name);
                // The target keeps its closing "/" for the rest of the run
                // and for the closing message.
                if (directory.endsWith(u'/') && !target.endsWith(u'/')) {
                    target += u'/';
                }
                // A file already in the target directory is passed over
                // without a word.
                if (target.toLower() == directory.toLower()) {
                    continue;
                }
                const QString destination = join_path(target, name);
                bool copy = !QFile::exists(destination);
                if (!copy) {
                    const Dialogs::Answer answer = ctx.dialogs.message(
                        QStringLiteral("This file, ") + name +
                            QStringLiteral(", already exists in the target directory (") + target +
                            QStringLiteral(
                                ").  Do you want to copy it anyway and replace the current file?"),
                        Dialogs::Buttons::YesNoCancel, Dialogs::Icon::Question);
                    copy = answer == Dialogs::Answer::Yes;
                    // Cancel ends nothing: it is a No with a status line.
                    if (answer == Dialogs::Answer::Cancel) {
                        ctx.ui.set_status(QStringLiteral("Processing ") + source);
                        ctx.ui.yield();
                    }
                }
                if (copy) {
                    ctx.ui.set_status(QStringLiteral("Copying ") + source);
                    ctx.ui.yield();
                    // A copy that fails is passed over, and counted all the same.
                    passed_over([&] { copy_file(source, destination); });
                    ++copied;
                }
            }
            if (copied > 1) {
                ctx.dialogs.info(QString::number(copied) +
                                 QStringLiteral(" files were copied to ") + target +
                                 QStringLiteral("."));
            } else if (copied == 1) {
                ctx.dialogs.info(QStringLiteral("1 file was copied to ") + target +
                                 QStringLiteral("."));
            } else {
                ctx.dialogs.info(QStringLiteral("No files were copied to ") + target +
                                 QStringLiteral("."));
            }
        }
    }
    ctx.ui.set_status(QString());
}
