// quilldex-cli publish: the "Create Web Page(s)" run of the Web Pages tab over
// the files named on the command line, with no browser at the end.

#include "cli/cli.h"
#include "imaging/file_failures.h"
#include "pages/web_page_run.h"

#include <QDir>
#include <QFileInfo>

namespace {

const QStringList kOptions = {"template", "target", "page", "slides",
                              "delay",    "loop",   "max",  "thumb"};

int run_publish(CliSession& s, const QStringList& args) {
    const CliArgs a(args, {"slides", "loop"});
    if (!a.error.isEmpty()) {
        return s.usage_error(a.error);
    }
    for (auto it = a.options.cbegin(); it != a.options.cend(); ++it) {
        if (!kOptions.contains(it.key())) {
            return s.usage_error(QStringLiteral("unknown option --") + it.key());
        }
    }
    AppState& app = s.app;
    const QString current = QStringLiteral("Current");
    WebPageRequest r;
    // Empty when not given, so that the run's own test of a blank directory speaks.
    const QString target = a.value("target");
    r.page.target_directory =
        target.isEmpty() ? target : QDir::cleanPath(QDir::current().absoluteFilePath(target));
    r.page.make_slide_show = a.has("slides");
    r.page.slide_show_delay = a.value("delay", app.settings.read("Slides", "Slide Show Delay"));
    // The background and colours are those the Web Pages tab shows.
    r.page.background_image = app.settings.read(current, "HTML Background Image");
    r.page.background_color = app.settings.read(current, "HTML Background Color");
    r.page.text_color = app.settings.read(current, "HTML Text Color");
    r.image_page = a.value("page", "index.htm");
    r.image_template = a.value("template");
    r.max_size = a.value("max", app.settings.read(current, "Max Image Size", "300"));
    r.thumbnail_size = a.value("thumb", app.thumbnail_size);
    r.slide_show_loop = a.has("loop");

    QStringList paths;
    for (const QString& word : a.words) {
        paths << QDir::cleanPath(QDir::current().absoluteFilePath(word));
    }
    app.main_list.set_items(paths);

    // The run passes over every failure of its own; here each file that could
    // not be read, resized or copied is told, and the count ends the run.
    FailureLog failures(s.err);
    r.page.failed = failures.sink();
    const WebPageResult result = create_web_pages(s.ctx, r, app.main_list);
    if (result.refused) {
        return 1;
    }
    // A target directory that is not there or an empty page name give no page.
    if (!QFileInfo(result.first_page).isFile()) {
        s.err << "No page was written: " << result.first_page << '\n';
        failures.finish();
        return 1;
    }
    s.out << result.first_page << '\n';
    return failures.finish() == 0 ? 0 : 1;
}

const CliRegistration registration{
    "publish",
    "--template NAME --target DIR [--page NAME] [--slides [--delay N] [--loop]] [--max N] "
    "[--thumb N] PATH...",
    &run_publish,
    true,
    true,
    "Makes web pages from a template, as \"Create Web Page(s)\" does, without a browser.\n"
    "  --template NAME  the template the pages are made from\n"
    "  --target DIR     the directory the pages and images are written to\n"
    "  --page NAME      the name of the first page (default index.htm)\n"
    "  --slides         make a slide show of the pages\n"
    "  --delay N        seconds between slides\n"
    "  --loop           the slide show starts again after the last page\n"
    "  --max N          the largest width or height of a copied image, in pixels\n"
    "  --thumb N        the thumbnail size, in pixels\n"
    "  PATH...          the files, in page order\n"};

}  // namespace
