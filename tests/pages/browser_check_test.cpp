// The delivered templates in a real browser: a slide show and a gallery made
// through the Web Pages run are opened in headless Chromium by a small checking
// page of the test's own, which loads every page in a frame and reports each
// picture and each link. Skipped only where Chromium is not installed.

#include "page_fixture.h"

#include "pages/web_page_run.h"
#include "support/qt_print.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QUrl>

#include <gtest/gtest.h>

namespace {

// Loads each page in a frame, once; lists its pictures (loaded or not), its
// links, the other files it asks for and its refresh target; then asks for
// each of those and notes whether the file came. The result goes into the page as JSON.
const char* kChecker = R"(<!DOCTYPE html>
<html><head><meta charset='utf-8'></head><body><pre id='result'>pending</pre><script>
const pages = %1, results = [];
let pending = pages.length;
function finish() {
  if (--pending === 0) document.getElementById('result').textContent = JSON.stringify(results);
}
function probe(record, url) {
  pending++;
  const x = new XMLHttpRequest();
  x.responseType = 'arraybuffer';
  x.onload = () => { record.ok = x.response !== null && x.response.byteLength > 0; finish(); };
  x.onerror = () => { record.ok = false; finish(); };
  try { x.open('GET', url); x.send(); } catch (e) { record.ok = false; finish(); }
}
for (const page of pages) {
  const frame = document.createElement('iframe');
  frame.onload = () => {
    frame.onload = null;
    const d = frame.contentDocument;
    const r = { page, title: d ? d.title : '', images: [], links: [], refresh: null };
    results.push(r);
    for (const img of d ? d.images : [])
      r.images.push({ src: img.src, ok: img.complete && img.naturalWidth > 0,
                      width: img.naturalWidth, height: img.naturalHeight });
    for (const a of d ? d.querySelectorAll('a[href]') : []) {
      const link = { text: a.textContent.trim(), href: a.href };
      r.links.push(link);
      probe(link, a.href);
    }
    // Every other file the page asks for: style sheets, scripts and each
    // element's background pictures.
    r.requests = [];
    for (const el of d ? d.querySelectorAll('*') : []) {
      const urls = [];
      if (el.matches("link[href], script[src]")) urls.push(el.href || el.src);
      const bg = frame.contentWindow.getComputedStyle(el).backgroundImage;
      for (const m of bg.matchAll(/url\(["']?([^"')]*)["']?\)/g)) urls.push(m[1]);
      for (const url of urls) {
        const request = { href: url };
        r.requests.push(request);
        probe(request, url);
      }
    }
    const meta = d && d.querySelector("meta[http-equiv='refresh']");
    if (meta) {
      const m = /url=(.*)$/i.exec(meta.getAttribute('content'));
      r.refresh = { href: new URL(m ? m[1] : '', d.baseURI).href };
      probe(r.refresh, r.refresh.href);
    }
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

// Runs the checker over the pages of `directory` and returns its report.
QJsonArray check_in_browser(const QString& chromium, const QString& directory, QStringList& pages) {
    pages = QDir(directory).entryList({"*.htm"}, QDir::Files, QDir::Name);
    pages.removeAll("check.htm");
    QFile checker(directory + "/check.htm");
    if (!checker.open(QIODevice::WriteOnly)) {
        return {};
    }
    checker.write(
        QString::fromLatin1(kChecker)
            .arg(QString::fromUtf8(
                QJsonDocument(QJsonArray::fromStringList(pages)).toJson(QJsonDocument::Compact)))
            .toUtf8());
    checker.close();

    QTemporaryDir profile;
    QProcess browser;
    browser.start(chromium, {"--headless", "--no-sandbox", "--disable-gpu",
                             "--disable-background-networking", "--disable-component-update",
                             "--no-first-run", "--user-data-dir=" + profile.path(),
                             "--allow-file-access-from-files", "--virtual-time-budget=30000",
                             "--dump-dom", QUrl::fromLocalFile(checker.fileName()).toString()});
    if (!browser.waitForFinished(180000)) {
        browser.kill();
        browser.waitForFinished();
        return {};
    }
    const QString dom = QString::fromUtf8(browser.readAllStandardOutput());
    const QRegularExpressionMatch m =
        QRegularExpression("<pre id=\"result\">(.*)</pre>",
                           QRegularExpression::DotMatchesEverythingOption)
            .match(dom);
    QString json = m.captured(1);
    json.replace("&lt;", "<").replace("&gt;", ">").replace("&amp;", "&");
    return QJsonDocument::fromJson(json.toUtf8()).array();
}

// Writes `count` photos of a few shapes, each with its catalog row.
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

WebPageRequest request_for(PageFixture& f, const QString& target, const QString& template_name,
                           bool slides) {
    QDir().mkpath(target);
    WebPageRequest r;
    r.page = f.page;
    r.page.target_directory = target;
    r.page.make_slide_show = slides;
    r.page.slide_show_delay = "60";
    r.image_page = "index.htm";
    r.image_template = template_name;
    r.max_size = "640";
    r.thumbnail_size = "100";
    return r;
}

bool is_nav(const QString& text) {
    static const QRegularExpression nav("\\b(First|Previous|Next|Last)\\b");
    return nav.match(text).hasMatch();
}

// Whether the browser got the picture or file of `v`; names it when not.
::testing::AssertionResult came(const QJsonValue& v) {
    const QJsonObject o = v.toObject();
    if (o["ok"].toBool()) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure()
           << (o.contains("src") ? o["src"] : o["href"]).toString().toStdString();
}

int longest_side(const QJsonValue& image) {
    return std::max(image.toObject()["width"].toInt(), image.toObject()["height"].toInt());
}

}  // namespace

TEST(DeliveredTemplates, SlideShowsAndGalleryWorkInTheBrowser) {
    const QString chromium = find_chromium();
    if (chromium.isEmpty()) {
        GTEST_SKIP() << "chromium is not installed: the browser check of the delivered templates "
                        "needs it (scripts/setup installs it)";
    }
    PageFixture f;
    // Makes the pages of `r` over `files` and opens them in the browser.
    QStringList pages;
    const auto publish = [&](WebPageRequest r, const QStringList& files) {
        f.home.app.main_list.set_items(files);
        EXPECT_FALSE(create_web_pages(f.home.ctx, r, f.home.app.main_list).refused);
        return check_in_browser(chromium, r.page.target_directory, pages);
    };
    const QStringList slides = photos(f, "slides", 20);

    for (const auto& [name, folder, loop] :
         {std::tuple{"Slide Show", "light", false}, std::tuple{"Slide Show Dark", "dark", true}}) {
        SCOPED_TRACE(name);
        WebPageRequest r = request_for(f, f.home.path(QLatin1String(folder)), name, true);
        r.slide_show_loop = loop;
        const QJsonArray report = publish(r, slides);
        ASSERT_EQ(pages.size(), 20);
        ASSERT_EQ(report.size(), 20) << "the checking page did not report";
        for (const QJsonValue& v : report) {
            const QJsonObject page = v.toObject();
            SCOPED_TRACE(page["page"].toString().toStdString());
            const QJsonArray images = page["images"].toArray();
            ASSERT_EQ(images.size(), 1);
            EXPECT_TRUE(came(images[0]));
            EXPECT_LE(longest_side(images[0]), 640);  // resized within the limit
            int nav = 0;
            for (const QJsonValue& link : page["links"].toArray()) {
                if (is_nav(link.toObject()["text"].toString())) {
                    ++nav;
                    EXPECT_TRUE(came(link));
                }
            }
            EXPECT_GE(nav, 2);
            if (!page["refresh"].isNull()) {
                EXPECT_TRUE(came(page["refresh"]));
            }
            for (const QJsonValue& request : page["requests"].toArray()) {
                EXPECT_TRUE(came(request));
            }
            // Each slide is named by its picture.
            EXPECT_TRUE(page["title"].toString().startsWith("Picture "))
                << page["title"].toString().toStdString();
        }
    }

    WebPageRequest r = request_for(f, f.home.path("gallery_out"), "Thumbnail Gallery", false);
    r.max_size = "0";
    const QJsonArray report = publish(r, photos(f, "gallery", 60));
    ASSERT_EQ(pages, QStringList{"index.htm"});
    ASSERT_EQ(report.size(), 1) << "the checking page did not report";
    const QJsonObject page = report[0].toObject();
    const QJsonArray images = page["images"].toArray();
    int thumbnails = 0;
    for (const QJsonValue& img : images) {
        EXPECT_TRUE(came(img));
        if (img.toObject()["src"].toString().endsWith("_tn.jpg")) {
            ++thumbnails;
            EXPECT_LE(longest_side(img), 100);
        }
    }
    // The 96 x 72 photos are their own thumbnails; the rest have one made.
    EXPECT_EQ(thumbnails, 45);
    EXPECT_GE(images.size(), 60);
    int pictures = 0;
    for (const QJsonValue& link : page["links"].toArray()) {
        EXPECT_TRUE(came(link));
        pictures += link.toObject()["href"].toString().endsWith(".jpg") ? 1 : 0;
    }
    EXPECT_EQ(pictures, 60);
    for (const QJsonValue& request : page["requests"].toArray()) {
        EXPECT_TRUE(came(request));
    }
}
