#include "catalog/audit.h"

#include "catalog/database.h"
#include "core/file_helpers.h"
#include "core/held_files.h"
#include "core/run_error.h"

namespace {

struct CountRow {
    const char* label;
    const char* statement;
};

constexpr CountRow kCounts[] = {
    {"File Count", "select count(filename) as fcount from filenames"},
    {"Files Without Titles", "select count(filename) as fcount from filenames where title is null"},
    {"Files Without Descriptions",
     "select count(filename) as fcount from filenames where description is null"},
    {"Files Not In A Catalog",
     "select count(filename) as fcount from filenames where catalog is null"},
    {"Files Without Key Words",
     "select count(filename) as fcount from filenames where keywords is null"},
};

enum class Action { DeleteAll, RemoveUntilExisting, DeleteRow, FillTitle, RemoveMissing };

struct Command {
    const char* item;
    const char* statement;
    Action action;
    const char* one;
    const char* several;
};

// Word for word, as the user has always read them.
constexpr Command kCommands[] = {
    {"Remove all file names in the database", "delete * from filenames", Action::DeleteAll, "", ""},
    {"Remove non-existant files", "select * from filenames", Action::RemoveUntilExisting,
     "1 file was removed from the database because they no longer exist.",
     " files were removed from the database because they no longer exist."},
    {"Remove files without a title", "select * from filenames where title is null",
     Action::DeleteRow, "1 file was removed from the database due to blank titles.",
     " files were removed from the database due to blank titles."},
    {"Remove files without a description", "select * from filenames where description is null",
     Action::DeleteRow, "1 file was removed from the database due to blank descriptions.",
     " files were removed from the database due to blank descriptions."},
    {"Remove files not belonging to a catalog", "select * from filenames where catalog is null",
     Action::DeleteRow, "1 file was removed from the database due to blank catalog name.",
     " files were removed from the database due to blank catalog names."},
    {"Remove files without a key words", "select * from filenames where keywords is null",
     Action::DeleteRow, "1 file was removed from the database due to blank key words.",
     " files were removed from the database due to blank key words."},
    {"Replace title with the file name where title is blank",
     "select * from filenames where title is null or title = ''", Action::FillTitle,
     "1 file title was replaced with the file name.",
     " file titles were replaced with the file name."},
    {"Remove files that do not exist", "select * from filenames", Action::RemoveMissing,
     "1 file was removed from the database.", " files were removed from the database."},
};

// A title made of a path keeps its first 200 characters.
constexpr int kTitleFromPathLength = 200;

}  // namespace

const QStringList& audit_commands() {
    static const QStringList items = [] {
        QStringList out;
        for (const Command& c : kCommands) {
            out << QString::fromLatin1(c.item);
        }
        return out;
    }();
    return items;
}

QList<QPair<QString, QString>> audit_counts(Context& ctx) {
    QList<QPair<QString, QString>> out;
    Recordset& rs = ctx.app.shared_recordset;
    bool first = true;
    for (const CountRow& row : kCounts) {
        rs.open(ctx.app.database, Sql(QString::fromLatin1(row.statement)));
        out.append({QString::fromLatin1(row.label), rs.field(QStringLiteral("fcount")).toString()});
        if (first) {
            rs.close();
            first = false;
        }
    }
    rs.close();
    return out;
}

void run_audit_command(Context& ctx, const QString& command) {
    if (!ctx.dialogs.ask_yes_no(QStringLiteral("Are you sure you want to ") + command +
                                QStringLiteral("?"))) {
        return;
    }
    AppState& app = ctx.app;
    Recordset& rs = app.shared_recordset;
    const Command* found = nullptr;
    for (const Command& c : kCommands) {
        if (command == QLatin1String(c.item)) {
            found = &c;
        }
    }
    int count = 0;
    if (found && found->action == Action::DeleteAll) {
        passed_over([&] { app.database.execute(Sql(QString::fromLatin1(found->statement))); });
    } else if (found) {
        // Each step on its own: a failing one is skipped and the next runs.
        passed_over([&] { rs.open(app.database, Sql(QString::fromLatin1(found->statement))); });
        int passes = 0;
        passed_over([&] {
            if (rs.record_count() > 0) {
                rs.move_last();
                rs.move_first();
                passes = rs.record_count();
            }
        });
        const HeldFiles held(app);
        WriteBatch batch(app.database);
        QString path;
        for (int pass = 0; pass < passes; ++pass) {
            batch.tick();
            switch (found->action) {
                case Action::RemoveUntilExisting:
                    // Stays on the first file that exists: the remaining
                    // passes read that same row again.
                    passed_over([&] { path = rs.text(QStringLiteral("filename")); });
                    if (!file_exists(path)) {
                        ++count;
                        passed_over([&] { rs.delete_row(); });
                        passed_over([&] { rs.move_next(); });
                    }
                    break;
                case Action::RemoveMissing:
                    passed_over([&] { path = rs.text(QStringLiteral("filename")); });
                    if (!file_exists(path)) {
                        // Finds something only where the file is there but
                        // could not be read; the program's own files stay.
                        passed_over([&] { delete_unheld_file(held, path); });
                        passed_over([&] { rs.delete_row(); });
                        ++count;
                    }
                    passed_over([&] { rs.move_next(); });
                    break;
                case Action::FillTitle:
                    passed_over([&] { path = rs.text(QStringLiteral("filename")); });
                    path = path.left(kTitleFromPathLength);
                    ++count;
                    passed_over([&] { rs.edit(); });
                    passed_over([&] { rs.set_field(QStringLiteral("title"), path); });
                    passed_over([&] { rs.update(); });
                    passed_over([&] { rs.move_next(); });
                    break;
                case Action::DeleteRow:
                case Action::DeleteAll:
                    ++count;
                    passed_over([&] { rs.delete_row(); });
                    passed_over([&] { rs.move_next(); });
                    break;
            }
        }
    }
    if (found && count > 0) {
        ctx.dialogs.info(count == 1 ? QString::fromLatin1(found->one)
                                    : QString::number(count) + QString::fromLatin1(found->several));
    }
    passed_over([&] { rs.close(); });
}
