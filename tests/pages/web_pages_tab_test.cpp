#include "page_fixture.h"

#include "pages/templates_tab.h"
#include "pages/web_pages_tab.h"
#include "support/test_workbench.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace {

struct WebTabFixture : PageFixture {
    WebTabFixture() : wb(home) {
        resize_max = wb.plant<QLineEdit>("o_resize_max_size");
        thumb_size = wb.plant<QLineEdit>("o_thumbnail_size");
        resize_max->setText("640");
        thumb_size->setText("80");
        wb.add_page<TemplatesTab>("Templates");
        wb.add_page<WebPagesTab>("Web Pages");
        wb.enter("Templates");
    }
    QLineEdit* line(const char* name) { return wb.find<QLineEdit>(name); }
    QString setting(const char* section, const char* key) {
        return home.app.settings.read(QLatin1String(section), QLatin1String(key));
    }

    TestWorkbench wb;
    QLineEdit* resize_max = nullptr;
    QLineEdit* thumb_size = nullptr;
};

}  // namespace

TEST(WebPagesTab, EnteringShowsTheListTheTemplatesAndTheStoredChoices) {
    WebTabFixture f;
    ProfileFile& s = f.home.app.settings;
    s.write("Output", "Image Template", "Slide Show");
    s.write("Current", "HTML Background Color", "#000080");
    s.write("Current", "HTML Background Color-bg", "8388608");
    // Exactly one diskette of bytes, and a file that is not there.
    f.home.app.main_list.set_items(
        {f.home.write_file("source/big.bin", QByteArray(1457664, 'x')), f.source + "/missing.jpg"});
    f.wb.enter("Web Pages");

    EXPECT_EQ(f.line("o_html_total_file_count")->text(), "2");
    EXPECT_EQ(f.line("o_html_total_file_size")->text(), "1");
    auto* templates = f.wb.find<QComboBox>("o_html_image_template");
    EXPECT_EQ(templates->currentText(), "Slide Show");
    auto* colour = f.wb.find<QLabel>("o_html_background_color");
    EXPECT_EQ(colour->text(), "#000080");
    EXPECT_EQ(colour->palette().color(QPalette::Window), QColor(0, 0, 128));

    // A large collection keeps two places, however many digits stand before
    // them (a sparse file of 12,345.67 diskettes and a bit).
    const QString large = f.home.write_file("source/large.bin");
    ASSERT_TRUE(QFile(large).resize(1457664LL * 12345 + 976635 + 1000));
    f.home.app.main_list.set_items({large});
    s.write("Output", "Image Template", "No such template");
    f.wb.enter("Web Pages");
    EXPECT_EQ(f.line("o_html_total_file_size")->text(), "12345.67");
    EXPECT_EQ(templates->currentText(), "");  // no row matched: none is chosen
}

TEST(WebPagesTab, EveryChoiceIsStoredAsItChanges) {
    WebTabFixture f;
    f.wb.enter("Web Pages");
    f.wb.find<QCheckBox>("o_html_delete_files")->setChecked(true);
    EXPECT_EQ(f.setting("Output", "Delete Files"), "Yes");

    // The two sizes are mirrors of the Resize tab's boxes.
    f.line("o_html_image_max_size")->setText("480");
    f.line("o_html_thumbnail_size")->setText("64");
    EXPECT_EQ(f.resize_max->text(), "480");
    EXPECT_EQ(f.thumb_size->text(), "64");
}

TEST(WebPagesTab, CreateMakesThePagesFillsInWhatWasEmptyAndStopEndsASlideShow) {
    WebTabFixture f;
    f.thumb_size->clear();
    f.wb.enter("Web Pages");
    f.line("o_html_target_directory")->setText(f.target);
    f.wb.find<QComboBox>("o_html_image_template")->setCurrentText("Slide Show");
    f.wb.find<QCheckBox>("o_html_make_slide_show")->setChecked(true);
    f.line("o_html_slide_show_delay")->clear();
    f.home.app.main_list.set_items({f.home.write_image("source/a.jpg", 800, 600),
                                    f.home.write_image("source/b.jpg", 30, 30),
                                    f.home.write_image("source/c.jpg", 8, 8)});
    auto* create = f.wb.find<QPushButton>("b_html_create_html");
    auto* stop = f.wb.find<QPushButton>("b_webpages_stop_create");
    create->click();
    EXPECT_EQ(f.home.shell.opened, QStringList{f.target + "/index.htm"});
    EXPECT_TRUE(read_text(f.target + "/index.htm").contains("content='5; url=b.htm'"));
    EXPECT_EQ(image_size(f.target + "/a.jpg"), QSize(640, 480));
    EXPECT_EQ(f.line("o_html_slide_show_delay")->text(), "5");
    EXPECT_EQ(f.thumb_size->text(), "100");

    // Stop pressed while the run gives the loop a turn: the show ends there,
    // without the browser.
    f.home.shell.opened.clear();
    f.home.ui.on_turn = [&](int) { stop->click(); };
    create->click();
    EXPECT_TRUE(f.home.shell.opened.isEmpty());
    EXPECT_FALSE(create->isHidden());
}
