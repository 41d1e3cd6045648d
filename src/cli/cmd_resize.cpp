#include "cli/cli.h"

#include "imaging/image_commands.h"

namespace {

int run_resize(CliSession& s, const QStringList& args) {
    const CliArgs a(args);
    if (!a.error.isEmpty()) {
        return s.usage_error(a.error);
    }
    if (!a.has(QStringLiteral("target")) || !a.has(QStringLiteral("max")) || a.words.isEmpty()) {
        return s.usage_error(QStringLiteral("resize needs --target, --max and a file"));
    }
    ImageCommand c;
    c.paths = a.words;
    c.target_directory = a.value(QStringLiteral("target"));
    c.resize = true;
    c.size = a.value(QStringLiteral("max"));
    return run_image_command(s.ctx, c, s.out, s.err);
}

const CliRegistration registration{
    "resize",
    "--target DIR --max N PATH...",
    &run_resize,
    true,
    true,
    "Makes a resized JPEG copy of each file, as the Resize tab's Create does.\n"
    "  --target DIR  the directory the copies are written to\n"
    "  --max N       the largest width or height of a copy, in pixels\n"
    "  PATH...       the pictures to resize\n"};

}  // namespace
