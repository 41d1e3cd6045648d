// Published pages and the help page in a real browser: headless Chromium
// opens every page of a directory in a frame of a checking page, its log
// names each file it is asked for (none may be missing), and the checking
// page lists every picture, in frames at any depth, that the browser could
// not show; within the help page every link has its target. Skipped only
// where Chromium is not installed.

#include "page_fixture.h"

#include "pages/index_run.h"
#include "pages/web_page_run.h"

#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QUrl>

namespace {

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

TEST(Browser, SlideShowGalleryIndexAndHelpPageShowEverythingTheyReferTo) {
    QString chromium = QStandardPaths::findExecutable("chromium");
    if (chromium.isEmpty()) {
        GTEST_SKIP() << "chromium is not installed: the browser checks need it (scripts/setup "
                        "installs it)";
    }
    PageFixture f;
    QStringList photos;
    for (int i = 0; i < 6; ++i) {
        photos << f.home.write_image(QStringLiteral("index/IMG_%1.jpg").arg(i), 300 - 40 * i, 200,
                                     QColor::fromHsv(i * 50, 160, 200));
        f.put_file_row(photos.last(), QStringLiteral("Picture %1").arg(i), "", "Tests");
    }
    f.home.app.main_list.set_items(photos);
    for (const auto& [name, slides] :
         {std::pair{"Slide Show Dark", true}, {"Thumbnail Gallery", false}}) {
        WebPageRequest r{.page = f.page,
                         .image_page = "index.htm",
                         .image_template = name,
                         .max_size = "200",
                         .thumbnail_size = "100",
                         .slide_show_loop = true};
        r.page.target_directory = f.home.path(name);
        r.page.make_slide_show = slides;
        QDir().mkpath(r.page.target_directory);
        ASSERT_FALSE(create_web_pages(f.home.ctx, r, f.home.app.main_list).refused);
        EXPECT_EQ(check_in_browser(chromium, r.page.target_directory), "") << name;
    }
    // A frameset index over the pictures of its own directory.
    using namespace index_choice;
    const IndexRequest index{f.home.path("index"),
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
    EXPECT_EQ(check_in_browser(chromium, index.target_directory), "");

    // The help page beside its pictures, as the program installs it.
    const QString data = QStringLiteral(QD_SOURCE_DIR) + "/data";
    const QString help = f.home.path("help");
    QDir().mkpath(help + "/help");
    ASSERT_TRUE(QFile::copy(data + "/qdhelp.htm", help + "/qdhelp.htm"));
    for (const QString& shot : QDir(data + "/help").entryList({"*.png"}, QDir::Files)) {
        ASSERT_TRUE(QFile::copy(data + "/help/" + shot, help + "/help/" + shot));
    }
    EXPECT_EQ(check_in_browser(chromium, help), "");
    // Every link within the page has its target.
    const QString html = read_text(help + "/qdhelp.htm");
    for (auto it = QRegularExpression("href='#([^']+)'").globalMatch(html); it.hasNext();) {
        const QString id = it.next().captured(1);
        EXPECT_TRUE(html.contains("id='" + id + u'\'')) << id.toStdString();
    }
}
