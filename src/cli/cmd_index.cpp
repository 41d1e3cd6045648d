// quilldex-cli index: the "Create Index" run of the Index tab over the files
// named on the command line, with every replace question answered Yes and no
// browser at the end.

#include "cli/cli.h"
#include "imaging/resize_settings.h"
#include "pages/index_run.h"

#include <QDir>
#include <QFileInfo>

namespace {

const char* kUsage =
    "--target DIR --frames none|top-left-right|left-right --type thumbnail|filename "
    "[--new-browser] --index-template T [--top T] [--left T] [--right T] PATH...";

const QStringList kOptions = {"target",         "frames", "type", "new-browser",
                              "index-template", "top",    "left", "right"};

// Messages as the program's own dialogs give them, but a question is answered
// Yes: the pages are written whatever the answer, and Yes asks them all.
class IndexDialogs : public CliDialogs {
public:
    using CliDialogs::CliDialogs;
    Answer message(const QString& text, Buttons buttons, Icon icon) override {
        CliDialogs::message(text, buttons, icon);
        return buttons == Buttons::Ok ? Answer::Ok : Answer::Yes;
    }
};

int usage(CliSession& s, const QString& why) {
    s.err << why << '\n' << "usage: quilldex-cli [--home DIR] index " << kUsage << '\n';
    return 2;
}

QString absolute(const QString& path) {
    return QDir::cleanPath(QDir::current().absoluteFilePath(path));
}

// The thumbnail options as the Resize tab would take them for an index: its
// settings, Flat when no thumbnail type is stored, the file type Thumbnail,
// and the target directory as the thumbnail directory; each stored as the
// tab's controls store them.
void prepare_thumbnails(AppState& app, const QString& target) {
    const ResizeSettings s = read_resize_settings(app.settings);
    apply_resize_settings(app, s);
    const QString type = s.thumbnail_type.toLower();
    if (type != QLatin1String("flat") && type != QLatin1String("3d")) {
        app.thumbnail_3d = false;
        store_resize_setting(app, QStringLiteral("Resize Thumbnail Type"), QStringLiteral("Flat"));
    }
    store_resize_setting(app, QStringLiteral("Resize File Type"), QStringLiteral("Thumbnail"));
    app.thumbnail_target_directory = target;
    store_resize_setting(app, QStringLiteral("Thumbnail Target Directory"), target);
}

int run_index(CliSession& s, const QStringList& args) {
    const CliArgs a(args, {QStringLiteral("new-browser")});
    if (!a.error.isEmpty()) {
        return usage(s, a.error);
    }
    for (auto it = a.options.cbegin(); it != a.options.cend(); ++it) {
        if (!kOptions.contains(it.key())) {
            return usage(s, QStringLiteral("unknown option --") + it.key());
        }
    }
    const QStringList frames = {"none", "top-left-right", "left-right"};
    const QStringList types = {"thumbnail", "filename"};
    const int frame_type = static_cast<int>(frames.indexOf(a.value("frames")));
    const int index_type = static_cast<int>(types.indexOf(a.value("type")));
    if (!a.has("target") || !a.has("index-template") || a.words.isEmpty()) {
        return usage(s, QStringLiteral("--target, --index-template and a PATH are needed"));
    }
    if (frame_type < 0) {
        return usage(s, QStringLiteral("--frames must be none, top-left-right or left-right"));
    }
    if (index_type < 0) {
        return usage(s, QStringLiteral("--type must be thumbnail or filename"));
    }

    AppState& app = s.app;
    const QString index = QStringLiteral("Index");
    const auto page_name = [&](const char* key, const char* fallback) {
        const QString v = app.settings.read(index, QLatin1String(key));
        return v.isEmpty() ? QString::fromLatin1(fallback) : v;
    };
    IndexRequest r;
    r.target_directory = absolute(a.value("target"));
    r.frame_type = frame_type;
    r.index_type = index_type;
    r.new_browser = a.has("new-browser");
    r.no_frame = a.value("index-template");
    r.top_frame = a.value("top");
    r.left_frame = a.value("left");
    r.right_frame = a.value("right");
    r.index_file_name = page_name("Index File Name", "index.htm");
    r.top_frame_file_name = page_name("Top Frame File Name", "top.htm");
    r.left_frame_file_name = page_name("Left Frame File Name", "toc.htm");
    r.right_frame_file_name = page_name("Right Frame File Name", "main.htm");
    r.thumbnail_size = app.thumbnail_size;
    r.prepare_thumbnails = [&app, target = r.target_directory] { prepare_thumbnails(app, target); };

    QStringList paths;
    for (const QString& word : a.words) {
        paths << absolute(word);
    }
    app.main_list.set_items(paths);

    IndexDialogs dialogs(s.err);
    Context ctx{app, dialogs, s.ui, s.shell};
    const IndexResult result = create_index(ctx, r, app.main_list);
    if (result.refused) {
        return 1;
    }
    // The run passes over every failure of its own (a target directory that
    // is not there); here it ends in a message and a code.
    const QString written = r.target_directory + u'/' + r.index_file_name;
    if (!QFileInfo(written).isFile()) {
        s.err << "No index was written: " << written << '\n';
        return 1;
    }
    s.out << written << '\n';
    return 0;
}

const CliRegistration registration{
    "index",
    kUsage,
    &run_index,
    true,
    true,
    "Writes the index pages of the Index tab over the files, answering Yes to every\n"
    "question about replacing a page.\n"
    "  --target DIR          the directory the pages are written to\n"
    "  --frames KIND         none, top-left-right or left-right\n"
    "  --type KIND           thumbnail (thumbnails as links) or filename (names as links)\n"
    "  --new-browser         each link opens a new browser window\n"
    "  --index-template T    the template of the index page\n"
    "  --top T               the template of the top frame\n"
    "  --left T              the template of the left frame\n"
    "  --right T             the template of the right frame\n"
    "  PATH...               the files the index lists\n"};

}  // namespace
