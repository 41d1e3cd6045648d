#include "catalog/catalog_check.h"
#include "catalog/database.h"
#include "catalog/update_database.h"

#include "support/test_home.h"

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

QByteArray bytes_of(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// The two format bytes of a catalog's header: 1 for a rollback journal, 2
// for a write-ahead log.
QByteArray format_bytes(const QString& path) {
    return bytes_of(path).mid(18, 2);
}

QStringList files_beside(const QString& catalog) {
    QStringList out;
    for (const char* suffix : {"-journal", "-wal", "-shm"}) {
        if (QFile::exists(catalog + suffix)) {
            out << catalog + suffix;
        }
    }
    return out;
}

// Reads `sql` from a copy of `catalog` alone, made elsewhere, as a backup of
// that one file would hold it; the copy is opened as the one database.
QStringList read_lone_copy(AppState& app, const QString& catalog, const QString& sql) {
    QTemporaryDir elsewhere;
    const QString copy = elsewhere.path() + QStringLiteral("/backup.mdb");
    if (!QFile::copy(catalog, copy) || !is_correct_database(app, copy)) {
        return {QStringLiteral("the copy is not the correct database")};
    }
    app.database_path = copy;
    return query_column(app, sql) + query_column(app, QStringLiteral("pragma integrity_check"));
}

// A writable copy of the delivered catalog at `path`, changed by `sql` through
// another program's connection.
bool make_catalog(const QString& path, const char* sql) {
    if (!QFile::copy(QStringLiteral(QD_TEST_CATALOG), path) ||
        !QFile(path).setPermissions(QFile(path).permissions() | QFileDevice::WriteOwner)) {
        return false;
    }
    sqlite3* db = nullptr;
    const bool ok = sqlite3_open(QFile::encodeName(path).constData(), &db) == SQLITE_OK &&
                    sqlite3_exec(db, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
    sqlite3_close(db);
    return ok;
}

}  // namespace

// Runs the saving process on `catalog` and kills it (SIGKILL: no close, no
// exit handler) as soon as it prints `word`.
bool kill_child_at(const QString& catalog, const QStringList& args, const QByteArray& word) {
    QProcess child;
    child.start(QStringLiteral(QD_SAVE_CHILD), QStringList{catalog} + args);
    QByteArray said;
    while (!said.contains(word) && child.waitForReadyRead(30000)) {
        said += child.readAllStandardOutput();
    }
    child.kill();
    child.waitForFinished();
    return said.contains(word) && child.exitStatus() == QProcess::CrashExit;
}

TEST(CatalogFile, EverySavedRowIsInTheFileAloneWhenTheProcessIsKilledRightAfter) {
    TestHome home;
    // A real process saves (the Main tab's Save, then the Database button) and
    // is killed as soon as it says so, with the catalog still open.
    ASSERT_TRUE(
        kill_child_at(home.path("qd.mdb"), {"/p/saved.jpg", "/p/a.jpg", "/p/b.jpg"}, "saved\n"));

    EXPECT_EQ(
        read_lone_copy(home.app, home.path("qd.mdb"),
                       "select filename || '|' || ifnull(title, '<null>') || '|' || catalog "
                       "from filenames order by filename"),
        QStringList({"/p/a.jpg|<null>|Kept", "/p/b.jpg|<null>|Kept", "/p/saved.jpg|Kept|", "ok"}));

    // A catalog left in write-ahead mode by an earlier version, with a row
    // only in the log beside it: opening it where it can be written moves the
    // row into the file and goes back to a rollback journal.
    QTemporaryDir dir;
    const QString old = dir.path() + QStringLiteral("/qd.mdb");
    ASSERT_TRUE(make_catalog(old, "pragma journal_mode=wal"));
    {
        sqlite3* db = nullptr;
        ASSERT_EQ(sqlite3_open(QFile::encodeName(old).constData(), &db), SQLITE_OK);
        sqlite3_db_config(db, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
        sqlite3_exec(db, "insert into filenames (filename) values ('/p/logged.jpg')", nullptr,
                     nullptr, nullptr);
        sqlite3_close(db);
    }
    ASSERT_GT(QFileInfo(old + "-wal").size(), 0);
    ASSERT_TRUE(home.app.database.open(old));
    EXPECT_EQ(format_bytes(old), QByteArray("\x01\x01"));
    EXPECT_EQ(files_beside(old), QStringList());
    EXPECT_EQ(read_lone_copy(home.app, old, "select filename from filenames"),
              QStringList({"/p/logged.jpg", "ok"}));
}

TEST(CatalogFile, AProcessKilledInTheMiddleOfACommandLeavesASoundFile) {
    TestHome home;
    ASSERT_TRUE(kill_child_at(home.path("qd.mdb"), {"--many", "100000"}, "working\n"));
    // What was committed is there, what was not is rolled back, and the file
    // holds together.
    EXPECT_EQ(query_column(home.app, "pragma integrity_check"), QStringList({"ok"}));
    const int rows = query_column(home.app, "select count(*) from filenames").value(0).toInt();
    EXPECT_LT(rows, 100000);
    if (rows > 0) {
        // The rows kept are the first of the list, with no gap.
        EXPECT_EQ(
            query_column(home.app, "select max(filename) from filenames"),
            QStringList({QStringLiteral("/p/many/%1.jpg").arg(rows - 1, 6, 10, QLatin1Char('0'))}));
    }
}

TEST(CatalogFile, AReadOnlyCatalogOpensUntouchedAndEachWriteFailsOnItsOwn) {
    // Opening and reading a catalog writes nothing to it.
    {
        TestHome home;
        const QByteArray before = bytes_of(home.path("qd.mdb"));
        ASSERT_TRUE(is_correct_database(home.app, home.path("qd.mdb")));
        EXPECT_EQ(bytes_of(home.path("qd.mdb")), before);
    }

    const QString cli = QStringLiteral(QD_APP_DIR "/quilldex-cli");
    QString program = cli;
    QStringList as_reader;
    if (geteuid() == 0) {
        // Permissions do not hold for root: the program runs as nobody.
        const QString setpriv = QStandardPaths::findExecutable(QStringLiteral("setpriv"));
        if (setpriv.isEmpty()) {
            GTEST_SKIP() << "running as root without setpriv: no user for whom the catalog is "
                            "read-only";
        }
        as_reader = {"--reuid=nobody", "--regid=nogroup", "--clear-groups", cli};
        program = setpriv;
    }
    struct Case {
        const char* what;
        QFile::Permissions file;
        QFile::Permissions directory;
        const char* setup;
    };
    const auto r = QFileDevice::ReadOwner | QFileDevice::ReadGroup | QFileDevice::ReadOther;
    const auto x = QFileDevice::ExeOwner | QFileDevice::ExeGroup | QFileDevice::ExeOther;
    const auto w = QFileDevice::WriteOwner | QFileDevice::WriteGroup | QFileDevice::WriteOther;
    const Case cases[] = {
        {"a read-only file", r, r | w | x, ""},
        {"a writable file in a read-only directory", r | QFileDevice::WriteOwner, r | x, ""},
        {"a read-only file still in write-ahead mode", r, r | x, "pragma journal_mode=wal"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        QTemporaryDir home;
        const QString catalog = home.path() + QStringLiteral("/qd.mdb");
        const QByteArray sql =
            QByteArray("insert into filenames (filename) values ('/p/old.jpg'); ") + c.setup;
        ASSERT_TRUE(make_catalog(catalog, sql.constData()));
        const QByteArray before = bytes_of(catalog);
        ASSERT_TRUE(QFile(catalog).setPermissions(c.file));
        ASSERT_TRUE(QFile(home.path()).setPermissions(c.directory));

        if (!as_reader.isEmpty() &&
            QProcess::execute(program, as_reader.mid(0, 3) + QStringList{"test", "-x", cli, "-a",
                                                                         "-r", catalog}) != 0) {
            QFile(home.path()).setPermissions(r | w | x);
            GTEST_SKIP() << "nobody cannot reach the program or the test directory here";
        }
        QProcess p;
        p.start(program, as_reader + QStringList{"--home", home.path(), "catalog-add", "--catalog",
                                                 "Birds", "/p/old.jpg", "/p/new.jpg"});
        ASSERT_TRUE(p.waitForFinished(60000));
        const QString out = QString::fromLocal8Bit(p.readAllStandardOutput());
        const QString err = QString::fromLocal8Bit(p.readAllStandardError());
        QFile(home.path()).setPermissions(r | w | x);

        // The catalog opened as any other; the row there was read, and the
        // new one failed as a statement of its own.
        EXPECT_EQ(p.exitCode(), 0) << err.toStdString();
        EXPECT_EQ(out.split(u'\n').mid(1, 3),
                  QStringList({"       Total Files:  2", "       Total Files Added:  0",
                               "       Total Files Not Added:  1"}))
            << out.toStdString() << err.toStdString();
        EXPECT_EQ(bytes_of(catalog), before);
        EXPECT_EQ(files_beside(catalog), QStringList());
    }
}

TEST(CatalogFile, AStatementMeetingAnotherProgramsLockFailsWithinAQuarterSecond) {
    const QString sqlite = QStandardPaths::findExecutable(QStringLiteral("sqlite3"));
    if (sqlite.isEmpty()) {
        GTEST_SKIP() << "the sqlite3 program, which holds the lock, is not installed";
    }
    TestHome home;
    QProcess holder;
    holder.start(sqlite, {home.path("qd.mdb")});
    ASSERT_TRUE(holder.waitForStarted());
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

    // Each file's lookup and insert fail within the quarter second, as do the
    // catalog name's lookup and insert; each file counts once as not added.
    ItemList list;
    list.add_many({"/p/a.jpg", "/p/b.jpg", "/p/c.jpg"});
    t.restart();
    const UpdateStatistics locked = update_database_from_list(home.ctx, list, "Birds", true);
    EXPECT_LT(t.elapsed(), (2 + 2 * 3) * 250);
    EXPECT_TRUE(update_statistics_message(locked).contains("       Total Files Not Added:  3\n"))
        << update_statistics_message(locked).toStdString();

    holder.write("commit;\n.quit\n");
    holder.closeWriteChannel();
    ASSERT_TRUE(holder.waitForFinished(10000));
    const UpdateStatistics free = update_database_from_list(home.ctx, list, "Birds", true);
    EXPECT_EQ(free.files_added, 3);
    EXPECT_EQ(free.files_failed, 0);
}
