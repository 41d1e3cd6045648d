#include "catalog/database.h"
#include "shell/setup_dialog.h"

#include "support/qt_print.h"
#include "support/test_home.h"

#include <QPushButton>

#include <gtest/gtest.h>

namespace {

QStringList rows(TestHome& home) {
    return query_column(home.app,
                        "select filename || '|' || ifnull(title, '<null>') || '|' || "
                        "replace(replace(ifnull(description, '<null>'), char(13), '\\r'), "
                        "char(10), '\\n') || '|' || ifnull(catalog, '<null>') from filenames "
                        "order by filename");
}

}  // namespace

TEST(VellumarkImport, ImportsLinesWhoseFilesExistWithTitlesAndIsQuietTheSecondTime) {
    TestHome home;
    const QString a = home.write_file("pics/a.jpg");
    const QString b = home.write_file("pics/b.jpg");
    const QString c = home.write_file("pics/c.jpg");
    const QString ta = home.write_file("text/a.txt", "First line\nsecond line\n");
    const QString tb = home.write_file("text/b.txt", "only\r\n");
    const QString ini =
        home.write_file("old/vellumark.ini",
                        ("[Images]\r\n" + a + "=" + ta + "\r\n" +  // imported, with its title
                         "a line without an equals sign\r\n" +     //
                         b + "=" + tb + "\r\n" +                   // imported, no title
                         c + "=" + home.path("text/missing.txt") + "\r\n" +  // no text file: no row
                         home.path("pics/gone.jpg") + "=" + ta + "\r\n" +    // no image: no row
                         "[Other]\r\n" + c + "=" + ta + "=x\r\n" +  // two "=": no such text file
                         "[Associated Text Title]\r\n" + a + "=Harbour at dawn\r\n")
                            .toUtf8());
    SetupDialog setup(home.ctx);
    auto* button = setup.findChild<QPushButton*>("b_options_load_vlk_images");
    ASSERT_NE(button, nullptr);

    // A cancelled dialog imports nothing.
    button->click();
    ASSERT_EQ(home.dialogs.asked().size(), 1u);
    EXPECT_EQ(home.dialogs.asked()[0].title, "Select Vellumark's Ini File");
    EXPECT_EQ(home.dialogs.asked()[0].default_text, "INI (*.ini)|*.ini|All Files (*.*)|*.*");
    EXPECT_TRUE(rows(home).isEmpty());

    const QStringList expected = {
        a + "|Harbour at dawn|First line\\r\\nsecond line\\r\\n|<null>",
        b + "|<null>|only\\r\\n|<null>",
    };
    for (int run = 0; run < 2; ++run) {
        SCOPED_TRACE(run == 0 ? "first import" : "second import");
        home.dialogs.clear();
        home.dialogs.answer_file(ini);
        button->click();
        EXPECT_EQ(rows(home), expected);
        // Nothing is reported, the end included.
        EXPECT_TRUE(home.dialogs.messages().isEmpty());
    }
}
