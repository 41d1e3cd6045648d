#include "page_fixture.h"

#include "pages/templates_tab.h"
#include "pages/web_pages_tab.h"
#include "pages/web_profiles.h"
#include "shell/run_error.h"
#include "support/qt_print.h"
#include "support/test_workbench.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>

#include <gtest/gtest.h>

namespace {

struct Profiles {
    TestHome home;
    ProfileFile& ini = home.app.settings;
    WebProfileControls c;

    void run(const char* operation, const QString& name) {
        c.name = name;
        web_profile(ini, QLatin1String(operation), c);
    }
    QStringList list() {
        QStringList out;
        for (const QString& key : ini.keys("Profile List")) {
            out << key + "=" + ini.read("Profile List", key);
        }
        return out;
    }
};

}  // namespace

TEST(WebProfiles, SaveListsEachNameOnceAndRefreshTakesOnlyWhatIsStored) {
    Profiles p;
    p.c.target_directory = "/web/a";
    p.c.image_page = "a.htm";
    p.c.image_template = "Slide Show";
    p.c.slide_show = true;
    p.run("save", "Site A");
    p.run("save", "Site A");  // saved twice: listed once
    p.c.target_directory = "/web/b";
    p.run("save", "Site B");
    // A name that differs only by case is listed again, over the same section.
    p.c.slide_show_loop = true;
    p.run("save", "site a");
    EXPECT_EQ(p.list(), (QStringList{"Profile1=Site A", "Profile2=Site B", "Profile3=site a"}));
    EXPECT_EQ(p.c.entries, (QStringList{"Site A", "Site B", "site a"}));
    EXPECT_EQ(p.ini.read("Profile - Site A", "Target Directory"), "/web/b");
    EXPECT_EQ(p.ini.read("Profile - Site A", "Slide Show"), "Yes");
    EXPECT_EQ(p.ini.read("Profile - Site A", "Delete Files"), "No");
    EXPECT_EQ(p.ini.read("Profile - Site A", "Slide Show Loop"), "Yes");

    // A profile with no target directory leaves the control; the boxes are
    // always set: "y..." in any case checks, anything else or nothing clears.
    p.ini.write("Profile - Bare", "Delete Files", "YES please");
    p.ini.write("Profile - Bare", "Slide Show", "no");
    p.c = WebProfileControls{"", {}, "/kept", "kept.htm", "Kept", false, true, true};
    p.run("refresh", "Bare");
    EXPECT_EQ(p.c.target_directory, "/kept");
    EXPECT_EQ(p.c.image_page, "kept.htm");
    EXPECT_EQ(p.c.image_template, "Kept");
    EXPECT_TRUE(p.c.delete_files);
    EXPECT_FALSE(p.c.slide_show);
    EXPECT_FALSE(p.c.slide_show_loop);
    p.run("refresh", "SITE B");
    EXPECT_EQ(p.c.target_directory, "/web/b");
    EXPECT_EQ(p.c.image_page, "a.htm");

    // Any other word does nothing.
    const QStringList before = p.list();
    p.run("rename", "Site B");
    EXPECT_EQ(p.list(), before);
}

TEST(WebProfiles, LoadStopsAtAGapAndDeleteMovesTheLaterNamesUp) {
    Profiles p;
    for (const char* key : {"Profile1", "Profile3"}) {
        p.ini.write("Profile List", key, QStringLiteral("Name of ") + key);
    }
    p.c.entries = QStringList{"stale"};
    p.run("load", "typed");
    EXPECT_EQ(p.c.entries, QStringList{"Name of Profile1"});
    EXPECT_EQ(p.c.name, "typed");
    // A new save takes the gap.
    p.run("save", "Second");
    EXPECT_EQ(p.ini.read("Profile List", "Profile2"), "Second");
    // An empty name is written, and reads back as no value: it ends the list.
    p.run("save", "");
    EXPECT_TRUE(p.ini.contains("Profile List", "Profile4"));
    EXPECT_TRUE(p.ini.contains("Profile - ", "Image Page"));
    p.run("load", "");
    EXPECT_EQ(p.c.entries, (QStringList{"Name of Profile1", "Second", "Name of Profile3"}));

    // The middle of three goes: the list key is compared without regard to
    // case, so the third name moves up and its key goes, and so do the
    // profile's keys, the two size keys with them. The entry is compared
    // exactly: "second" is none, so the walk runs past the last entry and
    // removing that one fails, uncaught.
    p.ini.write("Profile - second", "Max Image Height", "480");
    EXPECT_THROW(p.run("delete", "second"), RunError);
    EXPECT_EQ(p.list(),
              (QStringList{"Profile1=Name of Profile1", "Profile2=Name of Profile3", "Profile4="}));
    EXPECT_EQ(p.ini.keys("Profile - Second"), QStringList());
    p.run("load", "");
    p.run("delete", "Name of Profile3");
    EXPECT_EQ(p.c.entries, QStringList{"Name of Profile1"});
    EXPECT_EQ(p.list(), (QStringList{"Profile1=Name of Profile1", "Profile4="}));
}

TEST(WebProfiles, TheTabSavesRecallsAndDeletesThroughItsControls) {
    PageFixture f;
    TestWorkbench wb(f.home);
    wb.plant<QLineEdit>("o_resize_max_size");
    wb.plant<QLineEdit>("o_thumbnail_size");
    wb.add_page<TemplatesTab>("Templates");
    wb.add_page<WebPagesTab>("Web Pages");
    wb.enter("Templates");
    f.home.app.settings.write("Profile List", "Profile1", "Old");
    f.home.app.settings.write("Profile - Old", "Target Directory", "/web/old");
    f.home.app.settings.write("Profile - Old", "Slide Show", "Yes");
    auto* box = wb.find<QComboBox>("o_html_profile_name");
    box->setEditText("typed");
    wb.enter("Web Pages");
    EXPECT_EQ(box->count(), 1);
    EXPECT_EQ(box->currentText(), "typed");

    wb.find<QLineEdit>("o_html_target_directory")->setText("/web/new");
    wb.find<QCheckBox>("o_html_delete_files")->setChecked(true);
    box->setEditText("New");
    wb.find<QPushButton>("b_html_save_profile")->click();
    EXPECT_EQ(box->count(), 2);
    EXPECT_EQ(f.home.app.settings.read("Profile - New", "Delete Files"), "Yes");

    box->setCurrentIndex(0);
    box->activated(0);  // as a choice from the list signals it
    EXPECT_EQ(wb.find<QLineEdit>("o_html_target_directory")->text(), "/web/old");
    EXPECT_TRUE(wb.find<QCheckBox>("o_html_make_slide_show")->isChecked());
    EXPECT_FALSE(wb.find<QCheckBox>("o_html_delete_files")->isChecked());
    // The recalled values are the current settings now.
    EXPECT_EQ(f.home.app.settings.read("Output", "Target Directory"), "/web/old");
    EXPECT_EQ(f.home.app.settings.read("Output", "Delete Files"), "No");

    wb.find<QPushButton>("b_html_delete_profile")->click();
    EXPECT_EQ(box->count(), 1);
    EXPECT_EQ(box->itemText(0), "New");
    EXPECT_EQ(f.home.app.settings.read("Profile List", "Profile1"), "New");
}
