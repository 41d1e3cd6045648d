#include "cli/cli.h"

#include "imaging/image_commands.h"

namespace {

int run_thumbnails(CliSession& s, const QStringList& args) {
    const CliArgs a(args, {QStringLiteral("prefix")});
    if (!a.error.isEmpty()) {
        s.err << a.error << '\n';
        return 1;
    }
    if (!a.has(QStringLiteral("target")) || a.words.isEmpty()) {
        s.err << "usage: thumbnails --target DIR [--size N] [--prefix] PATH...\n";
        return 1;
    }
    ImageCommand c;
    c.paths = a.words;
    c.target_directory = a.value(QStringLiteral("target"));
    c.size = a.value(QStringLiteral("size"));
    c.prefix = a.has(QStringLiteral("prefix"));
    return run_image_command(s.ctx, c, s.out, s.err);
}

const CliRegistration registration{"thumbnails", "--target DIR [--size N] [--prefix] PATH...",
                                   &run_thumbnails};

}  // namespace
