#include "cli/cli.h"

#include "imaging/image_commands.h"

namespace {

int run_thumbnails(CliSession& s, const QStringList& args) {
    const CliArgs a(args, {QStringLiteral("prefix")});
    if (!a.error.isEmpty()) {
        return s.usage_error(a.error);
    }
    if (!a.has(QStringLiteral("target")) || a.words.isEmpty()) {
        return s.usage_error(QStringLiteral("thumbnails needs --target and a file"));
    }
    ImageCommand c;
    c.paths = a.words;
    c.target_directory = a.value(QStringLiteral("target"));
    c.size = a.value(QStringLiteral("size"));
    c.prefix = a.has(QStringLiteral("prefix"));
    return run_image_command(s.ctx, c, s.out, s.err);
}

const CliRegistration registration{
    "thumbnails",
    "--target DIR [--size N] [--prefix] PATH...",
    &run_thumbnails,
    true,
    true,
    "Makes a JPEG thumbnail of each file.\n"
    "  --target DIR  the directory the thumbnails are written to\n"
    "  --size N      the thumbnail's width and height, in pixels\n"
    "  --prefix      name each thumbnail tn_NAME instead of NAME_tn\n"
    "  PATH...       the pictures\n"};

}  // namespace
