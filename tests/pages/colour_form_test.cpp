#include "pages/colour_form.h"
#include "support/qt_print.h"
#include "support/test_home.h"

#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QTest>

#include <gtest/gtest.h>

namespace {

struct ColourFixture {
    ColourFixture() {
        background_color.setAutoFillBackground(true);
        AppState& a = home.app;
        a.color_text = "#000000";
        a.color_alink = "#FF0000";
        a.color_background = "#FFFFFF";
        a.color_image_border = "#808080";
        background_image.setText("/old/sky.gif");
        form = std::make_unique<ColourForm>(home.ctx, &background_image, &background_color,
                                            &text_color, directory);
        form->show();
    }
    QWidget* w(const char* name) { return form->findChild<QWidget*>(QLatin1String(name)); }
    void click(const char* name) { static_cast<QAbstractButton*>(w(name))->click(); }
    QColor back(const char* name) { return w(name)->palette().color(QPalette::Window); }
    QColor fore(const char* name) { return w(name)->palette().color(QPalette::WindowText); }
    QString image_name() { return static_cast<QLineEdit*>(w("o_background_image"))->text(); }

    TestHome home;
    QLineEdit background_image;
    QLabel background_color;
    QLabel text_color;
    QString directory = "/start";
    std::unique_ptr<ColourForm> form;
};

}  // namespace

TEST(ColourForm, ShowsTheWorkingColoursAndSavesTheDarkRedSwatchAsBlue) {
    ColourFixture f;
    EXPECT_EQ(f.fore("o_alink_color"), QColor(255, 0, 0));

    // A click on a sample chooses its role; a swatch then colours it.
    QTest::mouseClick(f.w("Label27"), Qt::LeftButton);
    EXPECT_TRUE(static_cast<QRadioButton*>(f.w("o_selection_4"))->isChecked());
    f.click("o_color_8");
    EXPECT_EQ(f.back("o_img_border_color"), QColor(0, 128, 0));
    QTest::mouseClick(f.w("o_text_color"), Qt::LeftButton);
    f.click("o_color_3");
    f.click("o_selection_3");
    f.click("o_color_6");
    EXPECT_EQ(f.back("o_link_color"), QColor(128, 0, 0));

    f.click("Command1");
    EXPECT_FALSE(f.form->isVisible());
    const AppState& a = f.home.app;
    EXPECT_EQ(a.color_background, "#0000FF");
    EXPECT_EQ(a.color_text, "#FFFFFF");
    EXPECT_EQ(a.color_image_border, "#008000");
    EXPECT_EQ(f.background_color.palette().color(QPalette::Window), QColor(128, 0, 0));
    const ProfileFile& ini = a.settings;
    EXPECT_EQ(ini.read("Current", "HTML Background Color"), "#0000FF");
    EXPECT_EQ(ini.read("Current", "HTML Background Color-bg"), "128");
    EXPECT_EQ(ini.read("Current", "HTML Text Color-bg"), "16777215");
    EXPECT_EQ(ini.keys("Current").size(), 5);  // the link and border colours are not stored
}

TEST(ColourForm, TakesOnlyGifAndJpgBackgroundsAndCancelChangesNothing) {
    ColourFixture f;
    const QString photo = f.home.write_image("pictures/wide.JPG", 1200, 600);
    f.home.dialogs.answer_file("/p/b.png");
    f.click("Command3");
    EXPECT_EQ(f.home.dialogs.messages(),
              QStringList{"GIF and JPG are the only valid file formats for HTML background."});
    EXPECT_EQ(f.image_name(), "sky.gif");
    f.home.dialogs.answer_file(photo);
    f.click("Command3");
    EXPECT_EQ(f.image_name(), "wide.JPG");
    EXPECT_EQ(f.directory, f.home.path("pictures/"));

    // Cancel after clicks: nothing reaches the working strings or the file.
    f.click("o_selection_5");
    f.click("o_color_6");
    f.click("Command2");
    EXPECT_EQ(f.home.app.color_text, "#000000");
    EXPECT_FALSE(QFile::exists(f.home.app.settings.path()));
}
