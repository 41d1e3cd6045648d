#include "cli/cli.h"

#include "imaging/image_commands.h"

namespace {

int run_resize(CliSession& s, const QStringList& args) {
    const CliArgs a(args);
    if (!a.error.isEmpty()) {
        s.err << a.error << '\n';
        return 1;
    }
    if (!a.has(QStringLiteral("target")) || !a.has(QStringLiteral("max")) || a.words.isEmpty()) {
        s.err << "usage: resize --target DIR --max N PATH...\n";
        return 1;
    }
    ImageCommand c;
    c.paths = a.words;
    c.target_directory = a.value(QStringLiteral("target"));
    c.resize = true;
    c.size = a.value(QStringLiteral("max"));
    return run_image_command(s.ctx, c, s.out, s.err);
}

const CliRegistration registration{"resize", "--target DIR --max N PATH...", &run_resize};

}  // namespace
