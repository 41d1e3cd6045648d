#include "catalog/audit.h"
#include "catalog/database.h"

#include "support/cli_run.h"
#include "support/pg_server.h"
#include "support/qt_print.h"
#include "support/test_home.h"

#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

namespace {

// Four rows, in this order: a missing file, a file on disk, a link to
// nothing (there, but it cannot be read), and a missing file whose path is
// 250 characters long.
QStringList add_rows(TestHome& home) {
    const QStringList p = {home.path("gone/a.jpg"), home.write_file("here/b.jpg"),
                           home.path("here/c.jpg"),
                           home.path(QString(250 - home.dir().size() - 5, u'x') + ".jpg")};
    QFile::link(home.path("nowhere.jpg"), p[2]);
    for (const QString& row : {p[0] + "', null, 'd', 'C', null", p[1] + "', '', null, null, 'k'",
                               p[2] + "', 'T', null, 'C', null", p[3] + "', null, 'd', 'C', 'k'"}) {
        query_column(home.app,
                     "insert into filenames (filename, title, description, catalog, "
                     "keywords) values ('" +
                         row + ")");
    }
    return p;
}

class Audit : public EngineTest {};
QD_ON_BOTH_ENGINES(Audit);

}  // namespace

TEST_P(Audit, EveryCommandsEffectAndMessage) {
    struct Case {
        int command;          // index in the list
        const char* left;     // the rows left, by letter
        QStringList message;  // after the question
    };
    const Case cases[] = {
        {0, "", {}},
        // Stops at the first file that exists: the later missing ones stay.
        {1, "bcd", {"1 file was removed from the database because they no longer exist."}},
        {2, "bc", {"2 files were removed from the database due to blank titles."}},
        {3, "ad", {"2 files were removed from the database due to blank descriptions."}},
        {4, "acd", {"1 file was removed from the database due to blank catalog name."}},
        {5, "bd", {"2 files were removed from the database due to blank key words."}},
        {6, "abcd", {"3 file titles were replaced with the file name."}},
        // Walks every row; the link that could not be read goes from disk too.
        {7, "b", {"3 files were removed from the database."}},
    };
    for (const Case& k : cases) {
        const QString command = audit_commands().at(k.command);
        SCOPED_TRACE(command.toStdString());
        const std::unique_ptr<TestHome> fresh = new_home();
        TestHome& home = *fresh;
        const QStringList paths = add_rows(home);
        home.dialogs.answer(Dialogs::Answer::Yes);
        run_audit_command(home.ctx, command);
        QStringList left;
        for (const char* l = k.left; *l; ++l) {
            left << paths[*l - 'a'];
        }
        EXPECT_EQ(query_column(home.app, "select filename from filenames order by filename"), left);
        EXPECT_EQ(home.dialogs.messages(),
                  QStringList{"Are you sure you want to " + command + "?"} + k.message);
        EXPECT_TRUE(QFileInfo::exists(paths[1]));
        EXPECT_EQ(QFileInfo(paths[2]).isSymLink(), k.command != 7);
        if (k.command == 6) {
            EXPECT_EQ(query_column(home.app, "select title from filenames order by filename"),
                      QStringList({paths[0], paths[1], "T", paths[3].left(200)}));
        }
    }
}

TEST_P(Audit, CommandLineSearchAndAuditPrintWhatTheTabsShow) {
    TestHome& home = *home_;
    const QStringList paths = add_rows(home);
    const CliRun audit = run_cli(home.dir(), {"audit"});
    EXPECT_EQ(audit.code, 0) << audit.err.toStdString();
    EXPECT_EQ(
        audit.lines,
        QStringList({"File Count: 4", "Files Without Titles: 2", "Files Without Descriptions: 2",
                     "Files Not In A Catalog: 1", "Files Without Key Words: 2"}));
    const CliRun found = run_cli(home.dir(), {"search", "Search File Name", "here"});
    EXPECT_EQ(found.code, 0) << found.err.toStdString();
    EXPECT_EQ(found.lines, QStringList({paths[1]}));
    EXPECT_TRUE(found.err.contains("2 records in the database.\n1 of which could not be found."))
        << found.err.toStdString();
    const CliRun quote = run_cli(home.dir(), {"search", "Search File Title", "it's"});
    EXPECT_EQ(quote.code, 1);
    EXPECT_TRUE(quote.lines.isEmpty());
    EXPECT_TRUE(quote.err.contains("Syntax error")) << quote.err.toStdString();
}
