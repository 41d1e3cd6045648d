#include "support/qt_print.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStringList>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

namespace {

QString read_help() {
    QFile f(QStringLiteral(QD_SOURCE_DIR "/data/qdhelp.htm"));
    if (!f.open(QIODevice::ReadOnly)) {
        return QString();
    }
    return QString::fromUtf8(f.readAll());
}

}  // namespace

TEST(HelpPage, IsWellFormedAndTellsTheTabsInOrderAndTheMenus) {
    const QString html = read_help();
    ASSERT_FALSE(html.isEmpty());
    QXmlStreamReader xml(html);
    int elements = 0;
    while (!xml.atEnd()) {
        if (xml.readNext() == QXmlStreamReader::StartElement) {
            ++elements;
        }
    }
    EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString() << " at line "
                                 << xml.lineNumber();
    EXPECT_GT(elements, 50);
    // Attributes are written name='value', as in every page the system writes.
    static const QRegularExpression double_quoted(QStringLiteral("<[^>]*\\w=\""));
    EXPECT_FALSE(double_quoted.match(html).hasMatch())
        << double_quoted.match(html).captured().toStdString();
    // Every internal link has its target.
    static const QRegularExpression link(QStringLiteral("href='#([^']+)'"));
    for (auto it = link.globalMatch(html); it.hasNext();) {
        const QString id = it.next().captured(1);
        EXPECT_TRUE(html.contains(QStringLiteral("id='") + id + u'\'')) << id.toStdString();
    }
    // Every picture and page it refers to lies beside it, where the help is
    // installed and seeded with it; each tab is shown.
    static const QRegularExpression local(QStringLiteral("(?:src|href)='([^#:']+)'"));
    int pictures = 0;
    for (auto it = local.globalMatch(html); it.hasNext();) {
        const QString file = it.next().captured(1);
        pictures += file.endsWith(QLatin1String(".png")) ? 1 : 0;
        EXPECT_TRUE(QFileInfo::exists(QStringLiteral(QD_SOURCE_DIR "/data/") + file))
            << file.toStdString();
    }
    EXPECT_GE(pictures, 13);
    // The tabs in order, then the menus.
    QStringList terms;
    static const QRegularExpression dt(QStringLiteral("<dt>([^<]*)</dt>"));
    for (auto it = dt.globalMatch(html); it.hasNext();) {
        terms << it.next().captured(1);
    }
    const QStringList tabs{"Main",     "Templates", "Resize",  "Load",    "Search",
                           "Catalogs", "Web Pages", "Scan",    "Monitor", "Index",
                           "Audit",    "Slides",    "Printing"};
    ASSERT_GE(terms.size(), tabs.size() + 3);
    EXPECT_EQ(terms.mid(0, tabs.size()), tabs);
    EXPECT_EQ(terms.mid(tabs.size(), 3), QStringList({"File", "Options", "Help"}));
    for (const char* item : {"Exit", "Setup", "Contents", "Search For Help On",
                             "Help File (HTML format)", "On-Line Web Pages", "About"}) {
        EXPECT_TRUE(html.contains(QStringLiteral("<span class='ui'>") + item + "</span>")) << item;
    }
}
