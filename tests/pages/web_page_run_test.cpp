#include "page_fixture.h"

#include "pages/web_page_run.h"

#include <QImage>
#include <QTemporaryDir>

namespace {

struct RunFixture : PageFixture {
    RunFixture() {
        put_template({"slide", "<html><head><title>[date]</title></head><body>", "", "[imgsrc]",
                      "[counter]", "", "[slidenav]|[previousslide]|[nextslide]</body></html>", ""});
        request.page = page;
        request.image_page = "index.htm";
        request.image_template = "slide";
        request.max_size = "0";
        request.thumbnail_size = "100";
    }
    WebPageResult run() { return create_web_pages(home.ctx, request, home.app.main_list); }
    QString page_text(const QString& name) { return read_text(target + "/" + name); }

    WebPageRequest request;
};

}  // namespace

TEST(WebPageRun, ValidationMessagesOnlyTheLastComplaintShowsAndNothingIsTouched) {
    RunFixture f;
    const QString keep = f.home.write_file("target/keep.txt");
    f.request.delete_files = true;

    // A blank directory, then a blank template: the later test wins.
    f.request.page.target_directory.clear();
    f.request.image_template.clear();
    f.home.app.main_list.set_items({f.home.write_image("source/a.jpg", 4, 4)});
    EXPECT_TRUE(f.run().refused);
    EXPECT_EQ(f.home.dialogs.messages(), QStringList{"You must select a template."});

    f.home.dialogs.clear();
    f.request.image_template = "slide";
    f.run();
    f.home.app.main_list.clear();
    f.run();
    EXPECT_EQ(f.home.dialogs.messages(),
              QStringList({"The target directory is blank.  Please select the target directory "
                           "where all HTML files are created and images will be copied.\n\n",
                           "There are no files in the file list on the 'Main' tab."}));
    EXPECT_TRUE(QFileInfo::exists(keep));

    // Files that are no web images are told of, files in the target refused.
    f.home.dialogs.clear();
    f.request.page.target_directory = f.target;
    f.request.delete_files = false;
    const QString bmp1 = f.home.write_image("source/one.bmp", 4, 4);
    const QString bmp2 = f.home.write_image("source/two.png", 4, 4);
    const QString inside = f.home.write_image("target2/in.jpg", 4, 4);
    // The target is a plain substring of the path of a file elsewhere.
    f.home.app.main_list.set_items({bmp1, inside, bmp2});
    EXPECT_TRUE(f.run().refused);
    EXPECT_EQ(f.home.dialogs.messages(),
              QStringList({"There is 1 file in the main file list that is not a web image (GIF or "
                           "JPG/JPEG).",
                           "One or more files are currently located in the target directory:\n\n"
                           "     " +
                               f.target + "\n\nPlease select another target directory."}));

    // Only files that are no web images: told of, and the page is made.
    f.home.app.main_list.set_items({bmp1, bmp2});
    EXPECT_FALSE(f.run().refused);
    EXPECT_TRUE(f.page_text("index.htm").contains("one.bmp\r\n"));
}

TEST(WebPageRun, ClearingTheTargetAsksAndPassesOverWhatTheProgramHolds) {
    RunFixture f;
    QTemporaryDir elsewhere;  // the listed files may not lie in the target
    const QString image = elsewhere.path() + "/a.jpg";
    QImage(4, 4, QImage::Format_RGB32).save(image);
    f.home.app.main_list.set_items({image});
    f.home.app.settings.write("Current", "Editor", "kept");  // the file is there
    const QString fragment = f.home.write_file("htmlhead.htm");
    f.home.write_file(".hidden");
    const QString link = f.home.path("catalog-link");
    ASSERT_TRUE(QFile::link(f.home.app.database_path, link));

    f.request.page.target_directory = f.home.dir();
    f.request.delete_files = true;
    f.run();  // the scripted default answer is No
    EXPECT_TRUE(QFileInfo::exists(fragment));
    EXPECT_EQ(
        f.home.dialogs.asked().front().text,
        "Are you sure you want to delete ALL files in the \n\n" + f.home.dir() + "\n\n directory?");
    f.home.dialogs.answer(Dialogs::Answer::Yes);
    f.run();
    // Each was tried, and what the program holds failed as a locked file.
    for (const QString& path : {f.home.app.database_path, f.home.app.ini_path}) {
        EXPECT_TRUE(QFileInfo::exists(path)) << path.toStdString();
        EXPECT_TRUE(f.home.ui.statuses.contains("Deleting " + path)) << path.toStdString();
    }
    EXPECT_FALSE(QFileInfo::exists(fragment));
    EXPECT_TRUE(QFileInfo::exists(f.home.path(".hidden")));
    EXPECT_FALSE(QFileInfo(link).isSymLink());  // a link to the catalog is not the catalog
    EXPECT_EQ(query_column(f.home.app, "select count(*) from template where tname='slide'"),
              QStringList({"1"}));
}

TEST(WebPageRun, ASlideShowChainsItsPagesByName) {
    RunFixture f;
    f.request.page.make_slide_show = true;
    const QString a = f.home.write_image("source/a.photo.jpg", 4, 4);
    const QString index = f.home.write_image("source/index.gif.jpg", 4, 4);
    const QString c = f.home.write_image("source/c.jpg", 4, 4);
    f.home.app.main_list.set_items({a, index, c});
    EXPECT_EQ(f.run().first_page, f.target + "/index.htm");
    EXPECT_EQ(f.request.page.slide_show_delay, "5");

    // The first page takes the page name, whatever its file is called, so a
    // second file named index overwrites it.
    const QString first = f.page_text("index.htm");
    EXPECT_TRUE(first.contains("<img src='index.gif.jpg'>")) << first.toStdString();
    EXPECT_TRUE(first.endsWith("|" + f.target + "/index.htm|c.htm</body></html>\r\n"));

    const QString last = f.page_text("c.htm");
    EXPECT_TRUE(last.endsWith("<a href='index.htm'>First</a>&nbsp;<a href='" + f.target +
                              "/index.htm'>Previous</a>&nbsp;|" + f.target +
                              "/index.htm|c.htm</body></html>\r\n"))
        << last.toStdString();

    // Looping: the last page leads to the first.
    f.request.slide_show_loop = true;
    f.home.app.main_list.set_items({a, c});
    f.run();
    EXPECT_TRUE(f.page_text("c.htm").contains("content='5; url=index.htm'>"));
}

TEST(WebPageRun, MissingFilesLeaveTheListButTheLastPageNameStays) {
    RunFixture f;
    f.request.page.make_slide_show = true;
    const QString a = f.home.write_image("source/a.jpg", 4, 4);
    const QString b = f.home.write_image("source/b.jpg", 4, 4);
    const QString gone = f.source + "/gone2.jpg";
    // Two missing files side by side: the second is passed over and stays.
    f.home.app.main_list.set_items({a, f.source + "/gone1.jpg", gone, b, f.source + "/zz.jpg"});
    f.run();
    EXPECT_EQ(f.home.app.main_list.items(), QStringList({a, gone, b}));
    // The last page was named before the removal: it names a missing file.
    EXPECT_FALSE(f.page_text("b.htm").contains("<a href='zz.htm'>Last</a>"));
    EXPECT_TRUE(f.page_text("index.htm").contains("<a href='zz.htm'>Last</a>"));
}

TEST(WebPageRun, StopEndsASlideShowWithoutTheBrowserButNotASinglePage) {
    RunFixture f;
    int asked = 0;
    // The stop signal is read before each page; after the first it is set.
    f.request.page.create_button_visible = [&] { return ++asked > 2; };
    f.request.page.make_slide_show = true;
    f.home.app.main_list.set_items({f.home.write_image("source/a.jpg", 4, 4),
                                    f.home.write_image("source/b.jpg", 4, 4),
                                    f.home.write_image("source/c.jpg", 4, 4)});
    const WebPageResult result = f.run();
    EXPECT_TRUE(result.stopped);
    EXPECT_TRUE(QFileInfo::exists(f.target + "/index.htm"));
    EXPECT_FALSE(QFileInfo::exists(f.target + "/c.htm"));
    EXPECT_TRUE(f.home.shell.opened.isEmpty());
    EXPECT_GE(f.home.ui.yields, 2);

    f.request.page.create_button_visible = [] { return true; };
    f.request.page.make_slide_show = false;
    f.run();
    EXPECT_EQ(f.home.shell.opened, QStringList{f.target + "/index.htm"});
    // Stopped before the first group: header and footer only.
    EXPECT_FALSE(f.page_text("index.htm").contains("<img"));
}
