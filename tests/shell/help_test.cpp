#include "support/cli_run.h"
#include "support/qt_print.h"
#include "support/test_home.h"

#include <QRegularExpression>
#include <QStringList>

#include <gtest/gtest.h>

#include <cstdlib>

// The command-line program explains itself: the list of commands, each
// command's options, its version; a mistake in the command line exits 2 with
// a usage line.
TEST(CliHelp, EveryCommandTellsItsOptionsAndMistakesExitTwoWithAUsageLine) {
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
    EXPECT_EQ(run_cli(home.dir(), {"--version"}).out, QStringLiteral("quilldex-cli 1.62\n"));
    // Started as from a service, with no session runtime directory: no warning.
    const CliRun r =
        run_cli(home.dir(), {"no-such-command"}, 60000, [] { unsetenv("XDG_RUNTIME_DIR"); });
    EXPECT_EQ(r.code, 2);
    EXPECT_TRUE(r.err.contains("usage: quilldex-cli [--home DIR] COMMAND")) << r.err.toStdString();
    EXPECT_FALSE(r.err.contains("XDG_RUNTIME_DIR")) << r.err.toStdString();
}
