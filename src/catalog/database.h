#pragma once

#include "core/run_error.h"

#include <QSqlDatabase>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <memory>
#include <vector>

// A failure of a catalog statement: the text is the one the user reads.
class DbError : public RunError {
public:
    using RunError::RunError;
};

// A statement in the catalog's dialect, with its values pasted between
// apostrophes: Sql("select * from filenames where filename='%1'").arg(path).
//
// The dialect is that of the delivered catalog's original engine: `*` and `?`
// are the wildcards of `like`, which ignores case; "delete * from" deletes;
// "count(...) as fcount" counts. A value that holds an apostrophe makes the
// statement fail, as it would once pasted; otherwise every quoted text goes to
// the engine as a bound value, so nothing in a value is ever run as SQL.
class Sql {
public:
    explicit Sql(QString text) : text_(std::move(text)) {}
    Sql& arg(const QString& value);

    // The statement as pasted, for messages.
    QString pasted() const;
    const QString& text() const { return text_; }
    const QStringList& values() const { return values_; }

private:
    QString text_;
    QStringList values_;
};

namespace catalog_detail {
struct Connection;
}

// The one open catalog: a file, or a catalog on a database server named by a
// connection URL, "postgresql://user@host:port/dbname", which takes the same
// statements in the same dialect and behaves the same. Opening another
// replaces it; recordsets opened on the former one stay usable.
class Database {
public:
    Database();
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    // Opens `path` (which must exist) without writing to it. Returns false,
    // leaving the former database in place, when the file cannot be opened at
    // all. A file of another format opens and fails at its first statement; a
    // catalog the program may not write opens for reading, and each write to
    // it fails as a statement.
    //
    // A server URL's password comes from the URL, else from the user's
    // password file; a server that does not answer within 5 s fails the open,
    // with the driver's text in open_error().
    bool open(const QString& path);
    bool is_open() const { return static_cast<bool>(connection_); }
    // The file path, or the URL without its password.
    QString path() const;
    bool is_server() const;
    // Why the last open() failed, in the driver's words.
    QString open_error() const { return open_error_; }
    // The connection itself, for tools that work on whole tables below the
    // catalog's dialect (copying a catalog, making its tables).
    QSqlDatabase connection() const;

    // Runs an action statement. Throws DbError.
    void execute(const Sql& sql);

    // Commits the rows of a batch that is still open, for a process about to
    // end in the middle of a command.
    void commit_batch();

private:
    friend class Recordset;
    friend class WriteBatch;
    bool open_server(const QString& url);
    std::shared_ptr<catalog_detail::Connection> connection_;
    QString open_error_;
};

// Held by a command that writes many rows, for its whole run: its rows reach
// the file together, every fifth of a second and when the batch ends, rather
// than each waiting for the disk on its own. Every row is in the file when the
// batch ends; a process that dies before that leaves the file as it was at
// the last commit, never half written. Call tick() once per item.
class WriteBatch {
public:
    explicit WriteBatch(Database& db);
    ~WriteBatch();
    WriteBatch(const WriteBatch&) = delete;
    WriteBatch& operator=(const WriteBatch&) = delete;
    void tick();

private:
    std::shared_ptr<catalog_detail::Connection> connection_;
};

// The rows of one statement, with a current row, as a dynaset gives them:
// `record_count()` is the number of rows reached so far, so right after
// opening it is 0 for none and 1 for "at least one"; after `move_last()` it is
// exact. Rows can be added, edited and deleted; each `update()` is final.
class Recordset {
public:
    Recordset();
    ~Recordset();
    Recordset(const Recordset&) = delete;
    Recordset& operator=(const Recordset&) = delete;

    // Opens `sql` on `db`. Throws DbError; a failed open leaves the recordset
    // as it was, so a caller that goes on reads the former rows.
    void open(Database& db, const Sql& sql);
    void close();
    bool is_open() const { return open_; }

    int record_count() const;
    bool eof() const;
    bool bof() const;
    void move_first();
    void move_next();
    void move_last();

    // The value of a field of the current row; a null QVariant for Null.
    QVariant field(const QString& name) const;
    bool is_null(const QString& name) const;
    // The field as text; Null is an error ("Invalid use of Null").
    QString text(const QString& name) const;
    // The field as text, Null giving "".
    QString text_or_empty(const QString& name) const;

    void add_new();
    void edit();
    // Sets a field of the row being added or edited.
    void set_field(const QString& name, const QVariant& value);
    void update();
    void delete_row();

private:
    struct State;
    const std::vector<QVariant>& current_row() const;
    int column(const QString& name) const;
    std::unique_ptr<State> state_;
    bool open_ = false;
};

// Jet's `like`: `*` any run, `?` one character, `#` one digit, `[abc]` and
// `[!abc]` sets; case is ignored.
bool jet_like(const QString& value, const QString& pattern);
// The same pattern as an anchored regular expression, for the server.
QString jet_regex(const QString& pattern);
