// The delivered templates in a real browser: a slide show and a gallery made
// through the Web Pages run, and the indexes of the Index run, are opened in
// headless Chromium by a small checking page of the test's own, which loads
// every page in a frame and reports each picture, frame and link. Chromium's
// own log names every file it is asked for, and none may be missing.
// Skipped only where Chromium is not installed.

#include "page_fixture.h"

#include "pages/index_run.h"
#include "pages/web_page_run.h"
#include "support/qt_print.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
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
// A picture is loaded anew, and when it shows no size, once more under a
// query of its own: the browser now and then keeps a picture that two frames
// load at once without its size, while a file that is missing or broken
// fails both times.
function picture(record, url, again = false) {
  pending++;
  const im = new Image();
  const seen = () => {
    if (im.naturalWidth > 0 || again) {
      Object.assign(record, { ok: im.naturalWidth > 0, width: im.naturalWidth,
                              height: im.naturalHeight });
    } else {
      picture(record, url + '?again', true);
    }
    finish();
  };
  im.onload = seen;
  im.onerror = seen;
  im.src = url;
}
for (const page of pages) {
  const frame = document.createElement('iframe');
  frame.onload = () => {
    frame.onload = null;
    const d = frame.contentDocument;
    const r = { page, title: d ? d.title : '', images: [], links: [], frames: [], rows: 0,
                refresh: null };
    results.push(r);
    for (const img of d ? d.images : []) {
      const pic = { src: img.src };
      r.images.push(pic);
      picture(pic, img.src);
    }
    for (const a of d ? d.querySelectorAll('a[href]') : []) {
      const link = { text: a.textContent.trim(), href: a.href };
      r.links.push(link);
      probe(link, a.href);
    }
    for (const f of d ? d.querySelectorAll('frame[src]') : []) {
      const sub = { href: new URL(f.getAttribute('src'), d.baseURI).href };
      r.frames.push(sub);
      probe(sub, sub.href);
    }
    r.rows = d ? d.querySelectorAll('tr').length : 0;
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

const char* kNoChromium =
    "chromium is not installed: the browser checks need it (scripts/setup installs it)";

QString find_chromium() {
    const QString path = QStandardPaths::findExecutable("chromium");
    return path.isEmpty() ? QStandardPaths::findExecutable("chromium-browser") : path;
}

// Runs the checker over the pages of `directory` and returns its report.
// `missing` gets every file that the browser asked for and that is not there.
QJsonArray check_in_browser(const QString& chromium, const QString& directory, QStringList& pages,
                            QStringList* missing = nullptr) {
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
                             "--enable-logging=stderr", "--vmodule=file_url_loader_factory=1",
                             "--allow-file-access-from-files", "--virtual-time-budget=30000",
                             "--dump-dom", QUrl::fromLocalFile(checker.fileName()).toString()});
    if (!browser.waitForFinished(180000)) {
        browser.kill();
        browser.waitForFinished();
        return {};
    }
    const QString dom = QString::fromUtf8(browser.readAllStandardOutput());
    static const QRegularExpression started("FileURLLoader::Start: (file://\\S+)");
    auto requests = started.globalMatch(QString::fromUtf8(browser.readAllStandardError()));
    while (missing && requests.hasNext()) {
        const QString file = QUrl(requests.next().captured(1)).toLocalFile();
        if (!QFileInfo(file).isFile()) {
            *missing << file;
        }
    }
    const QRegularExpressionMatch m =
        QRegularExpression("<pre id=\"result\">(.*)</pre>",
                           QRegularExpression::DotMatchesEverythingOption)
            .match(dom);
    QString json = m.captured(1);
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

// Expects every entry of `list` to have come; returns how many of them name a
// file whose name ends in `suffix`.
int all_came(const QJsonValue& list, const QString& suffix = {}) {
    int n = 0;
    for (const QJsonValue& v : list.toArray()) {
        EXPECT_TRUE(came(v));
        const QJsonObject o = v.toObject();
        n += (o.contains("src") ? o["src"] : o["href"]).toString().endsWith(suffix) ? 1 : 0;
    }
    return n;
}

int longest_side(const QJsonValue& image) {
    return std::max(image.toObject()["width"].toInt(), image.toObject()["height"].toInt());
}

}  // namespace

TEST(DeliveredTemplates, SlideShowsAndGalleryWorkInTheBrowser) {
    const QString chromium = find_chromium();
    if (chromium.isEmpty()) {
        GTEST_SKIP() << kNoChromium;
    }
    PageFixture f;
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
            all_came(page["requests"]);
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
    EXPECT_EQ(all_came(page["links"], ".jpg"), 60);
    all_came(page["requests"]);
}

TEST(DeliveredTemplates, IndexesWorkInTheBrowser) {
    const QString chromium = find_chromium();
    if (chromium.isEmpty()) {
        GTEST_SKIP() << kNoChromium;
    }
    using namespace index_choice;
    for (const auto& [frame_type, index_type, frameset, pages_made] :
         {std::tuple{kNoFrames, kThumbnails, "Index No Frames", 1},
          std::tuple{kTopLeftRight, kThumbnails, "Index Frameset Top/Left/Right", 4},
          std::tuple{kLeftRight, kFileNames, "Index Frameset Left/Right", 3}}) {
        SCOPED_TRACE(frameset);
        PageFixture f;
        // The index takes the pictures to lie in its directory already.
        f.home.app.main_list.set_items(photos(f, "index", 12));
        IndexRequest r{f.home.path("index"),
                       frame_type,
                       index_type,
                       frame_type == kNoFrames,
                       frameset,
                       "Index Top Frame",
                       "Index Left Frame",
                       "Index Right Frame",
                       "index.htm",
                       "top.htm",
                       "toc.htm",
                       "main.htm",
                       "100",
                       {}};
        ASSERT_FALSE(create_index(f.home.ctx, r, f.home.app.main_list).refused);

        QStringList pages, missing;
        const QJsonArray report = check_in_browser(chromium, r.target_directory, pages, &missing);
        ASSERT_EQ(report.size(), pages_made) << "the checking page did not report";
        EXPECT_EQ(missing, QStringList());
        int rows = 0, pictures = 0, thumbnails = 0, frames = 0;
        for (const QJsonValue& v : report) {
            const QJsonObject page = v.toObject();
            SCOPED_TRACE(page["page"].toString().toStdString());
            rows += page["rows"].toInt();
            frames += all_came(page["frames"]);
            for (const QJsonValue& img : page["images"].toArray()) {
                EXPECT_TRUE(came(img));
                EXPECT_LE(longest_side(img), 100);
                thumbnails += img.toObject()["src"].toString().endsWith("_tn.jpg") ? 1 : 0;
            }
            pictures += all_came(page["links"], ".jpg");
        }
        // A row and a link for each picture, and every frame of the frameset.
        EXPECT_EQ(rows, 12);
        EXPECT_EQ(pictures, 12);
        EXPECT_EQ(frames, pages_made - 1);
        // The 96 x 72 photos are their own thumbnails.
        EXPECT_EQ(thumbnails, index_type == kThumbnails ? 9 : 0);
    }
}

// The help page as the program installs it, beside its pictures: every
// picture of a tab shows, every link leads somewhere that exists on the page
// or beside it, and nothing it asks for is missing.
TEST(HelpPage, WorksInTheBrowser) {
    const QString chromium = find_chromium();
    if (chromium.isEmpty()) {
        GTEST_SKIP() << kNoChromium;
    }
    QTemporaryDir dir;
    const QString data = QStringLiteral(QD_SOURCE_DIR) + "/data";
    ASSERT_TRUE(QFile::copy(data + "/qdhelp.htm", dir.filePath("qdhelp.htm")));
    QDir().mkpath(dir.filePath("help"));
    const QStringList shots = QDir(data + "/help").entryList({"*.png"}, QDir::Files);
    for (const QString& shot : shots) {
        ASSERT_TRUE(QFile::copy(data + "/help/" + shot, dir.filePath("help/" + shot)));
    }

    QStringList pages, missing;
    const QJsonArray report = check_in_browser(chromium, dir.path(), pages, &missing);
    ASSERT_EQ(report.size(), 1) << "the checking page did not report";
    EXPECT_EQ(missing, QStringList());
    const QJsonObject page = report.first().toObject();
    const QString text = read_text(dir.filePath("qdhelp.htm"));
    QStringList shown;
    for (const QJsonValue& img : page["images"].toArray()) {
        EXPECT_TRUE(came(img));
        EXPECT_GT(img.toObject()["width"].toInt(), 0);
        shown << QFileInfo(QUrl(img.toObject()["src"].toString()).toLocalFile()).fileName();
    }
    // A picture of every tab is on the page.
    shown.sort();
    EXPECT_EQ(shown, shots);
    for (const QJsonValue& link : page["links"].toArray()) {
        const QUrl href(link.toObject()["href"].toString());
        EXPECT_TRUE(came(link)) << href.toString().toStdString();
        if (href.hasFragment()) {
            EXPECT_TRUE(text.contains(QRegularExpression(
                "(id|name)=['\"]" + QRegularExpression::escape(href.fragment()) + "['\"]")))
                << "no place named " << href.fragment().toStdString();
        }
    }
}
