// The delivered slide shows and gallery in a real browser: the pages made
// through the Web Pages run are opened together in headless Chromium, each in
// a frame of one checking page, and Chromium's own log names every file it is
// asked for; none may be missing. Links, which a browser follows only when
// clicked, are looked up on the disk, and the pictures measured there.
// Skipped only where Chromium is not installed.

#include "page_fixture.h"

#include "pages/web_page_run.h"

#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QUrl>

namespace {

// Opens the pages of `dir` in Chromium, expects every file it asked for to be
// there, and returns the pages.
QStringList open_in_browser(const QString& chromium, const QString& dir) {
    const QStringList pages = QDir(dir).entryList({"*.htm"}, QDir::Files, QDir::Name);
    QFile checker(dir + "/check.html");
    if (!checker.open(QIODevice::WriteOnly)) {
        return {};
    }
    for (const QString& page : pages) {
        checker.write(("<iframe src='" + page + "'></iframe>\n").toUtf8());
    }
    checker.close();
    QTemporaryDir profile;
    QProcess browser;
    browser.start(chromium, {"--headless", "--no-sandbox", "--disable-gpu",
                             "--disable-background-networking", "--disable-component-update",
                             "--no-first-run", "--user-data-dir=" + profile.path(),
                             "--enable-logging=stderr", "--vmodule=file_url_loader_factory=1",
                             "--allow-file-access-from-files", "--virtual-time-budget=30000",
                             "--dump-dom", QUrl::fromLocalFile(checker.fileName()).toString()});
    if (!browser.waitForFinished(180000)) {
        browser.kill();
        browser.waitForFinished();
        ADD_FAILURE() << "the browser did not finish";
    }
    static const QRegularExpression started("FileURLLoader::Start: (file://\\S+)");
    int asked = 0;
    for (auto it = started.globalMatch(QString::fromUtf8(browser.readAllStandardError()));
         it.hasNext(); ++asked) {
        const QString file = QUrl(it.next().captured(1)).toLocalFile();
        EXPECT_TRUE(QFileInfo(file).isFile()) << "missing: " << file.toStdString();
    }
    EXPECT_GT(asked, pages.size()) << "the browser's log names no pictures";
    return pages;
}

QStringList photos(PageFixture& f, const QString& folder, int count) {
    static const QSize shapes[] = {{800, 600}, {600, 800}, {1024, 683}, {96, 72}};
    QStringList out;
    for (int i = 0; i < count; ++i) {
        const QSize s = shapes[i % 4];
        out << f.home.write_image(
            QStringLiteral("%1/IMG_%2.jpg").arg(folder).arg(i + 1, 4, 10, QChar(u'0')), s.width(),
            s.height(), QColor::fromHsv((i * 37) % 360, 160, 200));
        f.put_file_row(out.last(), QStringLiteral("Picture %1").arg(i + 1),
                       QStringLiteral("Taken on day %1").arg(i + 1), "Tests");
    }
    return out;
}

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

}  // namespace

TEST(DeliveredTemplates, SlideShowsAndGalleryWorkInTheBrowser) {
    QString chromium = QStandardPaths::findExecutable("chromium");
    if (chromium.isEmpty()) {
        chromium = QStandardPaths::findExecutable("chromium-browser");
    }
    if (chromium.isEmpty()) {
        GTEST_SKIP() << "chromium is not installed: the browser checks need it";
    }
    PageFixture f;
    QString dir;
    const auto publish = [&](const QString& folder, const QString& name, bool slides,
                             const QStringList& files) {
        WebPageRequest r{.page = f.page,
                         .image_page = "index.htm",
                         .image_template = name,
                         .max_size = slides ? "640" : "0",
                         .thumbnail_size = "100",
                         .slide_show_loop = folder == "dark"};
        dir = r.page.target_directory = f.home.path(folder);
        QDir().mkpath(dir);
        r.page.make_slide_show = slides;
        r.page.slide_show_delay = "60";
        f.home.app.main_list.set_items(files);
        EXPECT_FALSE(create_web_pages(f.home.ctx, r, f.home.app.main_list).refused);
        return open_in_browser(chromium, dir);
    };
    const QStringList slides = photos(f, "slides", 20);
    for (const auto& [name, folder] :
         {std::pair{"Slide Show", "light"}, {"Slide Show Dark", "dark"}}) {
        SCOPED_TRACE(name);
        const QStringList pages = publish(folder, name, true, slides);
        ASSERT_EQ(pages.size(), 20);
        for (const QString& page : pages) {
            EXPECT_GE(check_page(dir, page, 640).nav, 2);
            // Each slide is headed by its picture's title.
            EXPECT_TRUE(read_text(dir + u'/' + page).contains("<h1>Picture "))
                << page.toStdString();
        }
    }

    ASSERT_EQ(publish("gallery_out", "Thumbnail Gallery", false, photos(f, "gallery", 60)),
              QStringList{"index.htm"});
    const Seen seen = check_page(dir, "index.htm", 100, "_tn.jpg");
    // The 96 x 72 photos are their own thumbnails; the rest have one made.
    EXPECT_EQ(seen.thumbnails, 45);
    EXPECT_EQ(seen.pictures, 60);
}
