#include "support/cli_run.h"
#include "support/qt_print.h"
#include "support/test_home.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStringList>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

#include <cstdlib>

// The command-line program explains itself: the list of commands, each
// command's options, its version; a mistake in the command line exits 2 with
// a usage line.
TEST(CliHelp, EveryCommandTellsItsOptions) {
    TestHome home(false);
    const CliRun all = run_cli(home.dir(), {"--help"});
    ASSERT_EQ(all.code, 0) << all.err.toStdString();
    QStringList names;
    for (const QString& line : all.out.section(QStringLiteral("commands:\n"), 1).split(u'\n')) {
        if (line.startsWith(QLatin1String("  "))) {
            names << line.simplified().section(u' ', 0, 0);
        }
    }
    ASSERT_TRUE(names.contains(QStringLiteral("scan"))) << all.out.toStdString();
    for (const QString& name : names) {
        const CliRun one = run_cli(home.dir(), {name, "--help"});
        EXPECT_EQ(one.code, 0) << name.toStdString();
        const QString usage = one.lines.value(0);
        EXPECT_TRUE(usage.startsWith("usage: quilldex-cli [--home DIR] " + name + ' '))
            << one.out.toStdString();
        // Each option of the usage line has a line of its own below it.
        const QRegularExpression option(QStringLiteral("--[a-z-]+"));
        for (auto m = option.globalMatch(usage.section(name, 1)); m.hasNext();) {
            const QString o = m.next().captured();
            EXPECT_TRUE(one.lines.filter(QRegularExpression("^  " + o + "\\b")).size() == 1)
                << name.toStdString() << " does not explain " << o.toStdString();
        }
    }
    const CliRun version = run_cli(home.dir(), {"--version"});
    EXPECT_EQ(version.out, QStringLiteral("quilldex-cli 1.62\n"));
}

TEST(CliHelp, MistakesExitTwoWithAUsageLineAndNoRuntimeWarning) {
    TestHome home;
    struct Case {
        QStringList args;
        const char* usage;
    } cases[] = {
        {{"no-such-command"}, "usage: quilldex-cli [--home DIR] COMMAND"},
        {{"thumbnails", "--target"}, "usage: quilldex-cli [--home DIR] thumbnails --target DIR"},
    };
    for (const Case& c : cases) {
        // Started as from a service, with no session runtime directory.
        const CliRun r = run_cli(home.dir(), c.args, 60000, [] { unsetenv("XDG_RUNTIME_DIR"); });
        EXPECT_EQ(r.code, 2) << c.args.join(' ').toStdString();
        EXPECT_TRUE(r.err.contains(c.usage)) << r.err.toStdString();
        EXPECT_FALSE(r.err.contains("XDG_RUNTIME_DIR")) << r.err.toStdString();
    }
}

TEST(HelpPage, IsWellFormedAndTellsTheTabsInOrderAndTheMenus) {
    QFile f(QStringLiteral(QD_SOURCE_DIR "/data/qdhelp.htm"));
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    const QString html = QString::fromUtf8(f.readAll());
    QXmlStreamReader xml(html);
    while (!xml.atEnd()) {
        xml.readNext();
    }
    EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString() << " at line "
                                 << xml.lineNumber();
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
    EXPECT_EQ(terms.mid(0, 16),
              QStringList({"Main", "Templates", "Resize", "Load", "Search", "Catalogs", "Web Pages",
                           "Scan", "Monitor", "Index", "Audit", "Slides", "Printing", "File",
                           "Options", "Help"}));
}
