#include "pages/web_profiles.h"
#include "core/run_error.h"
#include "support/qt_print.h"
#include "support/test_home.h"

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

TEST(WebProfiles, SaveRefreshLoadAndDeleteFollowTheListKeys) {
    Profiles p;
    p.c.target_directory = "/web/a";
    p.c.slide_show = true;
    p.run("save", "Site A");
    p.run("save", "Site A");  // saved twice: listed once
    p.ini.write("Profile List", "Profile3", "Beyond a gap");
    // The gap is where a new name goes; a name that differs only by case is
    // listed again, over the same section.
    p.c.target_directory = "/web/b";
    p.run("save", "site a");
    EXPECT_EQ(p.list(),
              (QStringList{"Profile1=Site A", "Profile3=Beyond a gap", "Profile2=site a"}));
    EXPECT_EQ(p.c.entries, (QStringList{"Site A", "site a"}));
    EXPECT_EQ(p.ini.read("Profile - SITE A", "Target Directory"), "/web/b");

    // An empty text value leaves its control; a flag with "y" first, in any
    // case, checks its box, and anything else or nothing clears it.
    p.ini.write("Profile - Bare", "Delete Files", "YES please");
    p.c = WebProfileControls{"", {}, "/kept", "kept.htm", "Kept", false, true, true};
    p.run("refresh", "Bare");
    EXPECT_EQ(p.c.target_directory, "/kept");
    EXPECT_TRUE(p.c.delete_files);
    EXPECT_FALSE(p.c.slide_show);

    // Load: the typed name stands, the list ends at the first empty value.
    p.run("save", "");
    p.run("load", "typed");
    EXPECT_EQ(p.c.name, "typed");
    EXPECT_EQ(p.c.entries, (QStringList{"Site A", "site a", "Beyond a gap"}));

    // Delete: the keys go, the two size keys with them; the list key is
    // compared without regard to case, so the later names move up; the entry
    // exactly, so "SITE A" is none, the walk runs past the last entry and
    // removing that one fails, uncaught.
    p.ini.write("Profile - Site A", "Max Image Height", "480");
    EXPECT_THROW(p.run("delete", "SITE A"), RunError);
    EXPECT_EQ(p.ini.keys("Profile - Site A"), QStringList());
    EXPECT_EQ(p.list(), (QStringList{"Profile1=site a", "Profile2=Beyond a gap", "Profile4="}));
    p.run("load", "");
    p.run("delete", "Beyond a gap");
    EXPECT_EQ(p.c.entries, QStringList{"site a"});
    EXPECT_EQ(p.list(), (QStringList{"Profile1=site a", "Profile4="}));
}
