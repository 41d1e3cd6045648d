#include "catalog/catalog_check.h"
#include "catalog/update_database.h"

#include "support/cli_run.h"
#include "support/pg_server.h"
#include "support/plain_user.h"
#include "support/test_home.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <unistd.h>

namespace {

QByteArray bytes_of(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// The journal, log or shared-memory file that lies beside a catalog.
QStringList files_beside(const QString& catalog) {
    QStringList out;
    for (const char* suffix : {"-journal", "-wal", "-shm"}) {
        if (QFile::exists(catalog + suffix)) {
            out << catalog + suffix;
        }
    }
    return out;
}

// A copy of the delivered catalog at `path`, changed by `sql` through
// another program.
bool make_catalog(const QString& path, const char* sql) {
    sqlite3* db = nullptr;
    const bool ok =
        QFile::copy(QStringLiteral(QD_TEST_CATALOG), path) &&
        QFile(path).setPermissions(QFile(path).permissions() | QFileDevice::WriteOwner) &&
        sqlite3_open(QFile::encodeName(path).constData(), &db) == SQLITE_OK &&
        sqlite3_exec(db, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
    sqlite3_close(db);
    return ok;
}

}  // namespace

class KilledProcess : public EngineTest {};
QD_ON_BOTH_ENGINES(KilledProcess);

TEST_P(KilledProcess, EverySavedRowIsInTheCatalogWhenTheProcessIsKilledRightAfter) {
    TestHome& home = *home_;
    // A real process saves (the Main tab's Save, then the Database button) and
    // is killed (SIGKILL: no close, no exit handler) as soon as it says so.
    QProcess child;
    child.start(QD_SAVE_CHILD, {home.app.database_path, "/p/saved.jpg", "/p/a.jpg", "/p/b.jpg"});
    QByteArray said;
    while (!said.contains("saved\n") && child.waitForReadyRead(30000)) {
        said += child.readAllStandardOutput();
    }
    child.kill();
    child.waitForFinished();
    ASSERT_TRUE(said.contains("saved\n") && child.exitStatus() == QProcess::CrashExit);

    // A catalog file is read from a copy of the file alone, as a backup holds it.
    QTemporaryDir elsewhere;
    if (GetParam() == Engine::File) {
        const QString copy = elsewhere.path() + "/backup.mdb";
        ASSERT_TRUE(QFile::copy(home.path("qd.mdb"), copy));
        EXPECT_TRUE(is_correct_database(home.app, copy));
        home.app.database_path = copy;
    }
    EXPECT_EQ(query_column(home.app,
                           "select filename || '|' || coalesce(title, '<null>') || '|' || "
                           "catalog from filenames order by filename"),
              QStringList({"/p/a.jpg|<null>|Kept", "/p/b.jpg|<null>|Kept", "/p/saved.jpg|Kept|"}));
}

TEST(CatalogFile, AReadOnlyCatalogOpensUntouchedAndEachWriteFailsOnItsOwn) {
    {
        TestHome home;
        const QByteArray before = bytes_of(home.path("qd.mdb"));
        ASSERT_TRUE(is_correct_database(home.app, home.path("qd.mdb")));
        EXPECT_EQ(bytes_of(home.path("qd.mdb")), before);  // opening writes nothing
    }
    // The hardest case: a read-only file, still in write-ahead mode, in a
    // read-only directory, so that no journal or log can be made beside it.
    TestHome home(false);
    const QString catalog = home.path("qd.mdb");
    ASSERT_TRUE(make_catalog(catalog,
                             "insert into filenames (filename) values ('/p/old.jpg'); "
                             "pragma journal_mode=wal"));
    const QByteArray before = bytes_of(catalog);
    const auto r = QFileDevice::ReadOwner | QFileDevice::ReadGroup | QFileDevice::ReadOther;
    const auto rx = r | QFileDevice::ExeOwner | QFileDevice::ExeGroup | QFileDevice::ExeOther;
    QFile(catalog).setPermissions(r);
    QFile(home.dir()).setPermissions(rx);
    // Permissions do not bind root: the program gives up its right to pass over them.
    const CliRun run =
        run_cli(home.dir(), {"catalog-add", "--catalog", "Birds", "/p/old.jpg", "/p/new.jpg"},
                60000, become_plain_user_in_child);
    QFile(home.dir()).setPermissions(rx | QFileDevice::WriteOwner);
    ASSERT_NE(run.code, kNoPlainUser) << "the program could not run as a plain user";
    // The catalog was not refused; the row there was read, and the new one
    // failed as a statement of its own.
    EXPECT_EQ(run.lines.mid(1, 3),
              QStringList({"       Total Files:  2", "       Total Files Added:  0",
                           "       Total Files Not Added:  1"}))
        << run.out.toStdString() << run.err.toStdString();
    EXPECT_EQ(bytes_of(catalog), before);
    EXPECT_EQ(files_beside(catalog), QStringList());
}

TEST(CatalogFile, AStatementMeetingAnotherProgramsLockFailsWithinAQuarterSecond) {
    const QString sqlite = QStandardPaths::findExecutable("sqlite3");
    if (sqlite.isEmpty()) {
        GTEST_SKIP() << "the sqlite3 program, which holds the lock, is not installed";
    }
    TestHome home;
    QProcess holder;
    holder.start(sqlite, {home.path("qd.mdb")});
    holder.write("begin exclusive;\nselect 'held';\n");
    QByteArray said;
    while (!said.contains("held") && holder.waitForReadyRead(10000)) {
        said += holder.readAllStandardOutput();
    }
    ASSERT_TRUE(said.contains("held"));

    Recordset rs;
    QElapsedTimer t;
    t.start();
    EXPECT_THROW(rs.open(home.app.database, Sql("select * from filenames")), DbError);
    EXPECT_LT(t.elapsed(), 250);
    // At most the catalog name's lookup and insert, and each file's, wait.
    ItemList list;
    list.add_many({"/p/a.jpg", "/p/b.jpg", "/p/c.jpg"});
    t.restart();
    const UpdateStatistics locked = update_database_from_list(home.ctx, list, "Birds", true);
    EXPECT_LT(t.elapsed(), (2 + 2 * 3) * 250);
    EXPECT_TRUE(update_statistics_message(locked).contains("       Total Files Not Added:  3\n"));

    holder.write("commit;\n.quit\n");
    ASSERT_TRUE(holder.waitForFinished(10000));
    EXPECT_EQ(update_database_from_list(home.ctx, list, "Birds", true).files_added, 3);

    // A reader that holds the file past the command's end: the last commit
    // waits two seconds for it, then gives up rather than freeze.
    QProcess reader;
    reader.start(sqlite, {home.path("qd.mdb")});
    reader.write(
        "begin;\nselect count(*) from filenames;\nselect 'read';\n.shell sleep 5\ncommit;\n");
    said.clear();
    while (!said.contains("read") && reader.waitForReadyRead(10000)) {
        said += reader.readAllStandardOutput();
    }
    ASSERT_TRUE(said.contains("read"));
    ItemList one;
    one.add_many({"/p/d.jpg"});
    t.restart();
    update_database_from_list(home.ctx, one, "Birds", true);
    EXPECT_GE(t.elapsed(), 1900);
    EXPECT_LT(t.elapsed(), 4000);
    reader.kill();
    reader.waitForFinished(10000);
}
