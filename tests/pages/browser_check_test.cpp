// The delivered templates in a real browser: a slide show and a gallery made
// through the Web Pages run are opened in headless Chromium by a small checking page of the test's
// own, which loads every page in a frame and reports each picture and link. Chromium's own log
// names every file it is asked for, and none may be missing. Skipped only where Chromium is not
// installed.

#include "page_fixture.h"

#include "pages/web_page_run.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QUrl>

namespace {

const char* kChecker = R"(<!DOCTYPE html>
<html><head><meta charset='utf-8'></head><body><pre id='result'>pending</pre><script>
const pages = %1, results = [];
let pending = pages.length;
function finish() {
  if (--pending === 0) document.getElementById('result').textContent = JSON.stringify(results);
}
// A picture that shows no size is loaded once more under a query of its own:
// the browser now and then keeps a picture that two frames load at once
// without its size, while a file that is missing or broken fails both times.
function picture(record, url, again = false) {
  pending++;
  const im = new Image();
  im.onload = im.onerror = () => {
    if (im.naturalWidth > 0 || again) {
      Object.assign(record, { width: im.naturalWidth, height: im.naturalHeight });
    } else {
      picture(record, url + '?again', true);
    }
    finish();
  };
  im.src = url;
}
for (const page of pages) {
  const frame = document.createElement('iframe');
  frame.onload = () => {
    frame.onload = null;
    const d = frame.contentDocument, all = (q, f) => Array.from(d.querySelectorAll(q), f);
    const meta = d.querySelector("meta[http-equiv='refresh']");
    const r = { page, title: d.title,
      links: all('a[href]', a => ({ text: a.textContent.trim(), href: a.href })),
      refresh: meta ? new URL(/url=(.*)$/i.exec(meta.content)[1], d.baseURI).href : '',
      images: all('img', img => ({ src: img.src })) };
    r.images.forEach(pic => picture(pic, pic.src));
    results.push(r);
    finish();
  };
  frame.src = page;
  document.body.appendChild(frame);
}
</script></body></html>
)";

QString find_chromium() {
    const QString path = QStandardPaths::findExecutable("chromium");
    return path.isEmpty() ? QStandardPaths::findExecutable("chromium-browser") : path;
}

// Runs the checker over the pages of `directory` and returns its report;
// expects every file that the browser asked for to be there.
QJsonArray check_in_browser(const QString& chromium, const QString& directory, QStringList& pages) {
    pages = QDir(directory).entryList({"*.htm"}, QDir::Files, QDir::Name);
    pages.removeAll("check.htm");
    QFile checker(directory + "/check.htm");
    if (!checker.open(QIODevice::WriteOnly)) {
        return {};
    }
    const QJsonDocument names(QJsonArray::fromStringList(pages));
    checker.write(QString::fromLatin1(kChecker)
                      .arg(QString::fromUtf8(names.toJson(QJsonDocument::Compact)))
                      .toUtf8());
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
        return {};
    }
    static const QRegularExpression started("FileURLLoader::Start: (file://\\S+)");
    auto requests = started.globalMatch(QString::fromUtf8(browser.readAllStandardError()));
    while (requests.hasNext()) {
        const QString file = QUrl(requests.next().captured(1)).toLocalFile();
        EXPECT_TRUE(QFileInfo(file).isFile()) << "missing: " << file.toStdString();
    }
    static const QRegularExpression result("<pre id=\"result\">(.*)</pre>",
                                           QRegularExpression::DotMatchesEverythingOption);
    QString json = result.match(QString::fromUtf8(browser.readAllStandardOutput())).captured(1);
    json.replace("&lt;", "<").replace("&gt;", ">").replace("&amp;", "&");
    return QJsonDocument::fromJson(json.toUtf8()).array();
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

// Expects every picture of a page to show, those whose names end in
// `limited` within `limit` pixels, and the file of every link and refresh
// to be there; counts what it saw.
Seen check_page(const QJsonValue& page, int limit, const QString& limited = {}) {
    SCOPED_TRACE(page["page"].toString().toStdString());
    Seen seen;
    for (const QJsonValue& img : page["images"].toArray()) {
        const QString src = img["src"].toString();
        EXPECT_GT(img["width"].toInt(), 0) << src.toStdString();
        if (src.endsWith(limited)) {
            EXPECT_LE(std::max(img["width"].toInt(), img["height"].toInt()), limit);
        }
        seen.thumbnails += src.endsWith("_tn.jpg");
    }
    static const QRegularExpression nav("\\b(First|Previous|Next|Last)\\b");
    QStringList targets{page["refresh"].toString()};
    for (const QJsonValue& link : page["links"].toArray()) {
        targets << link["href"].toString();
        seen.pictures += targets.last().endsWith(".jpg");
        seen.nav += nav.match(link["text"].toString()).hasMatch();
    }
    for (const QString& t : targets) {
        EXPECT_TRUE(t.isEmpty() || QFileInfo(QUrl(t).toLocalFile()).isFile()) << t.toStdString();
    }
    return seen;
}

}  // namespace

TEST(DeliveredTemplates, SlideShowsAndGalleryWorkInTheBrowser) {
    const QString chromium = find_chromium();
    if (chromium.isEmpty()) {
        GTEST_SKIP() << "chromium is not installed: the browser checks need it";
    }
    PageFixture f;
    QStringList pages;
    const auto publish = [&](const QString& folder, const QString& name, bool slides,
                             const QStringList& files) {
        WebPageRequest r{.page = f.page,
                         .image_page = "index.htm",
                         .image_template = name,
                         .max_size = slides ? "640" : "0",
                         .thumbnail_size = "100",
                         .slide_show_loop = folder == "dark"};
        r.page.target_directory = f.home.path(folder);
        QDir().mkpath(r.page.target_directory);
        r.page.make_slide_show = slides;
        r.page.slide_show_delay = "60";
        f.home.app.main_list.set_items(files);
        EXPECT_FALSE(create_web_pages(f.home.ctx, r, f.home.app.main_list).refused);
        return check_in_browser(chromium, r.page.target_directory, pages);
    };
    const QStringList slides = photos(f, "slides", 20);
    for (const auto& [name, folder] :
         {std::pair{"Slide Show", "light"}, {"Slide Show Dark", "dark"}}) {
        SCOPED_TRACE(name);
        const QJsonArray report = publish(folder, name, true, slides);
        ASSERT_EQ(pages.size(), 20);
        ASSERT_EQ(report.size(), 20) << "the checking page did not report";
        for (const QJsonValue& page : report) {
            EXPECT_EQ(page["images"].toArray().size(), 1);
            EXPECT_GE(check_page(page, 640).nav, 2);
            // Each slide is named by its picture.
            EXPECT_TRUE(page["title"].toString().startsWith("Picture "));
        }
    }

    const QJsonArray report =
        publish("gallery_out", "Thumbnail Gallery", false, photos(f, "gallery", 60));
    ASSERT_EQ(pages, QStringList{"index.htm"});
    ASSERT_EQ(report.size(), 1) << "the checking page did not report";
    const Seen seen = check_page(report[0], 100, "_tn.jpg");
    // The 96 x 72 photos are their own thumbnails; the rest have one made.
    EXPECT_EQ(seen.thumbnails, 45);
    EXPECT_GE(report[0]["images"].toArray().size(), 60);
    EXPECT_EQ(seen.pictures, 60);
}
