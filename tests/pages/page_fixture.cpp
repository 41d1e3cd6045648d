#include "page_fixture.h"

#include <QDir>
#include <QFile>
#include <QImageReader>

PageFixture::PageFixture() {
    source = home.path(QStringLiteral("source"));
    target = home.path(QStringLiteral("target"));
    QDir().mkpath(source);
    QDir().mkpath(target);
    QDir().mkpath(home.app.temp_directory());
    output = target + QStringLiteral("/out.htm");
    page.target_directory = target;
    home.app.thumbnail_size = QStringLiteral("100");
}

void PageFixture::put_template(const TemplateSections& t) {
    AppState& app = home.app;
    Recordset& rs = app.shared_recordset;
    rs.open(app.database, template_row_sql(t.name));
    if (rs.record_count() > 0) {
        rs.edit();
    } else {
        rs.add_new();
        rs.set_field(QStringLiteral("tname"), t.name);
        rs.set_field(QStringLiteral("ttype"), QStringLiteral("C"));
    }
    set_template_fields(rs, t);
    rs.update();
    rs.close();
}

void PageFixture::put_file_row(const QString& path, const QString& title,
                               const QString& description, const QString& catalog) {
    query_column(home.app, QStringLiteral("delete from filenames where filename='%1'").arg(path));
    query_column(home.app, QStringLiteral("insert into filenames(filename, title, description, "
                                          "catalog) values ('%1', nullif('%2', ''), "
                                          "nullif('%3', ''), nullif('%4', ''))")
                               .arg(path, title, description, catalog));
}

QString PageFixture::expand(const QString& name, const QStringList& files, const QString& max,
                            const QString& preview, const QStringList& links) {
    home.app.file_list.set_items(files);
    expand_template(home.ctx, page, name, output, QString(), max, max, preview, links.value(0),
                    links.value(1), links.value(2), links.value(3));
    return read_text(output);
}


QSize image_size(const QString& path) {
    return QImageReader(path).size();
}
