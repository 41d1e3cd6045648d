#include "core/settings.h"
#include "core/startup.h"

#include "support/qt_print.h"
#include "support/test_home.h"

#include <QDir>

#include <gtest/gtest.h>

TEST(Settings, ReadKeepsItsQuirksAndWriteRoundTrips) {
    TestHome home;
    ProfileFile& ini = home.app.settings;
    ini.write("Current", "Database", home.path("qd.mdb"));
    const QString old_help = home.write_file("vl32help.htm", "help");
    ini.write("Current", "Help File", home.path("vlkxhelp.htm"));
    ini.write("Current", "Load Delay", "12abc");
    ini.write("Current", "Ratio", "yes");  // only the exact "Yes" counts
    ini.write("Current", "Auto Start Editor", "Yes");
    ini.write("Current", "Thumbnail smoothing", "30");
    ini.write("Current", "Last Directory", home.path("pictures"));
    ini.write("Color", "Text", "#112233");
    read_settings(home.ctx);

    EXPECT_EQ(home.app.help_file, old_help);
    EXPECT_EQ(home.app.load_delay, 12);
    EXPECT_FALSE(home.app.ratio);
    EXPECT_TRUE(home.app.auto_start_editor);
    EXPECT_EQ(home.app.thumbnail_smoothing, "30");
    EXPECT_EQ(home.app.thumbnail_quality, "75");
    EXPECT_EQ(home.app.thumbnail_optimize, "False");
    EXPECT_EQ(home.app.last_directory, home.path("pictures"));
    EXPECT_EQ(home.app.color_text, "#112233");
    EXPECT_EQ(home.app.color_vlink, "#FF0000");
    EXPECT_EQ(home.app.pixel_height, "25");

    home.app.thumbnail_optimize = "Yes";  // chosen by the user in this run
    home.app.thumbnail_prefix = true;
    write_settings(home.app, {"/a", "/b"}, {"jpg", "gif"}, WindowPlacement{15, 30, 7110, 9495});
    EXPECT_EQ(ini.read("Current", "Thumbnail Optimize"), "Yes");
    EXPECT_EQ(ini.read("Current", "Thumbnail Smoothing"), "30");
    EXPECT_EQ(ini.read("Current", "Prefix Thumbnail File"), "Yes");
    EXPECT_EQ(ini.read("Current", "Form Width"), "9495");
    EXPECT_EQ(ini.read("Current", "Load Delay"), "12");
    EXPECT_EQ(ini.read("Current", "Ratio"), "No");
    EXPECT_EQ(ini.read("Monitor File Types", "monitor_2"), "gif");

    // The table shrank by two: only the key one past the new end goes.
    ini.write("Monitor Directories", "monitor_3", "/c");
    ini.write("Monitor File Types", "monitor_3", "png");
    ini.write("Monitor Directories", "monitor_4", "/d");
    ini.write("Monitor File Types", "monitor_4", "bmp");
    write_settings(home.app, {"/a"}, {"jpg"}, std::nullopt);
    EXPECT_EQ(ini.keys("Monitor Directories"),
              QStringList({"monitor_1", "monitor_3", "monitor_4"}));
    EXPECT_EQ(ini.read("Monitor Directories", "monitor_4"), "/d");
}

TEST(Settings, MissingHelpFileAndEmptyLastDirectoryTakeTheirDefaults) {
    TestHome home;
    home.app.settings.write("Current", "Help File", home.path("gone.htm"));
    read_settings(home.ctx);
    EXPECT_EQ(home.app.help_file, home.path("qdhelp.htm"));
    EXPECT_EQ(home.app.last_directory, home.path("html"));
    EXPECT_EQ(home.app.thumbnail_size, "100");
}

TEST(Settings, CommandLineAndSwitches) {
    EXPECT_TRUE(command_line_turns_log_on({"LOG_MESSAGES"}));
    EXPECT_TRUE(command_line_turns_log_on({"Log_Messages"}));
    EXPECT_FALSE(command_line_turns_log_on({"log_messages", "x"}));
    EXPECT_FALSE(command_line_turns_log_on({}));
    TestHome home;
    home.write_file("list.txt", "x");
    const QString before = QDir::currentPath();
    QDir::setCurrent(home.dir());
    EXPECT_EQ(command_line_switch("/Flist.txt /x", "/f"), "list.txt");
    QDir::setCurrent(before);
    EXPECT_EQ(command_line_switch("/f" + home.path("none.txt"), "/f"), "");
    EXPECT_EQ(command_line_switch("a /S b", "/s"), "/s");
    EXPECT_EQ(command_line_switch("a b", "/v"), "");
    EXPECT_EQ(load_file_types().size(), 32);
    EXPECT_EQ(load_file_types().at(9), "*.gif;*.jpg");
}
