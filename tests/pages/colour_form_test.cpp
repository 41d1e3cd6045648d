#include "pages/colour_form.h"
#include "support/page_checks.h"
#include "support/qt_print.h"
#include "support/test_home.h"

#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>

#include <gtest/gtest.h>

#include "imaging/image_view.h"

namespace {

// The Web Pages tab's controls that the form reads and writes, and a form.
struct ColourFixture {
    ColourFixture() {
        for (QLabel* l : {&background_color, &text_color}) {
            l->setAutoFillBackground(true);
        }
        AppState& a = home.app;
        a.color_text = "#000000";
        a.color_vlink = "#800080";
        a.color_link = "#123456";  // no swatch reads it
        a.color_alink = "#FF0000";
        a.color_background = "#FFFFFF";
        a.color_image_border = "#808080";
        background_image.setText("/old/sky.gif");
        directory = "/start";
    }
    std::unique_ptr<ColourForm> open() {
        return std::make_unique<ColourForm>(home.ctx, &background_image, &background_color,
                                            &text_color, directory);
    }
    template <class T>
    static T* child(ColourForm& form, const char* name) {
        return form.findChild<T*>(QLatin1String(name));
    }
    static void click(ColourForm& form, const char* name) {
        child<QAbstractButton>(form, name)->click();
    }
    static QColor back(ColourForm& form, const char* name) {
        return child<QWidget>(form, name)->palette().color(QPalette::Window);
    }
    static QColor fore(ColourForm& form, const char* name) {
        return child<QWidget>(form, name)->palette().color(QPalette::WindowText);
    }

    TestHome home;
    QLineEdit background_image;
    QLabel background_color;
    QLabel text_color;
    QString directory;
};

}  // namespace

TEST(ColourForm, ShowsTheWorkingColoursAndSavesTheDarkRedSwatchAsBlue) {
    ColourFixture f;
    auto form = f.open();
    {
        WindowFont font;
        form->show();
        form->grab().save("/tmp/colour_form.png");
    }
    EXPECT_EQ(form->windowTitle(), "HTML Color Options");
    EXPECT_EQ(ColourFixture::child<QLineEdit>(*form, "o_background_image")->text(), "sky.gif");
    EXPECT_EQ(ColourFixture::fore(*form, "o_text_color"), QColor(0, 0, 0));
    EXPECT_EQ(ColourFixture::fore(*form, "o_vlink_color"), QColor(128, 0, 128));
    EXPECT_EQ(ColourFixture::fore(*form, "o_alink_color"), QColor(255, 0, 0));
    EXPECT_EQ(ColourFixture::back(*form, "o_img_border_color"), QColor(128, 128, 128));
    // The text samples stand on the page's colour.
    for (const char* sample : {"o_bgcolor", "o_text_color", "o_link_color", "o_alink_color"}) {
        EXPECT_EQ(ColourFixture::back(*form, sample), QColor(255, 255, 255)) << sample;
    }

    // A click on a sample chooses its role; a swatch then colours it.
    QTest::mouseClick(ColourFixture::child<QWidget>(*form, "Label27"), Qt::LeftButton);
    EXPECT_TRUE(ColourFixture::child<QRadioButton>(*form, "o_selection_4")->isChecked());
    ColourFixture::click(*form, "o_color_8");
    EXPECT_EQ(ColourFixture::back(*form, "o_img_border_color"), QColor(0, 128, 0));
    QTest::mouseClick(ColourFixture::child<QWidget>(*form, "o_text_color"), Qt::LeftButton);
    ColourFixture::click(*form, "o_color_3");
    ColourFixture::click(*form, "o_selection_3");
    ColourFixture::click(*form, "o_color_6");
    EXPECT_EQ(ColourFixture::back(*form, "o_bgcolor"), QColor(128, 0, 0));
    EXPECT_EQ(ColourFixture::back(*form, "o_link_color"), QColor(128, 0, 0));

    ColourFixture::click(*form, "Command1");
    EXPECT_FALSE(form->isVisible());
    const AppState& a = f.home.app;
    EXPECT_EQ(a.color_background, "#0000FF");
    EXPECT_EQ(a.color_text, "#FFFFFF");
    EXPECT_EQ(a.color_image_border, "#008000");
    EXPECT_EQ(a.color_link, "#123456");  // its sample kept its design colour
    EXPECT_EQ(f.background_color.text(), "#0000FF");
    EXPECT_EQ(f.background_color.palette().color(QPalette::Window), QColor(128, 0, 0));
    EXPECT_EQ(f.text_color.text(), "#FFFFFF");
    const ProfileFile& ini = a.settings;
    EXPECT_EQ(ini.read("Current", "HTML Background Color"), "#0000FF");
    EXPECT_EQ(ini.read("Current", "HTML Background Color-bg"), "128");
    EXPECT_EQ(ini.read("Current", "HTML Text Color"), "#FFFFFF");
    EXPECT_EQ(ini.read("Current", "HTML Text Color-bg"), "16777215");
    EXPECT_EQ(ini.read("Current", "HTML Background Image"), "/old/sky.gif");
    EXPECT_EQ(ini.keys("Current").size(), 5);  // the link and border colours are not stored
}

TEST(ColourForm, TakesOnlyGifAndJpgBackgroundsAndCancelChangesNothing) {
    ColourFixture f;
    const QString photo = f.home.write_image("pictures/wide.JPG", 1200, 600);
    auto form = f.open();
    form->show();
    struct Choice {
        QString path;
        bool taken;
    };
    for (const Choice& c :
         {Choice{"/p/b.png", false}, Choice{"/p/image.gif.txt", true}, Choice{photo, true}}) {
        SCOPED_TRACE(c.path.toStdString());
        f.home.dialogs.clear();
        f.home.dialogs.answer_file(c.path);
        ColourFixture::click(*form, "Command3");
        const auto& asked = f.home.dialogs.asked();
        ASSERT_FALSE(asked.empty());
        EXPECT_EQ(asked[0].title, "Select HTML Background");
        EXPECT_EQ(asked[0].default_text, "All Files (*.*)|*.*|GIF Files|*.gif|JPG Files|*.jpg");
        EXPECT_EQ(f.home.dialogs.messages(),
                  c.taken ? QStringList()
                          : QStringList{"GIF and JPG are the only valid file formats for HTML "
                                        "background."});
        EXPECT_EQ(ColourFixture::child<QLineEdit>(*form, "o_background_image")->text(),
                  c.taken ? c.path.mid(c.path.lastIndexOf('/') + 1) : "sky.gif");
    }
    EXPECT_EQ(f.directory, f.home.path("pictures/"));
    // The sample shows the picture scaled within its frame, proportions kept.
    const ImageControl& image = ColourFixture::child<ImageView>(*form, "o_image")->control();
    const QWidget* frame = ColourFixture::child<QWidget>(*form, "f_background_sample");
    EXPECT_EQ(image.view_mode(), 2);
    EXPECT_LE(image.width(), frame->width() * 15 - 280);
    EXPECT_LE(image.height(), frame->height() * 15 - 320);
    EXPECT_NEAR(image.width() / image.height(), 2.0, 0.01);
    form->grab().save("/tmp/colour_form_image.png");

    // Cancel after clicks: nothing of it reaches the working strings or the file.
    ColourFixture::click(*form, "o_selection_5");
    ColourFixture::click(*form, "o_color_6");
    ColourFixture::click(*form, "Command2");
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(f.home.app.color_text, "#000000");
    EXPECT_EQ(f.background_image.text(), "/old/sky.gif");
    EXPECT_FALSE(QFile::exists(f.home.app.settings.path()));
}
