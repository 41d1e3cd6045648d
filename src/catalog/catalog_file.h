#pragma once

#include <QElapsedTimer>
#include <QString>

struct sqlite3;

// How the catalog file is opened and how rows reach it.
//
// Every row a command saved is in the catalog file itself when the command
// returns: the file keeps a rollback journal (never a write-ahead log, whose
// rows would live in a second file that a copy of the catalog leaves behind),
// and each commit waits for the disk. A catalog that the program may not
// write is opened for reading, untouched; each write to it then fails on its
// own, as any failing statement does.

// What opening a catalog may do to its file, found by looking only.
struct CatalogFile {
    bool write_ahead = false;  // the file still keeps its rows in a write-ahead log
    bool writable = false;     // the file and its directory can both be written
    bool log_beside = false;   // a non-empty write-ahead log lies beside the file
};
CatalogFile inspect_catalog_file(const QString& path);

// The name to give the engine for a catalog that cannot be written and keeps
// a write-ahead log that is not there: opened as a file that nothing changes,
// since the engine cannot make the log's companion files beside it.
QString unchanging_catalog_uri(const QString& path);

// Settings of the connection, none of which writes the file: commits that wait
// for the disk, a lock held by another program met with a short wait, and room
// for a batch's rows in memory. When `convert` is set (a writable catalog still
// in write-ahead mode), its log is copied into the file and the file goes back
// to a rollback journal.
void set_up_catalog_connection(sqlite3* handle, bool convert);

// How long a statement waits for a lock held by another program before it
// fails: short, so that a command over many files never stalls the window.
constexpr int kCatalogLockWaitMs = 200;

// How long opening a catalog on a server waits for it to answer.
constexpr int kServerConnectSeconds = 5;

// The commits of one connection while a command writes many rows. Each commit
// waits for the disk twice, so a command of 100,000 rows commits every fifth
// of a second rather than after every row, and once more at its end; if the
// process dies in between, the journal takes the file back to the last commit
// and it is never left half written. Batches nest: only the outermost ends the
// transaction. When another program holds the catalog, no transaction is
// started and each statement commits (or fails) on its own.
class CommitBatches {
public:
    void set_handle(sqlite3* handle) { handle_ = handle; }
    void begin();
    void tick();
    void end();
    // Commits the rows written so far in a batch, for a process about to end.
    void commit_now();

private:
    bool try_begin();
    bool try_commit();
    bool ours() const;

    sqlite3* handle_ = nullptr;
    int depth_ = 0;
    bool started_ = false;  // the open transaction is the batch's own
    QElapsedTimer since_;
};
