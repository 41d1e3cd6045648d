#include "catalog/database.h"
#include "catalog/catalog_check.h"

#include "support/pg_server.h"
#include "support/qt_print.h"
#include "support/test_home.h"

#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

namespace {

// Adds a row through a recordset, as the commands do.
void add_file(AppState& app, const QString& path, const QVariant& title = QVariant()) {
    Recordset rs;
    rs.open(app.database, Sql("select * from filenames where filename='trash'"));
    rs.add_new();
    rs.set_field("filename", path);
    rs.set_field("title", title);
    rs.update();
}

QStringList found(AppState& app, const Sql& sql, const QString& field = "filename") {
    Recordset rs;
    rs.open(app.database, sql);
    QStringList out;
    if (rs.record_count() > 0) {
        rs.move_first();
        while (!rs.eof()) {
            out << rs.text_or_empty(field);
            rs.move_next();
        }
    }
    return out;
}

}  // namespace

TEST(Catalog, JetLikeTakesTheDialectsPatterns) {
    EXPECT_TRUE(jet_like("C:/Pics/Holiday.JPG", "*holiday*"));
    EXPECT_TRUE(jet_like("abc", "a?c"));
    EXPECT_FALSE(jet_like("ac", "a?c"));
    EXPECT_TRUE(jet_like("img7.png", "img#.*"));
    EXPECT_FALSE(jet_like("imgx.png", "img#.*"));
    EXPECT_TRUE(jet_like("b.jpg", "[a-c]*"));
    EXPECT_FALSE(jet_like("b.jpg", "[!a-c]*"));
    EXPECT_TRUE(jet_like("50%_off", "50%_off"));  // % and _ are plain characters here
    EXPECT_FALSE(jet_like("50x off", "50%_off"));
    EXPECT_TRUE(jet_like("ÉTÉ.jpg", "*été*"));
    EXPECT_TRUE(jet_like("", "*"));
    EXPECT_FALSE(jet_like("x", ""));
    // A "]" first in a set is a member, in a set left open to the end too.
    EXPECT_TRUE(jet_like("x]", "*[]"));
    EXPECT_EQ(jet_regex("[]"), "^(?:[\\]])$");
}

class CatalogEngine : public EngineTest {};
QD_ON_BOTH_ENGINES(CatalogEngine);

TEST_P(CatalogEngine, LikeUsesTheDialectsWildcardsAndIgnoresCase) {
    TestHome& home = *home_;
    add_file(home.app, "/p/Summer Beach.jpg", "a.b|c");
    add_file(home.app, "/p/winter.png");
    add_file(home.app, "/p/50%_sale.gif");
    add_file(home.app, "/p/ÉTÉ [7].jpg");
    const struct {
        const char* pattern;
        QStringList hits;
    } cases[] = {
        {"*BEACH*", {"/p/Summer Beach.jpg"}},
        {"*%_*", {"/p/50%_sale.gif"}},
        {"*été*", {"/p/ÉTÉ [7].jpg"}},
        {"/p/w?nter.*", {"/p/winter.png"}},
        {"*[[]#]*", {"/p/ÉTÉ [7].jpg"}},
        {"/p/[!a-s]*", {"/p/winter.png", "/p/50%_sale.gif", "/p/ÉTÉ [7].jpg"}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(
            found(home.app, Sql("select * from filenames where filename like '%1'").arg(c.pattern)),
            c.hits)
            << c.pattern;
    }
    EXPECT_EQ(found(home.app, Sql("select * from filenames where title like 'A.B|C'"), "title"),
              QStringList({"a.b|c"}));
    home.app.database.execute(
        Sql("delete * from filenames where filename = '%1'").arg("/p/winter.png"));
    EXPECT_EQ(query_column(home.app, "select count(*) from filenames"), QStringList({"3"}));
}

TEST_P(CatalogEngine, RecordsetCountsLikeADynasetAndWritesRows) {
    TestHome& home = *home_;
    for (int i = 0; i < 5; ++i) {
        add_file(home.app, QString("/p/%1.jpg").arg(i));
    }
    Recordset rs;
    rs.open(home.app.database, Sql("select * from filenames"));
    EXPECT_EQ(rs.record_count(), 1);  // "at least one" until the last row is reached
    EXPECT_FALSE(rs.bof());
    rs.move_last();
    EXPECT_EQ(rs.record_count(), 5);
    rs.move_first();
    EXPECT_EQ(rs.text("filename"), "/p/0.jpg");
    EXPECT_THROW(rs.text("title"), RunError);  // Null is not text
    EXPECT_EQ(rs.text_or_empty("title"), "");
    EXPECT_THROW(rs.field("no such field"), DbError);
    rs.edit();
    rs.set_field("title", "O'Neil's");  // field values are data, apostrophes included
    rs.update();
    rs.move_next();
    rs.delete_row();
    rs.move_next();
    EXPECT_EQ(rs.text("filename"), "/p/2.jpg");
    // A failed open leaves the recordset on its former rows.
    EXPECT_THROW(rs.open(home.app.database, Sql("select * from filenames where filename='%1'")
                                                .arg("x'; delete from filenames; --")),
                 DbError);
    EXPECT_EQ(rs.text("filename"), "/p/2.jpg");
    EXPECT_EQ(query_column(home.app, "select coalesce(title, '-') from filenames order by 1"),
              QStringList({"-", "-", "-", "O'Neil's"}));

    // The delivered table refuses an empty name in its own words.
    try {
        add_file(home.app, "");
        FAIL() << "an empty file name was accepted";
    } catch (const DbError& e) {
        EXPECT_EQ(e.text(), "Field 'filename' cannot be a zero-length string.");
    }
    Recordset empty;
    empty.open(home.app.database, Sql("select * from filenames where filename='trash'"));
    EXPECT_EQ(empty.record_count(), 0);
    EXPECT_TRUE(empty.eof());
    EXPECT_THROW(empty.move_first(), DbError);
}

TEST(Catalog, SelectDatabaseRefusesNamesWithoutMdbAndKeepsTheRefusedFileOpen) {
    TestHome home;
    home.dialogs.answer_file(home.path("notes.txt"));
    EXPECT_EQ(select_database(home.ctx), DatabaseChoice::NotChosen);
    EXPECT_EQ(home.dialogs.messages().last(), "The database must be an Access Database (*.mdb).");
    EXPECT_EQ(home.app.database_path, home.path("qd.mdb"));

    // A name that merely holds "mdb" is judged by the check; the refused
    // file stays the open database, and the key keeps its former value.
    const QString odd = home.path("my.mdb.bak");
    ASSERT_TRUE(QFile::copy(home.path("qd.mdb"), odd));
    {
        Database other;
        ASSERT_TRUE(other.open(odd));
        other.execute(Sql("delete * from version"));
    }
    home.app.settings.write("Current", "Database", home.path("qd.mdb"));
    home.dialogs.answer_file(odd);
    EXPECT_EQ(select_database(home.ctx), DatabaseChoice::Refused);
    EXPECT_EQ(home.dialogs.messages().last(),
              "The database you have selected does not appear to be the correct database.");
    EXPECT_EQ(home.app.database_path, "");
    EXPECT_EQ(home.app.database.path(), odd);
    EXPECT_EQ(home.app.settings.read("Current", "Database"), home.path("qd.mdb"));

    // A file without the tables fails the check and is left as it was.
    const QString empty = home.write_file("empty.mdb", "");
    home.dialogs.answer_file(empty);
    EXPECT_THROW(select_database(home.ctx), DbError);
    EXPECT_EQ(QFileInfo(empty).size(), 0);
    // A catalog that cannot be opened says why.
    Database directory;
    EXPECT_FALSE(directory.open(home.dir()));
    EXPECT_TRUE(directory.open_error().contains("unable to open"))
        << directory.open_error().toStdString();
}
