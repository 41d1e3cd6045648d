#include "page_fixture.h"

#include "support/page_checks.h"

#include <QRegularExpression>

// Every line of a page ends in CR LF: the lines inside the delivered
// templates' sections as well as those the page writer adds after each
// section, so that a published page has one kind of line end.
TEST(DeliveredTemplates, PagesEndEveryLineWithCrLf) {
    PageFixture f;
    const QStringList names = query_column(f.home.app, "select tname from template");
    ASSERT_GE(names.size(), 10);
    const QStringList files = {f.home.write_image("src/a.jpg", 40, 30, Qt::red),
                               f.home.write_image("src/b.jpg", 30, 40, Qt::blue)};
    static const QRegularExpression bare("\r(?!\n)|(?<!\r)\n");
    for (const QString& name : names) {
        SCOPED_TRACE(name.toStdString());
        for (const char* column :
             {"header", "\"pre-image\"", "image1", "image2", "\"post-image\"", "footer"}) {
            const QString text = query_column(f.home.app, QStringLiteral("select %1 from template "
                                                                         "where tname='%2'")
                                                              .arg(column, name))
                                     .value(0);
            EXPECT_FALSE(bare.match(text).hasMatch()) << column;
        }
        f.expand(name, files);
        QFile page(f.output);
        ASSERT_TRUE(page.open(QIODevice::ReadOnly));
        const QString bytes = QString::fromLatin1(page.readAll());
        EXPECT_TRUE(bytes.endsWith("\r\n"));
        EXPECT_FALSE(bare.match(bytes).hasMatch());
    }
}
