#include "page_fixture.h"

#include "pages/index_run.h"
#include "support/cli_run.h"

#include <functional>

using namespace index_choice;

namespace {

// A request that passes every test, over small templates whose sections
// show where the frame tags went.
struct IndexFixture : PageFixture {
    IndexFixture() {
        for (const char* name : {"ix", "top", "left", "right"}) {
            put_template({name,
                          QStringLiteral("<%1 [rightframefilename] [topframefilename] "
                                         "[leftframefilename] [RightFrameFileName] [date]>")
                              .arg(name),
                          "", "", "", "", QStringLiteral("</%1 [leftframefilename]>").arg(name),
                          ""});
        }
        r = {target,  kNoFrames,   kFileNames, false,     "ix",       "top", "left",
             "right", "index.htm", "top.htm",  "toc.htm", "main.htm", "100", {}};
        home.app.main_list.set_items({source + "/a.jpg", source + "/b.gif"});
    }
    IndexResult run() { return create_index(home.ctx, r, home.app.main_list); }
    QString page(const char* name) { return read_text(target + u'/' + QLatin1String(name)); }

    IndexRequest r;
};

QString lines(const QStringList& l) {
    return l.join("\r\n") + "\r\n";
}

// The rows of the link table for a.jpg and b.gif, as each frame type writes them.
QStringList table(const QString& font, const QString& prefix, const QString& target,
                  const QStringList& closing) {
    QStringList out{"    <table>"};
    int i = 0;
    for (const char* name : {"a.jpg", "b.gif"}) {
        out << "      <tr>"
            << "        <td>" << QStringLiteral("          <font size=-1>%1.</font>").arg(++i)
            << "        </td>"
            << "        <td>" << font
            << prefix + QLatin1String(name) + target + ">" + QLatin1String(name) + "</A><BR>"
            << closing;
    }
    return out << "    </table>";
}

}  // namespace

TEST(IndexRun, OnlyTheLastFailingTestIsShownAndNothingIsWritten) {
    const QString left = "The template for the left frame must be selected.";
    const QString right = "The template for the right frame must be selected.";
    // Each row breaks the tests named by its message and those before it.
    const std::vector<std::pair<std::function<void(IndexFixture&)>, QString>> rows = {
        {[](IndexFixture& f) { f.r.top_frame_file_name.clear(); },
         "You must enter a valid file name for the Top frame (ex: top.htm)."},
        {[](IndexFixture& f) { f.r.left_frame_file_name.clear(); },
         "You must enter a valid file name for the Left frame or table of contents (ex: "
         "toc.htm)."},
        {[](IndexFixture& f) { f.r.right_frame_file_name.clear(); },
         "You must enter a valid file name for the right frame or main content page (ex: "
         "toc.htm)."},
        {[](IndexFixture& f) { f.r.target_directory.clear(); },
         "You must select the target directory for the index file to be created."},
        {[](IndexFixture& f) { f.r.index_file_name.clear(); },
         "You must enter a valid file name for the index page (ex: index.htm)."},
        {[](IndexFixture& f) { f.r.index_type = kNotSet; },
         "You must select the type of index you want to create (use thumbnails or file names)."},
        {[](IndexFixture& f) { f.r.frame_type = kNotSet; },
         "You must select the frame type (none, top/left/right, left/right)."},
        {[](IndexFixture& f) { f.r.no_frame.clear(); },
         "The template for the index must be selected."},
        // The frame templates count only for their frame type.
        {[](IndexFixture& f) {
             f.r.frame_type = kTopLeftRight;
             f.r.top_frame.clear();
         },
         "The template for the top frame must be selected."},
        {[](IndexFixture& f) { f.r.left_frame.clear(); }, left},
        {[](IndexFixture& f) { f.r.right_frame.clear(); }, right},
        {[](IndexFixture& f) { f.r.frame_type = kLeftRight; }, right},
        {[](IndexFixture& f) { f.r.right_frame = "right"; }, left},
        {[](IndexFixture& f) { f.r.frame_type = kNoFrames; },
         "The template for the index must be selected."},
        // Test 15 has the condition of test 7 and always wins over it.
        {[](IndexFixture& f) { f.home.app.main_list.clear(); },
         "There are no files in the list on the 'Main' tab.  No index will be created."},
    };
    IndexFixture f;
    EXPECT_EQ(index_refusal(f.r, f.home.app.main_list), "");
    for (const auto& [breaks, message] : rows) {
        breaks(f);
        EXPECT_EQ(index_refusal(f.r, f.home.app.main_list), message);
    }

    EXPECT_TRUE(f.run().refused);
    EXPECT_TRUE(QDir(f.target).isEmpty());
    EXPECT_TRUE(f.home.shell.opened.isEmpty());
}

TEST(IndexRun, EachFrameTypeWritesItsPagesByteForByte) {
    const QString tags = "[rightframefilename] [topframefilename] [leftframefilename]";
    struct Case {
        int frame_type;
        bool new_browser;
        QString target;  // the link's target part
        QStringList files;
    };
    const QStringList framed = {"index.htm", "main.htm", "toc.htm", "top.htm"};
    const Case cases[] = {{kNoFrames, true, "' target='body'", {"index.htm"}},
                          {kTopLeftRight, false, "' target='body'", framed},
                          {kLeftRight, true, "' target='_blank'", framed.mid(0, 3)}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.frame_type * 2 + c.new_browser);
        IndexFixture f;
        // Pages of the other frame types stand there already.
        for (const char* name : {"index.htm", "top.htm", "toc.htm", "main.htm"}) {
            f.home.write_file(QStringLiteral("target/") + name, "old");
        }
        f.r.frame_type = c.frame_type;
        f.r.new_browser = c.new_browser;
        // The first reply that is not Yes ends the questions, and spares nothing.
        f.home.dialogs.answer(Dialogs::Answer::Yes);
        f.home.dialogs.answer(Dialogs::Answer::No);
        const IndexResult result = f.run();
        EXPECT_FALSE(result.refused);
        EXPECT_EQ(QDir(f.target).entryList(QDir::Files, QDir::Name), c.files);
        EXPECT_EQ(f.home.shell.opened, QStringList{"file://" + f.target + "/index.htm"});

        QStringList asked{
            "NO images or files are copied using this option.  The HTML pages are created in the "
            "target directory as specified."};
        if (c.frame_type == kNoFrames) {
            asked << f.target + "/index.htm already exists.  Do you want to replace this file?";
            EXPECT_EQ(f.page("index.htm"),
                      lines(QStringList{"<ix " + tags + " [RightFrameFileName] [date]>"} +
                            table("        <font size=-1>", "          <A href='", c.target,
                                  {"        </font>", "        </td>", "      </tr>"}) +
                            QStringList{"</ix [leftframefilename]>"}));
        } else {
            const QString first = c.frame_type == kTopLeftRight ? "/top.htm" : "/toc.htm";
            const QString second = c.frame_type == kTopLeftRight ? "/toc.htm" : "/main.htm";
            asked << f.target + first + " already exists.  Do you want to replace this file?"
                  << f.target + second + " already exists.  Do you want to replace this file?";
            // The frameset: each frame tag once, no footer.
            EXPECT_EQ(f.page("index.htm"),
                      lines({"<ix main.htm top.htm toc.htm [RightFrameFileName] [date]>"}));
            const QStringList rows = c.frame_type == kTopLeftRight
                                         ? table("          <font size=-1>", "    <A href='",
                                                 c.target, {"        </td>"})
                                         : table("          <font size=-1>", "          <A href='",
                                                 c.target, {"        </td>", "      </tr>"});
            EXPECT_EQ(f.page("toc.htm"),
                      lines(QStringList{"<left main.htm [topframefilename] [leftframefilename] "
                                        "[RightFrameFileName] [date]>"} +
                            rows + QStringList{"</left [leftframefilename]>"}));
            const QString right = "<right " + tags + " [RightFrameFileName] [date]>";
            EXPECT_EQ(f.page("main.htm"), c.frame_type == kTopLeftRight
                                              ? lines({right})
                                              : lines({right, "</right [leftframefilename]>"}));
            if (c.frame_type == kTopLeftRight) {
                EXPECT_EQ(f.page("top.htm"),
                          lines({"<top " + tags + " [RightFrameFileName] [date]>",
                                 "</top [leftframefilename]>"}));
            }
        }
        EXPECT_EQ(f.home.dialogs.messages(), asked);
    }
}

TEST(IndexRun, ThumbnailsAreMadeFromTheCopiesInTheTargetDirectory) {
    IndexFixture f;
    f.r.index_type = kThumbnails;
    // In the target: a BMP too large to be its own thumbnail, and a small
    // one that is; elsewhere only: a photo that the target lacks. A closing
    // separator is not looked for.
    f.home.write_image("target/large.bmp", 300, 200);
    f.home.write_image("target/small.bmp", 40, 30);
    f.home.app.main_list.set_items({f.source + "/large.bmp", f.source + "/small.bmp",
                                    f.home.write_image("source/gone.jpg", 300, 200)});
    f.r.target_directory = f.target + "/";
    f.run();
    const QString toc = f.page("index.htm");
    for (const char* link : {"<A href='large.bmp'><img src='large_tn.jpg'></A><BR>",
                             "<A href='small.bmp'>small.bmp</A><BR>",
                             "<A href='gone.jpg'><img src='gone.jpg'></A><BR>"}) {
        EXPECT_TRUE(toc.contains(QLatin1String(link))) << link << "\n" << toc.toStdString();
    }
    EXPECT_EQ(image_size(f.target + "/large_tn.jpg").width(), 100);
    EXPECT_FALSE(QFile::exists(f.source + "/gone_tn.jpg"));
}

TEST(IndexCommand, WritesTheTabsPagesAndRefusesBadArguments) {
    IndexFixture f;
    f.home.write_file("target/toc.htm", "old");
    const QString before = QDir::currentPath();
    QDir::setCurrent(f.home.dir());
    const QStringList args = QString(
                                 "index --target target --type filename --index-template ix "
                                 "--frames top-left-right --new-browser --top top --left "
                                 "left --right right source/a.jpg source/b.gif")
                                 .split(' ');
    const CliRun unknown =
        run_cli(f.home.dir(), QStringList{"index", "--colour", "red"} + args.mid(1));
    // Pictures are made without a screen when no platform is named; a
    // platform the user names is the one tried.
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"}) {
        env.remove(name);
    }
    const CliRun ok = run_cli(f.home.dir(), args, 120000, {}, env);
    env.insert("QT_QPA_PLATFORM", "nowhere");
    const CliRun named = run_cli(f.home.dir(), args, 120000, {}, env);
    QDir::setCurrent(before);

    EXPECT_EQ(ok.code, 0) << ok.err.toStdString();
    EXPECT_EQ(ok.lines, QStringList{f.target + "/index.htm"});
    EXPECT_TRUE(ok.err.contains(f.target + "/toc.htm already exists.")) << ok.err.toStdString();
    const QString by_cli = f.page("toc.htm");
    f.r.new_browser = true;
    f.r.frame_type = kTopLeftRight;
    f.run();
    EXPECT_EQ(by_cli, f.page("toc.htm"));
    EXPECT_NE(named.code, 0);
    EXPECT_TRUE(named.err.contains("\"nowhere\"")) << named.err.toStdString();
    EXPECT_EQ(unknown.code, 2);
    EXPECT_TRUE(unknown.err.contains("usage: quilldex-cli [--home DIR] index --target DIR"));
    EXPECT_TRUE(unknown.err.contains("--colour"));
}
