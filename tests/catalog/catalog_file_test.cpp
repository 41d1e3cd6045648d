#include "catalog/catalog_check.h"
#include "catalog/update_database.h"

#include "support/pg_server.h"
#include "support/test_home.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QStandardPaths>

#include <gtest/gtest.h>

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
    if (GetParam() == Engine::File) {
        const QString copy = home.path("backup.mdb");
        ASSERT_TRUE(QFile::copy(home.path("qd.mdb"), copy));
        EXPECT_TRUE(is_correct_database(home.app, copy));
        home.app.database_path = copy;
    }
    EXPECT_EQ(query_column(home.app,
                           "select filename || '|' || coalesce(title, '<null>') || '|' || "
                           "catalog from filenames order by filename"),
              QStringList({"/p/a.jpg|<null>|Kept", "/p/b.jpg|<null>|Kept", "/p/saved.jpg|Kept|"}));
}

// Checking and opening a catalog writes nothing to it.
TEST(CatalogFile, ACatalogIsOpenedUntouched) {
    TestHome home;
    const QString catalog = home.path("qd.mdb");
    const QByteArray before = read_bytes(catalog);
    ASSERT_TRUE(is_correct_database(home.app, catalog));
    EXPECT_EQ(read_bytes(catalog), before);
}

TEST(CatalogFile, AStatementMeetingAnotherProgramsLockFailsWithinAQuarterSecond) {
    const QString sqlite = QStandardPaths::findExecutable("sqlite3");
    if (sqlite.isEmpty()) {
        GTEST_SKIP() << "the sqlite3 program, which holds the lock, is not installed";
    }
    TestHome home;
    // Another program on the catalog, once it has said `word`.
    auto other = [&](QProcess& p, const char* script, const QByteArray& word) {
        p.start(sqlite, {home.path("qd.mdb")});
        p.write(script);
        QByteArray said;
        while (!said.contains(word) && p.waitForReadyRead(10000)) {
            said += p.readAllStandardOutput();
        }
        return said.contains(word);
    };
    QProcess holder;
    ASSERT_TRUE(other(holder, "begin exclusive;\nselect 'held';\n", "held"));

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
    ASSERT_TRUE(other(reader,
                      "begin;\nselect count(*) from filenames;\nselect 'read';\n.shell sleep 5\n"
                      "commit;\n",
                      "read"));
    ItemList one;
    one.add_many({"/p/d.jpg"});
    t.restart();
    update_database_from_list(home.ctx, one, "Birds", true);
    EXPECT_GE(t.elapsed(), 1900);
    EXPECT_LT(t.elapsed(), 4000);
    reader.kill();
    reader.waitForFinished(10000);
}
