#include "page_fixture.h"

#include "pages/tag_text.h"

#include <QImage>
#include <QRegularExpression>

#include <sys/inotify.h>
#include <unistd.h>

namespace {

TemplateSections sections(const QString& name, const QString& header, const QString& image1,
                          const QString& image2 = {}, const QString& footer = {}) {
    return {name, header, {}, image1, image2, {}, footer, {}};
}


// How many times files of these names are made in `dir` while `run` runs.
int times_made(const QString& dir, const QStringList& names, const std::function<void()>& run) {
    const int fd = inotify_init1(IN_NONBLOCK);
    inotify_add_watch(fd, QFile::encodeName(dir).constData(), IN_CREATE);
    run();
    int made = 0;
    alignas(inotify_event) char buf[16384];
    for (ssize_t len; (len = read(fd, buf, sizeof buf)) > 0;) {
        for (char* p = buf; p < buf + len;
             p += sizeof(inotify_event) + reinterpret_cast<inotify_event*>(p)->len) {
            const auto* e = reinterpret_cast<inotify_event*>(p);
            made += e->len > 0 && names.contains(QFile::decodeName(e->name));
        }
    }
    close(fd);
    return made;
}

}  // namespace

TEST(ExpandTemplate, EveryFileTagOfOneFileInItsOrder) {
    PageFixture f;
    const QString photo = f.home.write_image("source/photo.jpg", 40, 30);
    f.put_file_row(photo, "Sunset", "Red sky", "Trips");
    f.put_template(sections(
        "tags", "<title>[title]</title>",
        "[catalog]|[counter]|[description]|[filename]|[filepath]|[href_local_filename]</a>|"
        "[href_web_filename]</a>|[filesize]|[imgpixel]|[imgpixelh]|[imgpixelw]|[imgsrc]|[title]|"
        "[time]|[date]|[thumbnail]|[topframefilename]"));
    QString page = f.expand("tags", {photo});
    page.replace(QRegularExpression("\\d\\d:\\d\\d:\\d\\d"), "<time>");
    page.replace(QRegularExpression("\\d\\d-\\d\\d-\\d{4}"), "<date>");
    const QString staged = f.target + "/photo.jpg";
    // [title] is no header tag, and some tags are not this engine's.
    EXPECT_EQ(page,
              "<title>[title]</title>\r\n"
              "Trips|1|Red sky|photo.jpg|" +
                  f.source + "/|<a href='" + staged + "'>" + staged +
                  "</a>|<a href='photo.jpg'>photo.jpg</a>|" +
                  QString::number(QFileInfo(photo).size()) +
                  "| 30 X  40| 30| 40|<img src='photo.jpg'>|Sunset|<time>|<date>|[thumbnail]|"
                  "[topframefilename]\r\n\r\n\r\n");
    // The file is staged beside the page, byte for byte.
    EXPECT_EQ(read_bytes(staged), read_bytes(photo));
    EXPECT_TRUE(f.home.ui.statuses.contains("Copying " + photo));
}

TEST(ExpandTemplate, GroupsFillTheCellsOfARowAndTheLastGroupRunsOutEmpty) {
    PageFixture f;
    QStringList files;
    for (const char* name : {"a", "b", "c", "d", "e"}) {
        files << f.home.write_image(QStringLiteral("source/%1.jpg").arg(QLatin1String(name)), 8, 8);
        f.put_file_row(files.last(), QStringLiteral("T-%1").arg(QLatin1String(name)), "", "");
    }
    f.put_template({"row", "H", "<tr>", "<td>[imgsrc]</td><td>[IMGSRC]</td><td>[imgsrc]</td>",
                    "[counter] [counter] [counter]|[title] [title] [title] [title]", "</tr>", "F",
                    ""});
    const QString page = f.expand("row", files);
    EXPECT_EQ(
        page,
        "H\r\n"
        "<tr>\r\n<td><img src='a.jpg'></td><td><img src='b.jpg'></td><td><img src='c.jpg'></td>\r\n"
        "1 2 3|T-a T-b T-c [title]\r\n</tr>\r\n"
        "<tr>\r\n<td><img src='d.jpg'></td><td><img src='e.jpg'></td><td></td>\r\n"
        "4 5 |T-d T-e  [title]\r\n</tr>\r\n"
        "F\r\n");

    // [counter] in both per-file sections: the first section counts the
    // group's files, the second goes on from there.
    // Each file is staged for both sections but copied once.
    f.put_template(
        sections("count", "", "[imgsrc][imgsrc][counter]-[counter]", "[counter]-[counter]"));
    QString counted;
    EXPECT_EQ(times_made(f.target, {"a.jpg", "b.jpg"},
                         [&] { counted = f.expand("count", files.mid(0, 2)); }),
              2);
    EXPECT_EQ(counted, "\r\n<img src='a.jpg'><img src='b.jpg'>1-2\r\n3-4\r\n\r\n");
}

TEST(ExpandTemplate, ThumbnailTagsCountAsImageTagsAndMakeThumbnails) {
    PageFixture f;
    const QString big = f.home.write_image("source/big.jpg", 300, 200);
    const QString small = f.home.write_image("source/small.jpg", 80, 60);
    const QString hidden = f.home.write_image("source/hidden.jpg", 50, 50);
    // One [imgsrc] and one [timgsrc]: groups of two, and the first file of
    // the group fills both, so the second one shows nowhere.
    f.put_template(sections("thumbs", "", "[timgsrc]|[imgsrc]"));
    f.home.app.thumbnail_target_directory.clear();
    const QString page = f.expand("thumbs", {big, hidden, small});
    EXPECT_EQ(page,
              "\r\n<a href='big.jpg'><img src='big_tn.jpg'></a>|<img src='big.jpg'>\r\n\r\n"
              "<a href='small.jpg'><img src='small.jpg'></a>|<img src='small.jpg'>\r\n\r\n\r\n");
    // An empty thumbnail directory becomes the directory of the staged file.
    EXPECT_EQ(f.home.app.thumbnail_target_directory, f.target + "/");
    EXPECT_EQ(image_size(f.target + "/big_tn.jpg").width(), 100);
    // Staged though not shown; a small image is its own thumbnail.
    EXPECT_TRUE(QFileInfo::exists(f.target + "/hidden.jpg"));
    EXPECT_FALSE(QFileInfo::exists(f.target + "/small_tn.jpg"));
}

TEST(ExpandTemplate, LargeWebImagesAreResizedOthersCopied) {
    PageFixture f;
    const QString wide = f.home.write_image("source/wide.jpg", 800, 600);
    const QString fits = f.home.write_image("source/fits.jpg", 600, 600);
    // A picture under a ".gif" name (PNG inside, which the reader recognises).
    const QString anim = f.source + "/anim.gif";
    QFile::rename(f.home.write_image("source/anim.png", 700, 100), anim);
    const QString bmp = f.home.write_image("source/plain.bmp", 900, 900);
    f.put_template(sections("sizes", "", "[imgsrc]|[imgpixel]"));
    const QString page = f.expand("sizes", {wide, fits, anim, bmp}, "600");
    // 600 high and 800 wide is over the width limit; 600 x 600 is not over.
    EXPECT_EQ(image_size(f.target + "/wide.jpg"), QSize(600, 450));
    EXPECT_EQ(read_bytes(f.target + "/fits.jpg"), read_bytes(fits));
    // A GIF comes out as a JPEG and the page names the JPEG.
    EXPECT_EQ(image_size(f.target + "/anim.jpg"), QSize(600, 86));
    // Not a web image: copied whatever its size, named bare.
    EXPECT_EQ(page,
              "\r\n<img src='wide.jpg'>| 600 X  800\r\n\r\n"
              "<img src='fits.jpg'>| 600 X  600\r\n\r\n"
              "<img src='anim.jpg'>| 100 X  700\r\n\r\n"
              // The size tags read what the worker holds: the GIF before it.
              "plain.bmp| 100 X  700\r\n\r\n\r\n");
}

TEST(ExpandTemplate, IncludesComeInWhereTheirSectionsChainRunsThem) {
    PageFixture f;
    const QString photo = f.home.write_image("source/p.jpg", 8, 8);
    f.put_file_row(photo, "Sunset", "", "Trips");
    const QString inc = f.home.write_file("parts/tags.inc", "([title] [catalog] [bgcolor])\r\n");
    f.page.background_color = "#FFFFFF";
    const QString tag = "[include=" + inc + "]";
    f.put_template(
        {"inc", tag, tag, tag, "", "[include=" + f.home.path("missing.inc") + "]end", tag, ""});
    // The header chain includes first, so [bgcolor] of the file is filled;
    // the file chain includes after [catalog] and before [title]; pre-, post-
    // and footer sections only include.
    EXPECT_EQ(f.expand("inc", {photo}),
              "([title] [catalog] #FFFFFF)\r\n([title] [catalog] [bgcolor])\r\n"
              "(Sunset [catalog] [bgcolor])\r\n\r\nend\r\n([title] [catalog] [bgcolor])\r\n");

    // An include reaches the page file byte for byte, whatever its encoding.
    const QString latin1 = f.home.write_file("parts/latin1.inc", QByteArray("caf\xE9\r\n"));
    f.put_template(sections("bytes", "<p>[include=" + latin1 + "]</p>", ""));
    f.expand("bytes", {});
    EXPECT_EQ(read_bytes(f.output), QByteArray("<p>caf\xE9</p>\r\n\r\n"));
}

TEST(ExpandTemplate, RefreshLineBranches) {
    PageFixture f;
    f.page.make_slide_show = true;
    f.page.slide_show_delay = "7";
    const QStringList links = {"b.htm", "", "a.htm", "c.htm"};
    const auto header_of = [&](const QString& header, const QStringList& l) {
        f.put_template(sections("refresh", header, ""));
        return f.expand("refresh", {}, QString(), "no", l);
    };
    EXPECT_EQ(header_of("<html><HEAD><title>x</title></head>", links),
              "<html><HEAD>\r\n<meta http-equiv='refresh' content='7; url=b.htm'>\r\n"
              "<title>x</title></head>\r\n\r\n");
    // With <html> alone the line points at the fixed page x.htm.
    EXPECT_EQ(
        header_of("<html><body>", links),
        "<html>\r\n<head>\r\n<meta http-equiv='refresh' content='7; url=x.htm'>\r\n</head>\r\n"
        "<body>\r\n\r\n");
    // No following page: no refresh line.
    EXPECT_EQ(header_of("<head></head>", {"", "", "a.htm", "c.htm"}), "<head></head>\r\n\r\n");
}

TEST(ExpandTemplate, FooterChainOnlyOnSlidePages) {
    PageFixture f;
    const QString photo = f.home.write_image("source/p.jpg", 8, 8);
    const QString footer = "[firstslide]|[lastslide]|[nextslide]|[previousslide]|[slidenav]|[date]";
    f.put_template(sections("nav", "", "", "", footer));
    f.page.make_slide_show = true;
    // A middle page.
    EXPECT_EQ(f.expand("nav", {photo}, "", "no", {"c.htm", "/t/a.htm", "a.htm", "d.htm"}),
              "\r\n\r\n\r\na.htm|d.htm|c.htm|/t/a.htm|"
              "<a href='a.htm'>First</a>&nbsp;<a href='/t/a.htm'>Previous</a>&nbsp;"
              "<a href='c.htm'>Next</a>&nbsp;<a href='d.htm'>Last</a>&nbsp;|\r\n");
    // The last page of a show falls back on the ends.
    EXPECT_EQ(f.expand("nav", {photo}, "", "no", {"", "/t/c.htm", "a.htm", "d.htm"}),
              "\r\n\r\n\r\na.htm|d.htm|d.htm|/t/c.htm|"
              "<a href='a.htm'>First</a>&nbsp;<a href='/t/c.htm'>Previous</a>&nbsp;|\r\n");
    // Not a slide show: the footer's tags go out as they stand.
    f.page.make_slide_show = false;
    EXPECT_EQ(f.expand("nav", {photo}, "", "no", {"c.htm", "b.htm", "a.htm", "d.htm"}),
              "\r\n\r\n\r\n" + footer + "\r\n");
}

TEST(ExpandTemplate, FailuresArePassedOverTempFilesMovedLongPathsShortened) {
    PageFixture f;
    const QString first = f.home.write_image("source/first.jpg", 8, 8);
    const QString quoted = f.home.write_image("source/it's.jpg", 8, 8);
    const QString gone = f.source + "/gone.jpg";
    f.put_file_row(first, "First title", "", "");
    f.put_template(sections("fail", "", "[title]|[filesize]|[imgsrc]"));
    // An apostrophe breaks the lookup, and the row of the file before shows;
    // a missing file leaves [filesize] in the page and refers to its copy.
    EXPECT_EQ(f.expand("fail", {first, quoted, gone}),
              "\r\nFirst title|" + QString::number(QFileInfo(first).size()) +
                  "|<img src='first.jpg'>\r\n\r\n"
                  "First title|" +
                  QString::number(QFileInfo(quoted).size()) +
                  "|<img src='it's.jpg'>\r\n\r\n"
                  "|[filesize]|<img src='gone.jpg'>\r\n\r\n\r\n");
    SCOPED_TRACE("files from the temp directory are moved, long paths shortened in the status");
    const QString scan = f.home.write_image("temp/" + QString(80, u's') + ".jpg", 8, 8);
    f.expand("fail", {scan});
    EXPECT_FALSE(QFileInfo::exists(scan));
    EXPECT_TRUE(QFileInfo::exists(f.target + "/" + QString(80, u's') + ".jpg"));
    EXPECT_TRUE(f.home.ui.statuses.contains("Copying ..." + scan.right(70)));
}

TEST(ExpandTemplate, TheTemplateIsReadAtEachCallAndBackgroundCopiedWhenThere) {
    PageFixture f;
    const QString bg = f.home.write_file("source/bg.gif", "GIF89a");
    f.put_template(
        sections("live", "<body background='[background]' bgcolor='[bgcolor]' text='[textcolor]'>",
                 "", "", "v1"));
    f.page.background_image = bg;
    f.page.background_color = "#000080";
    f.page.text_color = "#FFFFFF";
    EXPECT_EQ(f.expand("live", {}),
              "<body background='bg.gif' bgcolor='#000080' text='#FFFFFF'>\r\nv1\r\n");
    EXPECT_EQ(read_bytes(f.target + "/bg.gif"), read_bytes(bg));

    f.put_template(sections("live", "[background]", "", "", "v2"));
    f.page.background_image = f.source + "/none.gif";
    EXPECT_EQ(f.expand("live", {}), "[background]\r\nv2\r\n");

    // A name with no row expands the template selected on the Templates tab.
    f.page.listed_template = "live";
    EXPECT_EQ(f.expand("no such template", {}), "[background]\r\nv2\r\n");
    EXPECT_EQ(f.expand("it's", {}), "[background]\r\nv2\r\n");  // a failed lookup too
}
