// The delivered templates as the runs publish them: every line of a page
// ends in CR LF, and a slide show and a gallery refer only to files that are
// there, their pictures within the limits asked for. Then, with the help page,
// in a real browser: headless Chromium opens every page of a directory in a
// frame of a checking page, its log names each file it is asked for (none may
// be missing), and the checking page lists every picture, in frames at any
// depth, that the browser could not show.

#include "page_fixture.h"

#include "pages/index_run.h"
#include "pages/web_page_run.h"

#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QUrl>

namespace {

struct Seen {
    int thumbnails = 0, pictures = 0, nav = 0;
};

// Expects every file a page refers to to be there, its pictures readable and
// those whose names end in `limited` within `limit` pixels; counts what it saw.
Seen check_page(const QString& dir, const QString& page, int limit, const QString& limited = {}) {
    SCOPED_TRACE(page.toStdString());
    const QString text = read_text(dir + u'/' + page);
    static const QRegularExpression refers("(src|href)='([^']*)'|url=([^']*)'");
    static const QRegularExpression nav("<a [^>]*>[^<]*\\b(First|Previous|Next|Last)\\b");
    Seen seen{.nav = static_cast<int>(text.count(nav))};
    for (auto it = refers.globalMatch(text); it.hasNext();) {
        const QRegularExpressionMatch m = it.next();
        const QString path = QDir(dir).absoluteFilePath(m.captured(2) + m.captured(3));
        EXPECT_TRUE(QFileInfo(path).isFile()) << path.toStdString();
        if (m.captured(1) == "src") {
            const QSize size = image_size(path);
            EXPECT_TRUE(size.isValid()) << path.toStdString();
            if (path.endsWith(limited)) {
                EXPECT_LE(std::max(size.width(), size.height()), limit) << path.toStdString();
            }
            seen.thumbnails += path.endsWith("_tn.jpg");
        } else {
            seen.pictures += path.endsWith(".jpg");
        }
    }
    return seen;
}

const char* kChecker = R"(<!DOCTYPE html><html><body><script>
function broken(w, out) {
  for (const im of w.document.images) if (!im.complete || !im.naturalWidth) out.push(im.src);
  for (let i = 0; i < w.frames.length; ++i) broken(w.frames[i], out);
  return out;
}
onload = () => { document.getElementById('r').textContent = 'broken:' + broken(window, []); };
</script><pre id='r'>pending</pre>%1</body></html>)";

// Opens the pages of `dir` in Chromium; returns what went wrong, one line for
// each file asked for and missing or picture not shown, "" when nothing did.
QString check_in_browser(const QString& chromium, const QString& dir) {
    QString frames;
    for (const QString& page : QDir(dir).entryList({"*.htm"}, QDir::Files)) {
        frames += QStringLiteral("<iframe src='%1'></iframe>").arg(page);
    }
    QFile checker(dir + "/check.html");
    if (!checker.open(QIODevice::WriteOnly) ||
        checker.write(QString::fromLatin1(kChecker).arg(frames).toUtf8()) < 0) {
        return "cannot write the checking page";
    }
    checker.close();
    QTemporaryDir profile;
    QProcess browser;
    browser.start(chromium, {"--headless", "--no-sandbox", "--disable-gpu", "--no-first-run",
                             "--user-data-dir=" + profile.path(), "--enable-logging=stderr",
                             "--vmodule=file_url_loader_factory=1",
                             "--allow-file-access-from-files", "--virtual-time-budget=20000",
                             "--dump-dom", QUrl::fromLocalFile(checker.fileName()).toString()});
    if (!browser.waitForFinished(180000)) {
        browser.kill();
        return "the browser did not finish";
    }
    QStringList wrong;
    static const QRegularExpression asked("FileURLLoader::Start: (file://\\S+)");
    for (auto it = asked.globalMatch(QString::fromUtf8(browser.readAllStandardError()));
         it.hasNext();) {
        const QString file = QUrl(it.next().captured(1)).toLocalFile();
        if (!QFileInfo(file).isFile()) {
            wrong << "missing " + file;
        }
    }
    static const QRegularExpression result("broken:([^<]*)</pre>");
    const QRegularExpressionMatch m =
        result.match(QString::fromUtf8(browser.readAllStandardOutput()));
    if (!m.hasMatch()) {
        return "the checking page did not report";
    }
    for (const QString& src : m.captured(1).split(u',', Qt::SkipEmptyParts)) {
        wrong << "not shown " + src;
    }
    return wrong.join(u'\n');
}

}  // namespace

// Every line of a page ends in CR LF: the lines inside the delivered
// templates' sections as well as those the page writer adds after each
// section, so that a published page has one kind of line end.
TEST(DeliveredTemplates, PagesEndEveryLineWithCrLf) {
    PageFixture f;
    const QStringList names = query_column(f.home.app, "select tname from template");
    ASSERT_GE(names.size(), 10);
    const QStringList files = {f.home.write_image("src/a.jpg", 40, 30, Qt::red),
                               f.home.write_image("src/b.jpg", 30, 40, Qt::blue)};
    static const QRegularExpression bare("\r(?!\n)|(?<!\r)\n");
    for (const QString& name : names) {
        SCOPED_TRACE(name.toStdString());
        const QString page = f.expand(name, files);
        EXPECT_TRUE(page.endsWith("\r\n"));
        EXPECT_FALSE(bare.match(page).hasMatch());
    }
}

TEST(DeliveredTemplates, PublishedPagesAndTheHelpReferOnlyToFilesThatAreThereAndShowInABrowser) {
    PageFixture f;
    QStringList photos;
    static const QSize shapes[] = {{800, 600}, {600, 800}, {1024, 683}, {96, 72}};
    for (int i = 0; i < 8; ++i) {
        const QSize s = shapes[i % 4];
        photos << f.home.write_image(QStringLiteral("photos/IMG_%1.jpg").arg(i + 1), s.width(),
                                     s.height());
        f.put_file_row(photos.last(), QStringLiteral("Picture %1").arg(i + 1), "", "Tests");
    }
    QString dir;
    QStringList published;
    const auto publish = [&](const QString& folder, const QString& name, bool slides) {
        WebPageRequest r{.page = f.page,
                         .image_page = "index.htm",
                         .image_template = name,
                         .max_size = slides ? "640" : "0",
                         .thumbnail_size = "100",
                         .slide_show_loop = folder == "dark"};
        published << (dir = r.page.target_directory = f.home.path(folder));
        QDir().mkpath(dir);
        r.page.make_slide_show = slides;
        f.home.app.main_list.set_items(photos);
        EXPECT_FALSE(create_web_pages(f.home.ctx, r, f.home.app.main_list).refused);
        return QDir(dir).entryList({"*.htm"}, QDir::Files);
    };
    for (const auto& [name, folder] :
         {std::pair{"Slide Show", "light"}, {"Slide Show Dark", "dark"}}) {
        SCOPED_TRACE(name);
        const QStringList pages = publish(folder, name, true);
        ASSERT_EQ(pages.size(), 8);
        for (const QString& page : pages) {
            EXPECT_GE(check_page(dir, page, 640).nav, 2);
            // Each slide is headed by its picture's title.
            EXPECT_TRUE(read_text(dir + u'/' + page).contains("<h1>Picture "))
                << page.toStdString();
        }
    }
    ASSERT_EQ(publish("gallery", "Thumbnail Gallery", false), QStringList{"index.htm"});
    const Seen seen = check_page(dir, "index.htm", 100, "_tn.jpg");
    // The 96 x 72 photos are their own thumbnails; the rest have one made.
    EXPECT_EQ(seen.thumbnails, 6);
    EXPECT_EQ(seen.pictures, 8);

    // A frameset index over the pictures of its own directory.
    using namespace index_choice;
    const IndexRequest index{f.home.path("photos"),
                             kTopLeftRight,
                             kThumbnails,
                             false,
                             "Index Frameset Top/Left/Right",
                             "Index Top Frame",
                             "Index Left Frame",
                             "Index Right Frame",
                             "index.htm",
                             "top.htm",
                             "toc.htm",
                             "main.htm",
                             "100",
                             {}};
    ASSERT_FALSE(create_index(f.home.ctx, index, f.home.app.main_list).refused);
    published << index.target_directory;

    // The help page beside its pictures, as the program installs it.
    const QString data = QStringLiteral(QD_SOURCE_DIR) + "/data";
    const QString help = f.home.path("help");
    QDir().mkpath(help + "/help");
    ASSERT_TRUE(QFile::copy(data + "/qdhelp.htm", help + "/qdhelp.htm"));
    for (const QString& shot : QDir(data + "/help").entryList({"*.png"}, QDir::Files)) {
        ASSERT_TRUE(QFile::copy(data + "/help/" + shot, help + "/help/" + shot));
    }
    published << help;
    // Every link within the page has its target.
    const QString html = read_text(help + "/qdhelp.htm");
    for (auto it = QRegularExpression("href='#([^']+)'").globalMatch(html); it.hasNext();) {
        const QString id = it.next().captured(1);
        EXPECT_TRUE(html.contains("id='" + id + u'\'')) << id.toStdString();
    }

    const QString chromium = QStandardPaths::findExecutable("chromium");
    if (chromium.isEmpty()) {
        GTEST_SKIP() << "chromium is not installed: the browser checks need it (scripts/setup "
                        "installs it)";
    }
    for (const QString& directory : published) {
        EXPECT_EQ(check_in_browser(chromium, directory), "") << directory.toStdString();
    }
}
