#include "catalog/database.h"

#include "catalog/catalog_file.h"
#include "core/catalog_location.h"

#include <QHash>
#include <QRegularExpression>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QUrl>
#include <QUrlQuery>

#include <sqlite3.h>

#include <atomic>
#include <cctype>
#include <cstring>
#include <string>
#include <string_view>

// ---------------------------------------------------------------- Sql

Sql& Sql::arg(const QString& value) {
    values_ << value;
    return *this;
}

QString Sql::pasted() const {
    QString out;
    out.reserve(text_.size() + 64);
    for (int i = 0; i < text_.size(); ++i) {
        const QChar c = text_.at(i);
        if (c == u'%' && i + 1 < text_.size() && text_.at(i + 1).isDigit()) {
            const int n = text_.at(i + 1).digitValue();
            if (n >= 1 && n <= values_.size()) {
                out += values_.at(n - 1);
                ++i;
                continue;
            }
        }
        out += c;
    }
    return out;
}

// ---------------------------------------------------------------- like

namespace {

bool set_matches(const QString& p, int& pi, QChar c) {
    // p[pi] is '['; on return pi is past the closing ']'.
    int i = pi + 1;
    bool negate = false;
    if (i < p.size() && p.at(i) == u'!') {
        negate = true;
        ++i;
    }
    bool hit = false;
    const QChar fc = c.toCaseFolded();
    bool first = true;
    while (i < p.size() && (p.at(i) != u']' || first)) {
        first = false;
        QChar lo = p.at(i);
        QChar hi = lo;
        if (i + 2 < p.size() && p.at(i + 1) == u'-' && p.at(i + 2) != u']') {
            hi = p.at(i + 2);
            i += 3;
        } else {
            i += 1;
        }
        const QChar flo = lo.toCaseFolded();
        const QChar fhi = hi.toCaseFolded();
        if (fc >= flo && fc <= fhi) {
            hit = true;
        }
    }
    pi = i < p.size() ? i + 1 : i;
    return hit != negate;
}

bool one_matches(const QString& p, int& pi, QChar c) {
    const QChar pc = p.at(pi);
    if (pc == u'?') {
        ++pi;
        return true;
    }
    if (pc == u'#') {
        ++pi;
        return c.isDigit();
    }
    if (pc == u'[' && p.indexOf(u']', pi + 1) >= 0) {
        return set_matches(p, pi, c);
    }
    ++pi;
    return pc.toCaseFolded() == c.toCaseFolded();
}

}  // namespace

bool jet_like(const QString& value, const QString& pattern) {
    int vi = 0;
    int pi = 0;
    int star_p = -1;
    int star_v = 0;
    while (vi < value.size()) {
        if (pi < pattern.size() && pattern.at(pi) == u'*') {
            star_p = ++pi;
            star_v = vi;
            continue;
        }
        if (pi < pattern.size()) {
            int next = pi;
            if (one_matches(pattern, next, value.at(vi))) {
                pi = next;
                ++vi;
                continue;
            }
        }
        if (star_p < 0) {
            return false;
        }
        pi = star_p;
        vi = ++star_v;
    }
    while (pi < pattern.size() && pattern.at(pi) == u'*') {
        ++pi;
    }
    return pi == pattern.size();
}

QString jet_regex(const QString& pattern) {
    static const QString special = QStringLiteral("\\^$.|?*+()[]{}");
    QString out = QStringLiteral("^(?:");
    for (int i = 0; i < pattern.size(); ++i) {
        const QChar c = pattern.at(i);
        if (c == u'*') {
            out += QStringLiteral(".*");
        } else if (c == u'?') {
            out += u'.';
        } else if (c == u'#') {
            out += QStringLiteral("[0-9]");
        } else if (c == u'[' && pattern.indexOf(u']', i + 1) >= 0) {
            // A set: "[!" negates, a "]" right after the opening is a member.
            int j = i + 1;
            out += u'[';
            if (j < pattern.size() && pattern.at(j) == u'!') {
                out += u'^';
                ++j;
            }
            bool first = true;
            while (j < pattern.size() && (pattern.at(j) != u']' || first)) {
                const QChar m = pattern.at(j);
                if (m == u'\\' || m == u'^' || m == u'[' || (m == u']' && first)) {
                    out += u'\\';
                }
                out += m;
                first = false;
                ++j;
            }
            out += u']';
            i = j;
        } else {
            if (special.contains(c)) {
                out += u'\\';
            }
            out += c;
        }
    }
    return out + QStringLiteral(")$");
}

namespace {

// A pattern of plain ASCII text and `*` only, as every search of the catalog
// is, matched on the engine's bytes without making text of them: a search
// reads every row of a large catalog, and this keeps it at the engine's own
// speed. Anything else goes through jet_like.
struct StarPattern {
    bool simple = false;
    std::vector<std::string> pieces;  // lower case, between the stars

    explicit StarPattern(const char* p) {
        simple = true;
        std::string piece;
        const std::size_t n = std::strlen(p);
        for (std::size_t i = 0; i < n; ++i) {
            const auto c = static_cast<unsigned char>(p[i]);
            if (c >= 0x80 || c == '?' || c == '#' || c == '[') {
                simple = false;
                return;
            }
            if (c == '*') {
                pieces.push_back(piece);
                piece.clear();
            } else {
                piece += static_cast<char>(std::tolower(c));
            }
        }
        // "abc" is one piece that must be the whole value; "*abc*" is "",
        // "abc", "": the first piece begins the value, the last ends it.
        pieces.push_back(piece);
    }

    // `v` is lower-cased ASCII.
    bool matches(std::string_view v) const {
        if (pieces.size() == 1) {
            return v == pieces.front();
        }
        const std::string& first = pieces.front();
        const std::string& last = pieces.back();
        if (v.size() < first.size() + last.size() || v.substr(0, first.size()) != first ||
            v.substr(v.size() - last.size()) != last) {
            return false;
        }
        std::string_view rest = v.substr(first.size(), v.size() - first.size() - last.size());
        for (std::size_t k = 1; k + 1 < pieces.size(); ++k) {
            const std::string& piece = pieces[k];
            if (piece.empty()) {
                continue;
            }
            const std::size_t at = rest.find(piece);
            if (at == std::string_view::npos) {
                return false;
            }
            rest.remove_prefix(at + piece.size());
        }
        return true;
    }
};

void like_function(sqlite3_context* ctx, int argc, sqlite3_value** argv) {
    if (argc < 2 || sqlite3_value_type(argv[0]) == SQLITE_NULL ||
        sqlite3_value_type(argv[1]) == SQLITE_NULL) {
        sqlite3_result_null(ctx);
        return;
    }
    const auto* p = reinterpret_cast<const char*>(sqlite3_value_text(argv[0]));
    const auto* v = reinterpret_cast<const char*>(sqlite3_value_text(argv[1]));
    const int v_size = sqlite3_value_bytes(argv[1]);
    // The pattern is the same for every row of a statement: read it once.
    auto* star = static_cast<StarPattern*>(sqlite3_get_auxdata(ctx, 0));
    if (!star) {
        star = new StarPattern(p);
        sqlite3_set_auxdata(ctx, 0, star, [](void* d) { delete static_cast<StarPattern*>(d); });
        star = static_cast<StarPattern*>(sqlite3_get_auxdata(ctx, 0));
    }
    if (star && star->simple) {
        thread_local std::string lower;
        lower.resize(static_cast<std::size_t>(v_size));
        bool ascii = true;
        for (int i = 0; i < v_size; ++i) {
            const auto c = static_cast<unsigned char>(v[i]);
            ascii = ascii && c < 0x80;
            lower[static_cast<std::size_t>(i)] =
                static_cast<char>(c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c);
        }
        // Other letters fold by the full rules of jet_like.
        if (ascii) {
            sqlite3_result_int(ctx, star->matches(lower) ? 1 : 0);
            return;
        }
    }
    const bool hit = jet_like(QString::fromUtf8(v, v_size), QString::fromUtf8(p));
    sqlite3_result_int(ctx, hit ? 1 : 0);
}

QString jet_text_for(const QSqlError& error) {
    const QString native = error.databaseText().isEmpty() ? error.text() : error.databaseText();
    if (native.contains(QStringLiteral("UNIQUE constraint failed")) ||
        native.contains(QStringLiteral("violates unique constraint"))) {
        return QStringLiteral(
            "The changes you requested to the table were not successful because they would "
            "create duplicate values in the index, primary key, or relationship.  Change the data "
            "in the field or fields that contain duplicate data, remove the index, or redefine "
            "the index to permit duplicate entries and try again.");
    }
    // The file engine says "CHECK constraint failed: x_length", the server
    // 'violates check constraint "x_length"'.
    static const QRegularExpression empty_rule(
        QStringLiteral("(?:CHECK constraint failed: |check constraint \")(\\w+)_not_empty"));
    static const QRegularExpression length_rule(
        QStringLiteral("(?:CHECK constraint failed: |check constraint \")(\\w+)_length"));
    QRegularExpressionMatch m = empty_rule.match(native);
    if (m.hasMatch()) {
        return QStringLiteral("Field '%1' cannot be a zero-length string.").arg(m.captured(1));
    }
    m = length_rule.match(native);
    if (m.hasMatch()) {
        return QStringLiteral(
                   "The field '%1' is too small to accept the amount of data you attempted to "
                   "add.  Try inserting or pasting less data.")
            .arg(m.captured(1));
    }
    if (native.contains(QStringLiteral("NOT NULL constraint failed"))) {
        return QStringLiteral("The field '%1' cannot contain a Null value.")
            .arg(native.section(u':', 1).trimmed());
    }
    static const QRegularExpression null_rule(
        QStringLiteral("null value in column \"(\\w+)\" of relation \"(\\w+)\""));
    m = null_rule.match(native);
    if (m.hasMatch()) {
        return QStringLiteral("The field '%1.%2' cannot contain a Null value.")
            .arg(m.captured(2), m.captured(1));
    }
    return native;
}

std::atomic<int> connection_counter{0};

}  // namespace

// ---------------------------------------------------------------- Connection

namespace catalog_detail {

struct Compiled {
    QString text;          // SQLite text, with "?" for each quoted literal
    QString table;         // the table of a select, empty for other statements
    QStringList literals;  // bound values, in order
};

struct Connection {
    QString name;
    QString path;
    bool server = false;  // a catalog on a database server, reached by URL
    sqlite3* handle = nullptr;
    CommitBatches batches;
    QHash<QString, QSqlQuery> queries;
    QHash<QString, QStringList> columns;
    QHash<QString, QStringList> result_names;  // by statement text
    QHash<QString, QString> row_statements;    // by table, change and fields set

    ~Connection() {
        queries.clear();
        {
            QSqlDatabase db = QSqlDatabase::database(name, false);
            db.close();
        }
        QSqlDatabase::removeDatabase(name);
    }

    QSqlDatabase db() const { return QSqlDatabase::database(name, false); }

    // On the server every statement commits on its own, so that one that
    // fails spoils no other; during a batch the commits do not wait for the
    // disk, and the end of the batch waits once for all of them (the server
    // writes its log in order, so the last commit's wait covers the rest).
    int server_batch_depth = 0;
    void server_batch(int step) {
        server_batch_depth += step;
        QSqlQuery q(db());
        if (step > 0 && server_batch_depth == 1) {
            q.exec(QStringLiteral("set synchronous_commit = off"));
        } else if (step < 0 && server_batch_depth == 0) {
            q.exec(QStringLiteral("set synchronous_commit = on"));
            server_wait_for_disk();
        }
    }
    void server_wait_for_disk() {
        // A transaction of its own that writes its commit, and waits.
        QSqlDatabase d = db();
        if (d.transaction()) {
            QSqlQuery q(d);
            q.exec(QStringLiteral("set local synchronous_commit = on"));
            q.exec(QStringLiteral("select txid_current()"));
            q.finish();
            d.commit();
        }
    }

    QSqlQuery& prepared(const QString& text) {
        auto it = queries.find(text);
        if (it != queries.end()) {
            return it.value();
        }
        QSqlQuery q(db());
        q.setForwardOnly(true);
        if (!q.prepare(text)) {
            throw DbError(jet_text_for(q.lastError()));
        }
        return queries.insert(text, q).value();
    }

    // Runs a compiled statement; throws DbError.
    QSqlQuery& run(const QString& text, const QVariantList& binds) {
        QSqlQuery& q = prepared(text);
        for (int i = 0; i < binds.size(); ++i) {
            q.bindValue(i, binds.at(i));
        }
        if (!q.exec()) {
            const QSqlError e = q.lastError();
            q.finish();
            throw DbError(jet_text_for(e));
        }
        return q;
    }

    // The names of a statement's columns, read once per statement: a row's
    // fields are looked up by name for every file of a long command.
    const QStringList& names_of(const QString& text, const QSqlQuery& q) {
        auto it = result_names.find(text);
        if (it == result_names.end()) {
            QStringList names;
            const QSqlRecord rec = q.record();
            for (int i = 0; i < rec.count(); ++i) {
                names << rec.fieldName(i);
            }
            it = result_names.insert(text, names);
        }
        return it.value();
    }

    const QStringList& table_columns(const QString& table) {
        auto it = columns.find(table.toLower());
        if (it != columns.end()) {
            return it.value();
        }
        QStringList cols;
        if (server) {
            const QSqlRecord rec = db().record(table);
            for (int i = 0; i < rec.count(); ++i) {
                cols << rec.fieldName(i);
            }
        }
        QSqlQuery q(db());
        if (!server && q.exec(QStringLiteral("pragma table_info(\"%1\")").arg(table))) {
            while (q.next()) {
                cols << q.value(1).toString();
            }
        }
        if (cols.isEmpty()) {
            // A catalog held by another program reads as no columns: asked
            // again next time.
            static const QStringList none;
            return none;
        }
        return columns.insert(table.toLower(), cols).value();
    }
};

}  // namespace catalog_detail

using catalog_detail::Compiled;
using catalog_detail::Connection;

namespace {

// A statement's text parsed once: the engine's text, with "?" for each quoted
// text, and for each quoted text the constant pieces and value slots that
// make it up. Values never change where the quoted texts stand, since one
// that holds an apostrophe is refused before it is pasted.
struct Parsed {
    QString text;          // the file engine's text
    QString table;         // the table of a select, whose rows can be changed
    QString server_text;   // the server's text
    QString server_table;  // empty where the server gives no row ids (groups, counts)
    struct Literal {
        QStringList pieces;  // constant text around the slots: one more than slots
        QList<int> slots;    // 0-based value numbers
        bool like = false;   // the pattern of a `like`
    };
    QList<Literal> literals;
};

const QRegularExpression& select_head() {
    static const QRegularExpression re(QStringLiteral("^\\s*select\\s+"),
                                       QRegularExpression::CaseInsensitiveOption);
    return re;
}

const QRegularExpression& from_table() {
    static const QRegularExpression re(QStringLiteral("\\bfrom\\s+\"?([A-Za-z_][A-Za-z0-9_]*)"),
                                       QRegularExpression::CaseInsensitiveOption);
    return re;
}

const char* kRowId = "qd_rowid_";

// The server's form of a statement: `like` ignores case and takes the
// dialect's patterns, which reach it as regular expressions (see
// jet_regex()); the column is compared by the database's own collation, since
// one that ignores case cannot match patterns. A group without an order is
// ordered by its columns.
QString server_dialect(QString text) {
    static const QRegularExpression column_like(
        QStringLiteral("((?:\"[^\"]+\"|[A-Za-z_][A-Za-z0-9_.]*)\\s+)(not\\s+)?like\\s*\\?"),
        QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression other_like(QStringLiteral("\\b(not\\s+)?like\\s*\\?"),
                                               QRegularExpression::CaseInsensitiveOption);
    QString out;
    qsizetype at = 0;
    auto it = column_like.globalMatch(text);
    while (it.hasNext()) {
        const QRegularExpressionMatch m = it.next();
        out += text.mid(at, m.capturedStart() - at);
        out += m.captured(1) + QStringLiteral("collate \"default\" ") +
               (m.captured(2).isEmpty() ? QStringLiteral("~* ?") : QStringLiteral("!~* ?"));
        at = m.capturedEnd();
    }
    out += text.mid(at);
    auto rest = other_like.globalMatch(out);
    QString done;
    at = 0;
    while (rest.hasNext()) {
        const QRegularExpressionMatch m = rest.next();
        done += out.mid(at, m.capturedStart() - at);
        done += m.captured(1).isEmpty() ? QStringLiteral("~* ?") : QStringLiteral("!~* ?");
        at = m.capturedEnd();
    }
    done += out.mid(at);
    // Groups come out in order, as the file engine gives them.
    static const QRegularExpression last_group(
        QStringLiteral("\\bgroup\\s+by\\s+((?:(?!\\b(?:order|having|limit)\\b).)+)$"),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch g = last_group.match(done);
    if (g.hasMatch()) {
        done += QStringLiteral(" order by ") + g.captured(1).trimmed();
    }
    return done;
}

// Splits a literal's text at its "%N" slots.
Parsed::Literal split_slots(const QString& content) {
    Parsed::Literal lit;
    QString piece;
    for (int i = 0; i < content.size(); ++i) {
        const QChar c = content.at(i);
        if (c == u'%' && i + 1 < content.size() && content.at(i + 1).isDigit() &&
            content.at(i + 1) != u'0') {
            lit.pieces << piece;
            piece.clear();
            lit.slots << content.at(i + 1).digitValue() - 1;
            ++i;
            continue;
        }
        piece += c;
    }
    lit.pieces << piece;
    return lit;
}

std::shared_ptr<const Parsed> parse(const QString& statement) {
    auto out = std::make_shared<Parsed>();
    out->text.reserve(statement.size());
    int i = 0;
    while (i < statement.size()) {
        const QChar c = statement.at(i);
        if (c != u'\'') {
            if (c == u'%' && i + 1 < statement.size() && statement.at(i + 1).isDigit()) {
                // A value outside apostrophes would be run as SQL.
                throw DbError(QStringLiteral("A value must stand between apostrophes: ") +
                              statement);
            }
            out->text += c;
            ++i;
            continue;
        }
        QString literal;
        int j = i + 1;
        bool closed = false;
        while (j < statement.size()) {
            if (statement.at(j) == u'\'') {
                if (j + 1 < statement.size() && statement.at(j + 1) == u'\'') {
                    literal += u'\'';
                    j += 2;
                    continue;
                }
                closed = true;
                break;
            }
            literal += statement.at(j);
            ++j;
        }
        if (!closed) {
            throw DbError(QStringLiteral("Syntax error in string in query expression '") +
                          statement + QStringLiteral("'."));
        }
        static const QRegularExpression like_before(QStringLiteral("\\blike\\s*$"),
                                                    QRegularExpression::CaseInsensitiveOption);
        Parsed::Literal lit = split_slots(literal);
        lit.like = like_before.match(out->text).hasMatch();
        out->text += u'?';
        out->literals << lit;
        i = j + 1;
    }
    static const QRegularExpression delete_star(QStringLiteral("^\\s*delete\\s+\\*\\s+from\\b"),
                                                QRegularExpression::CaseInsensitiveOption);
    out->text.replace(delete_star, QStringLiteral("delete from"));
    out->server_text = server_dialect(out->text);
    const QRegularExpressionMatch head = select_head().match(out->text);
    const QRegularExpressionMatch from = from_table().match(out->text);
    if (head.hasMatch() && from.hasMatch()) {
        out->table = from.captured(1);
        out->text.insert(head.capturedEnd(),
                         QStringLiteral("_rowid_ as %1, ").arg(QLatin1String(kRowId)));
        // The server names a row by its place in the table, which a group or
        // a count has none of.
        static const QRegularExpression no_rows(
            QStringLiteral("\\b(group\\s+by|distinct|union|join|count|sum|min|max|avg)\\b"),
            QRegularExpression::CaseInsensitiveOption);
        if (!no_rows.match(out->server_text).hasMatch()) {
            out->server_table = out->table;
            out->server_text.insert(head.capturedEnd(),
                                    QStringLiteral("ctid as %1, ").arg(QLatin1String(kRowId)));
        }
    }
    return out;
}

// The parsed form of a statement's text, parsed once per text.
std::shared_ptr<const Parsed> parsed(const QString& statement) {
    thread_local QHash<QString, std::shared_ptr<const Parsed>> cache;
    auto it = cache.constFind(statement);
    if (it != cache.constEnd()) {
        return it.value();
    }
    auto p = parse(statement);
    if (cache.size() > 512) {
        cache.clear();
    }
    cache.insert(statement, p);
    return p;
}

// Refuses a value that holds an apostrophe, as the pasted statement would
// fail, and gives every quoted text as a bound value.
Compiled compile(const Sql& sql, bool server) {
    if (sql.text().trimmed().isEmpty()) {
        // A command that built no statement fails with the engine's words.
        throw DbError(
            QStringLiteral("Invalid SQL statement; expected 'DELETE', 'INSERT', "
                           "'PROCEDURE', 'SELECT', or 'UPDATE'."));
    }
    for (const QString& v : sql.values()) {
        if (v.contains(u'\'')) {
            throw DbError(QStringLiteral("Syntax error (missing operator) in query expression '") +
                          sql.pasted() + QStringLiteral("'."));
        }
    }
    const std::shared_ptr<const Parsed> p = parsed(sql.text());
    Compiled out;
    out.text = server ? p->server_text : p->text;
    out.table = server ? p->server_table : p->table;
    out.literals.reserve(p->literals.size());
    for (const Parsed::Literal& lit : p->literals) {
        QString value = lit.pieces.front();
        for (int k = 0; k < lit.slots.size(); ++k) {
            value += sql.values().value(lit.slots.at(k));
            value += lit.pieces.at(k + 1);
        }
        out.literals << (server && lit.like ? jet_regex(value) : value);
    }
    return out;
}

QVariantList binds_of(const Compiled& c) {
    QVariantList out;
    out.reserve(c.literals.size());
    for (const QString& l : c.literals) {
        // '' is empty text, never Null: "title = ''" finds the empty titles.
        out << (l.isNull() ? QStringLiteral("") : l);
    }
    return out;
}

}  // namespace

// ---------------------------------------------------------------- Database

Database::Database() = default;
Database::~Database() = default;

QString Database::path() const {
    return connection_ ? connection_->path : QString();
}

bool Database::is_server() const {
    return connection_ && connection_->server;
}

QSqlDatabase Database::connection() const {
    return connection_ ? connection_->db() : QSqlDatabase();
}

bool Database::open_server(const QString& location) {
    const QUrl url(location.trimmed());
    auto c = std::make_shared<Connection>();
    c->name = QStringLiteral("catalog-%1").arg(++connection_counter);
    c->path = location_without_password(location.trimmed());
    c->server = true;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), c->name);
        db.setHostName(url.host());
        if (url.port() > 0) {
            db.setPort(url.port());
        }
        db.setDatabaseName(url.path().mid(1));
        db.setUserName(url.userName());
        // Without a password in the URL the driver reads the user's
        // password file itself.
        db.setPassword(url.password());
        // A server that does not answer gives up soon, so that the program
        // goes on; options of the URL (such as sslmode) pass to the driver.
        QStringList options{QStringLiteral("connect_timeout=%1").arg(kServerConnectSeconds)};
        for (const auto& item : QUrlQuery(url).queryItems(QUrl::FullyDecoded)) {
            if (item.first != QLatin1String("connect_timeout")) {
                options << item.first + u'=' + item.second;
            }
        }
        db.setConnectOptions(options.join(u';'));
        if (!db.open()) {
            open_error_ = db.lastError().text().trimmed();
            return false;
        }
        QSqlQuery settings(db);
        // A row another program holds is met with a short wait, as a locked
        // file is; the server commits each statement and waits for its disk.
        settings.exec(QStringLiteral("set lock_timeout = %1").arg(kCatalogLockWaitMs));
        settings.exec(QStringLiteral("set synchronous_commit = on"));
    }
    connection_ = std::move(c);
    return true;
}

bool Database::open(const QString& path) {
    open_error_.clear();
    if (is_server_catalog(path.trimmed())) {
        return open_server(path);
    }
    const CatalogFile file = inspect_catalog_file(path);
    auto c = std::make_shared<Connection>();
    c->name = QStringLiteral("catalog-%1").arg(++connection_counter);
    c->path = path;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), c->name);
        db.setDatabaseName(path);
        if (!file.writable) {
            // Nothing of the file changes, not even its header.
            QString options = QStringLiteral("QSQLITE_OPEN_READONLY");
            if (file.write_ahead && !file.log_beside) {
                db.setDatabaseName(unchanging_catalog_uri(path));
                options += QStringLiteral(";QSQLITE_OPEN_URI");
            }
            db.setConnectOptions(options);
        }
        if (!db.open()) {
            open_error_ = db.lastError().text();
            return false;  // the Connection's destructor removes it
        }
        const QVariant handle = db.driver()->handle();
        if (handle.isValid() && qstrcmp(handle.typeName(), "sqlite3*") == 0) {
            c->handle = *static_cast<sqlite3* const*>(handle.constData());
        }
        if (c->handle) {
            sqlite3_create_function_v2(c->handle, "like", 2, SQLITE_UTF8 | SQLITE_DETERMINISTIC,
                                       nullptr, like_function, nullptr, nullptr, nullptr);
            // A file of another format fails here and again, with its own
            // text, at its first statement.
            set_up_catalog_connection(c->handle, file.writable && file.write_ahead);
            c->batches.set_handle(c->handle);
        }
    }
    connection_ = std::move(c);
    return true;
}

void Database::commit_batch() {
    if (connection_ && connection_->server) {
        connection_->server_wait_for_disk();
    } else if (connection_) {
        connection_->batches.commit_now();
    }
}

WriteBatch::WriteBatch(Database& db) : connection_(db.connection_) {
    if (connection_ && connection_->server) {
        connection_->server_batch(+1);
    } else if (connection_) {
        connection_->batches.begin();
    }
}

WriteBatch::~WriteBatch() {
    if (connection_ && connection_->server) {
        connection_->server_batch(-1);
    } else if (connection_) {
        connection_->batches.end();
    }
}

void WriteBatch::tick() {
    if (connection_) {
        connection_->batches.tick();
    }
}

void Database::execute(const Sql& sql) {
    if (!connection_) {
        throw DbError(QStringLiteral("Object variable or With block variable not set"));
    }
    const Compiled c = compile(sql, connection_->server);
    QSqlQuery& q = connection_->run(c.text, binds_of(c));
    q.finish();
}

// ---------------------------------------------------------------- Recordset

struct Recordset::State {
    std::shared_ptr<Connection> connection;
    QString table;
    QStringList names;  // column names of the rows, without the row id
    struct Row {
        QVariant rowid;  // the file's row number, or the server's row place
        bool deleted = false;
        std::vector<QVariant> values;
    };
    std::vector<Row> rows;
    int current = 0;  // index into rows; rows.size() at the end
    bool before_first = false;
    int reached = 0;
    enum class Edit { None, Adding, Editing } mode = Edit::None;
    std::vector<QVariant> pending;
    std::vector<bool> touched;
};

Recordset::Recordset() = default;
Recordset::~Recordset() = default;

void Recordset::open(Database& db, const Sql& sql) {
    if (!db.connection_) {
        throw DbError(QStringLiteral("Object variable or With block variable not set"));
    }
    const Compiled c = compile(sql, db.connection_->server);
    auto s = std::make_unique<State>();
    s->connection = db.connection_;
    s->table = c.table;
    QSqlQuery& q = s->connection->run(c.text, binds_of(c));
    const QStringList& names = s->connection->names_of(c.text, q);
    const int first = s->table.isEmpty() ? 0 : 1;
    const int count = static_cast<int>(names.size());
    s->names = first == 0 ? names : names.mid(1);
    while (q.next()) {
        State::Row row;
        if (first == 1) {
            row.rowid = q.value(0);
        }
        row.values.reserve(count - first);
        for (int i = first; i < count; ++i) {
            row.values.push_back(q.value(i));
        }
        s->rows.push_back(std::move(row));
    }
    q.finish();
    s->current = 0;
    s->reached = s->rows.empty() ? 0 : 1;
    state_ = std::move(s);
    open_ = true;
}

void Recordset::close() {
    open_ = false;
    state_.reset();
}

namespace {
DbError not_open() {
    return DbError(QStringLiteral("Operation is not allowed when the object is closed."));
}
DbError no_current() {
    return DbError(QStringLiteral("No current record."));
}
// Another program changed or deleted the row since it was read: the change
// is refused rather than lost.
DbError write_conflict() {
    return DbError(QStringLiteral(
        "The Microsoft Jet database engine stopped the process because you and another user "
        "are attempting to change the same data at the same time."));
}
QString row_key(bool server) {
    return server ? QStringLiteral("ctid") : QStringLiteral("_rowid_");
}
}  // namespace

int Recordset::record_count() const {
    if (!open_) {
        throw not_open();
    }
    return state_->reached;
}

bool Recordset::eof() const {
    if (!open_) {
        throw not_open();
    }
    return state_->current >= static_cast<int>(state_->rows.size());
}

bool Recordset::bof() const {
    if (!open_) {
        throw not_open();
    }
    return state_->rows.empty() || state_->before_first;
}

void Recordset::move_first() {
    if (!open_) {
        throw not_open();
    }
    State& s = *state_;
    s.mode = State::Edit::None;
    s.before_first = false;
    s.current = 0;
    while (s.current < static_cast<int>(s.rows.size()) && s.rows[s.current].deleted) {
        ++s.current;
    }
    if (s.rows.empty()) {
        throw no_current();
    }
    s.reached = std::max(s.reached, std::min(s.current + 1, static_cast<int>(s.rows.size())));
}

void Recordset::move_next() {
    if (!open_) {
        throw not_open();
    }
    State& s = *state_;
    if (s.current >= static_cast<int>(s.rows.size())) {
        throw no_current();
    }
    s.mode = State::Edit::None;
    s.before_first = false;
    ++s.current;
    while (s.current < static_cast<int>(s.rows.size()) && s.rows[s.current].deleted) {
        ++s.current;
    }
    s.reached = std::max(s.reached, std::min(s.current + 1, static_cast<int>(s.rows.size())));
}

void Recordset::move_last() {
    if (!open_) {
        throw not_open();
    }
    State& s = *state_;
    if (s.rows.empty()) {
        throw no_current();
    }
    s.mode = State::Edit::None;
    s.current = static_cast<int>(s.rows.size()) - 1;
    while (s.current > 0 && s.rows[s.current].deleted) {
        --s.current;
    }
    s.reached = static_cast<int>(s.rows.size());
}

int Recordset::column(const QString& name) const {
    const int i = state_->names.indexOf(name, 0);
    if (i >= 0) {
        return static_cast<int>(i);
    }
    for (int k = 0; k < state_->names.size(); ++k) {
        if (state_->names.at(k).compare(name, Qt::CaseInsensitive) == 0) {
            return k;
        }
    }
    throw DbError(QStringLiteral("Item not found in this collection."));
}

const std::vector<QVariant>& Recordset::current_row() const {
    if (!open_) {
        throw not_open();
    }
    const State& s = *state_;
    if (s.mode != State::Edit::None) {
        return s.pending;
    }
    if (s.current >= static_cast<int>(s.rows.size())) {
        throw no_current();
    }
    if (s.rows[s.current].deleted) {
        throw DbError(QStringLiteral("Record is deleted."));
    }
    return s.rows[s.current].values;
}

QVariant Recordset::field(const QString& name) const {
    const int c = column(name);
    const std::vector<QVariant>& row = current_row();
    return row.at(c);
}

bool Recordset::is_null(const QString& name) const {
    const QVariant v = field(name);
    return !v.isValid() || v.isNull();
}

QString Recordset::text(const QString& name) const {
    const QVariant v = field(name);
    if (!v.isValid() || v.isNull()) {
        throw RunError(QStringLiteral("Invalid use of Null"));
    }
    return v.toString();
}

QString Recordset::text_or_empty(const QString& name) const {
    const QVariant v = field(name);
    return (!v.isValid() || v.isNull()) ? QStringLiteral("") : v.toString();
}

void Recordset::add_new() {
    if (!open_) {
        throw not_open();
    }
    State& s = *state_;
    if (s.table.isEmpty()) {
        throw DbError(QStringLiteral("Cannot update.  Database or object is read-only."));
    }
    if (s.names.isEmpty()) {
        s.names = s.connection->table_columns(s.table);
    }
    s.mode = State::Edit::Adding;
    s.pending.assign(s.names.size(), QVariant());
    s.touched.assign(s.names.size(), false);
}

void Recordset::edit() {
    const std::vector<QVariant> row = current_row();
    State& s = *state_;
    if (s.table.isEmpty()) {
        throw DbError(QStringLiteral("Cannot update.  Database or object is read-only."));
    }
    s.mode = State::Edit::Editing;
    s.pending = row;
    s.touched.assign(s.names.size(), false);
}

void Recordset::set_field(const QString& name, const QVariant& value) {
    if (!open_) {
        throw not_open();
    }
    const int c = column(name);
    State& s = *state_;
    if (s.mode == State::Edit::None) {
        throw DbError(QStringLiteral("Update or CancelUpdate without AddNew or Edit."));
    }
    s.pending[c] = value;
    s.touched[c] = true;
}

void Recordset::update() {
    if (!open_) {
        throw not_open();
    }
    State& s = *state_;
    if (s.mode == State::Edit::None) {
        throw DbError(QStringLiteral("Update or CancelUpdate without AddNew or Edit."));
    }
    const State::Edit mode = s.mode;
    s.mode = State::Edit::None;
    // The statement of this change, built once for each set of fields.
    QString key = s.table;
    key += mode == State::Edit::Adding ? u'+' : u'=';
    QVariantList binds;
    for (int i = 0; i < s.names.size(); ++i) {
        key += s.touched[i] ? u'1' : u'0';
        if (s.touched[i]) {
            binds << s.pending[i];
        }
    }
    if (mode == State::Edit::Editing && binds.isEmpty()) {
        return;
    }
    QString& text = s.connection->row_statements[key];
    if (text.isEmpty()) {
        QStringList cols;
        for (int i = 0; i < s.names.size(); ++i) {
            if (s.touched[i]) {
                cols << QStringLiteral("\"%1\"").arg(s.names.at(i));
            }
        }
        const bool server = s.connection->server;
        if (mode == State::Edit::Editing) {
            text = QStringLiteral("update \"%1\" set %2=? where %3=?")
                       .arg(s.table, cols.join(QStringLiteral("=?,")), row_key(server));
        } else if (cols.isEmpty()) {
            text = QStringLiteral("insert into \"%1\" default values").arg(s.table);
        } else {
            text =
                QStringLiteral("insert into \"%1\" (%2) values (?%3)")
                    .arg(s.table, cols.join(u','), QStringLiteral(",?").repeated(cols.size() - 1));
        }
        if (server) {
            // A changed row moves on the server: its new place comes back.
            text += QStringLiteral(" returning ctid");
        }
    }
    if (mode == State::Edit::Adding) {
        QSqlQuery& q = s.connection->run(text, binds);
        State::Row row;
        row.rowid = s.connection->server ? (q.next() ? q.value(0) : QVariant()) : q.lastInsertId();
        q.finish();
        row.values = s.pending;
        s.rows.push_back(std::move(row));
        return;
    }
    binds << s.rows[s.current].rowid;
    QSqlQuery& q = s.connection->run(text, binds);
    if (s.connection->server) {
        if (!q.next()) {
            q.finish();
            throw write_conflict();
        }
        s.rows[s.current].rowid = q.value(0);
    }
    q.finish();
    s.rows[s.current].values = s.pending;
}

void Recordset::delete_row() {
    current_row();
    State& s = *state_;
    if (s.table.isEmpty()) {
        throw DbError(QStringLiteral("Cannot update.  Database or object is read-only."));
    }
    s.connection
        ->run(QStringLiteral("delete from \"%1\" where %2=?")
                  .arg(s.table, row_key(s.connection->server)),
              {s.rows[s.current].rowid})
        .finish();
    s.rows[s.current].deleted = true;
}
