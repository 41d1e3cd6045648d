#include "support/cli_run.h"
#include "support/qt_print.h"
#include "support/test_home.h"

#include <QRegularExpression>
#include <QStringList>

#include <gtest/gtest.h>

#include <cstdlib>

// The command-line program explains itself: the list of commands, each
// command's options, its version.
TEST(CliHelp, EveryCommandTellsItsOptionsWithoutARuntimeWarning) {
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
    // Started as from a service, with no session runtime directory: no warning.
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.remove("XDG_RUNTIME_DIR");
    const CliRun version = run_cli(home.dir(), {"--version"}, 60000, {}, env);
    EXPECT_EQ(version.out, QStringLiteral("quilldex-cli 1.62\n"));
    EXPECT_FALSE(version.err.contains("XDG_RUNTIME_DIR")) << version.err.toStdString();
}
