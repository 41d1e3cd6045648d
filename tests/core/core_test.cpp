#include "core/directory_reader.h"
#include "core/mount_roots.h"
#include "core/profile_file.h"
#include "core/settings.h"
#include "core/startup.h"
#include "support/qt_print.h"
#include "support/test_home.h"

#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <linux/capability.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <thread>

namespace {


void write(const QString& path, const QByteArray& bytes = {}, const QDateTime& time = {}) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly | QIODevice::Truncate)) << path.toStdString();
    f.write(bytes);
    // Written out first, or the close would stamp the file with the time of writing.
    f.flush();
    if (time.isValid()) {
        f.setFileTime(time, QFileDevice::FileModificationTime);
    }
}

// Sets (or, when empty, unsets) a variable for the scope.
struct SetEnv {
    SetEnv(const char* name, const QString& value) : name(name), saved(qgetenv(name)) {
        value.isEmpty() ? qunsetenv(name) : qputenv(name, QFile::encodeName(value));
    }
    ~SetEnv() { saved.isEmpty() ? qunsetenv(name) : qputenv(name, saved); }
    const char* name;
    QByteArray saved;
};

}  // namespace

TEST(Settings, ReadKeepsItsQuirksAndWriteRoundTrips) {
    TestHome home;
    ProfileFile& ini = home.app.settings;
    const QString old_help = home.write_file("vl32help.htm", "help");
    ini.write("Current", "Help File", home.path("vlkxhelp.htm"));
    ini.write("Current", "Load Delay", "12abc");
    ini.write("Current", "Ratio", "yes");  // only the exact "Yes" counts
    ini.write("Current", "Last Directory", home.path("pictures"));
    read_settings(home.ctx);

    EXPECT_EQ(home.app.help_file, old_help);
    EXPECT_EQ(home.app.load_delay, 12);
    EXPECT_FALSE(home.app.ratio);
    EXPECT_EQ(home.app.thumbnail_optimize, "False");
    EXPECT_EQ(home.app.last_directory, home.path("pictures"));

    home.app.thumbnail_optimize = "Yes";  // chosen by the user in this run
    home.app.thumbnail_prefix = true;
    write_settings(home.app, {"/a", "/b"}, {"jpg", "gif"}, WindowPlacement{15, 30, 7110, 9495});
    EXPECT_EQ(ini.read("Current", "Thumbnail Optimize"), "Yes");
    EXPECT_EQ(ini.read("Current", "Prefix Thumbnail File"), "Yes");
    EXPECT_EQ(ini.read("Current", "Load Delay"), "12");
    EXPECT_EQ(ini.read("Current", "Ratio"), "No");
    EXPECT_EQ(ini.read("Monitor File Types", "monitor_2"), "gif");

    // The table shrank by two: only the key one past the new end goes.
    ini.write("Monitor Directories", "monitor_3", "/c");
    ini.write("Monitor Directories", "monitor_4", "/d");
    write_settings(home.app, {"/a"}, {"jpg"}, std::nullopt);
    EXPECT_EQ(ini.keys("Monitor Directories"),
              QStringList({"monitor_1", "monitor_3", "monitor_4"}));
}

TEST(Settings, CommandLineAndSwitches) {
    TestHome home;
    home.write_file("list.txt", "x");
    const QString before = QDir::currentPath();
    QDir::setCurrent(home.dir());
    EXPECT_EQ(command_line_switch("/Flist.txt /x", "/f"), "list.txt");
    QDir::setCurrent(before);
    EXPECT_EQ(command_line_switch("/f" + home.path("none.txt"), "/f"), "");
    EXPECT_EQ(command_line_switch("a /S b", "/s"), "/s");
    EXPECT_EQ(load_file_types().join(' '),
              "*.* *.art *.avi *.bmp *.cut *.dib *.emf *.gem *.gif *.gif;*.jpg *.hrz *.htm *.iff "
              "*.img *.jpg *.jpg;*.gif *.lbm *.mac *.mid *.mpg *.msp *.pcx *.png *.ras *.rle "
              "*.rmi *.tga *.tif *.txt *.wav *.wmf *.wpg");
}

TEST(ProfileFile, SectionsAndKeysIgnoreCaseKeepTheirPlaceAndNullDeletes) {
    QTemporaryDir dir;
    ProfileFile ini(dir.path() + "/a.ini");
    ASSERT_TRUE(ini.write("Current", "Database", "/x/qd.mdb"));
    ASSERT_TRUE(ini.write("Output", "Target Directory", "/out"));
    ASSERT_TRUE(ini.write("current", "EDITOR", "vi"));
    ASSERT_TRUE(ini.write("CURRENT", "database", "/y/qd.mdb"));
    EXPECT_EQ(ini.read("current", "editor"), "vi");
    // The replaced key keeps its line; the new key joins its own section.
    EXPECT_EQ(
        read_text(ini.path()),
        "[Current]\r\nDatabase=/y/qd.mdb\r\nEDITOR=vi\r\n[Output]\r\nTarget Directory=/out\r\n");

    // A null value deletes the key; an empty one stays.
    ini.write("S", "A", "1");
    ini.write("S", "B", "");
    EXPECT_EQ(ini.read("S", "B", "default"), "");
    ini.write("S", "A", QString());
    EXPECT_EQ(ini.read("S", "A", "default"), "default");
    ini.remove("Nowhere", "B");  // nothing to delete is no error
    EXPECT_EQ(ini.keys("S"), QStringList({"B"}));
    // A line break in a key or value stays on one line.
    EXPECT_TRUE(ini.write("S", "A", "two\r\nlines\nand\rmore"));
    EXPECT_TRUE(ini.write("S", "New\nKey", "x"));
    EXPECT_EQ(ProfileFile(ini.path()).read("S", "A"), "two lines and more");
    EXPECT_EQ(ini.keys("S"), QStringList({"B", "A", "New Key"}));
}

TEST(ProfileFile, ReadIsCutAtTheBufferTrimmedAndSeesOtherWritersAndFailsQuietly) {
    QTemporaryDir dir;
    ProfileFile ini(dir.path() + "/a.ini");
    const QString longer(300, u'x');
    ini.write("S", "Long", longer);
    EXPECT_EQ(ini.read("S", "Long").size(), 254);
    EXPECT_EQ(ini.read("S", "Long", QString(), 1000), longer);
    QFile f(ini.path());
    f.open(QIODevice::Append);
    f.write("[T]\r\n  Key  =   padded value   \r\nnoequals\r\n");
    f.close();
    EXPECT_EQ(ini.read("t", "key"), "padded value");
    EXPECT_EQ(ini.keys("T"), QStringList({"Key"}));

    // Changes made behind its back are seen.
    ini.write("S", "K", "one");
    ProfileFile(ini.path()).write("S", "K", "two-and-longer");
    EXPECT_EQ(ini.read("S", "K"), "two-and-longer");

    ProfileFile nowhere(dir.path() + "/missing-dir/a.ini");
    EXPECT_FALSE(nowhere.write("S", "K", "v"));
    EXPECT_EQ(nowhere.read("S", "K"), "");
}

// An installed program (bin/ beside share/quilldex/) seeds the per-user
// directory on first start; later starts keep the user's catalog and bring
// the help up to date after an upgrade.
TEST(Seeding, FirstStartCopiesTheInstalledCopyAndAnUpgradeSparesTheCatalog) {
    QTemporaryDir tmp;
    const QString installed = tmp.path() + "/usr/share/quilldex";
    const QDateTime built = QDateTime::currentDateTime().addDays(-10);
    write(installed + "/qd.mdb", "delivered", built);
    write(installed + "/qdhelp.htm", "help 1", built);
    QDir().mkpath(tmp.path() + "/usr/bin");
    const SetEnv home("QUILLDEX_HOME", {}), data("XDG_DATA_HOME", tmp.path() + "/data");

    const QString dir = resolve_application_directory(tmp.path() + "/usr/bin");
    EXPECT_TRUE(QFileInfo(dir + "/qd.mdb").isWritable());
    write(dir + "/qd.mdb", "the user's rows", QDateTime::currentDateTime());
    write(installed + "/qd.mdb", "delivered 2", built.addDays(5));
    write(installed + "/qdhelp.htm", "help 2", built.addDays(5));
    resolve_application_directory(tmp.path() + "/usr/bin");
    EXPECT_EQ(read_text(dir + "/qd.mdb"), "the user's rows");
    EXPECT_EQ(read_text(dir + "/qdhelp.htm"), "help 2");

    // Unpacked in one directory the user may not write in: its catalog and
    // help are copied to the per-user directory.
    const QString unpacked = tmp.path() + "/opt";
    write(unpacked + "/qd.mdb", "beside", built);
    write(unpacked + "/qdhelp.htm", "help beside", built);
    QFile::setPermissions(unpacked, QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    const SetEnv other("XDG_DATA_HOME", tmp.path() + "/other");
    // Whether the directory is writable is asked with access(), which lets
    // root pass on the rights it may take back: the thread gives them up.
    QString copied;
    bool plain = ::geteuid() != 0;
    std::thread([&] {
        __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
        __user_cap_data_struct caps[2] = {};
        const unsigned overrides = (1u << CAP_DAC_OVERRIDE) | (1u << CAP_DAC_READ_SEARCH);
        if (::syscall(SYS_capget, &header, caps) == 0) {
            caps[0].permitted &= ~overrides;
            caps[0].effective &= ~overrides;
            plain = plain || ::syscall(SYS_capset, &header, caps) == 0;
        }
        copied = resolve_application_directory(unpacked);
    }).join();
    if (!plain) {
        GTEST_SKIP() << "running as root, the test cannot give up passing over permissions";
    }
    EXPECT_EQ(copied, tmp.path() + "/other/quilldex");
    EXPECT_EQ(read_text(copied + "/qd.mdb") + read_text(copied + "/qdhelp.htm"), "besidehelp beside");
}

TEST(DirectoryReaderTest, SubdirectoriesAreFullPathsSortedIgnoringCaseWithLinksAndOneSeparator) {
    QTemporaryDir tmp;
    const auto at = [&](const QString& name) { return tmp.path() + u'/' + name; };
    for (const char* d : {"beta", "Alpha", "gamma/inner", ".hidden"}) {
        QDir().mkpath(at(d));
    }
    write(at("afile.txt"));
    ASSERT_TRUE(QFile::link(at("gamma"), at("Delta-link")));
    ASSERT_TRUE(QFile::link(at("afile.txt"), at("file-link")));
    ASSERT_TRUE(QFile::link(at("nowhere"), at("broken-link")));

    EXPECT_EQ(subdirectory_paths(tmp.path() + "/"),
              QStringList({at("Alpha"), at("beta"), at("Delta-link"), at("gamma")}));
    EXPECT_TRUE(subdirectory_paths(at("missing")).isEmpty());
    EXPECT_TRUE(subdirectory_paths(at("afile.txt")).isEmpty());
}

TEST(DirectoryReaderTest, FilesMatchPatternListsIgnoringCase) {
    QTemporaryDir tmp;
    for (const char* name : {"b.JPG", "a.gif", "C.jpg", "d.png", "README", "archive.tar.gz",
                             "x.jpeg", ".hidden.jpg", "photo.jpg.txt"}) {
        write(tmp.path() + u'/' + name);
    }
    QDir().mkpath(tmp.path() + "/folder.jpg");
    const auto match = [&](const QString& pattern) {
        return matching_file_names(tmp.path(), pattern);
    };
    EXPECT_EQ(match(" *.JPG ; *.gif "), QStringList({"a.gif", "b.JPG", "C.jpg"}));
    // "*.*" is every file, those without an extension too.
    EXPECT_EQ(match("*.*"), QStringList({"a.gif", "archive.tar.gz", "b.JPG", "C.jpg", "d.png",
                                         "photo.jpg.txt", "README", "x.jpeg"}));
    EXPECT_EQ(match("*.*.*"), match("*.*"));
    // A bare word is a whole name, and "?" is one character.
    EXPECT_EQ(match("readme"), QStringList({"README"}));
    EXPECT_EQ(match("?.jpg"), QStringList({"b.JPG", "C.jpg"}));
    // Wildcards backtrack; sorting folds case first, then puts capitals first.
    EXPECT_TRUE(FilePatterns("a*b*c.txt").matches("aXbYbZc.TXT"));
    EXPECT_FALSE(FilePatterns("a*b*c.txt").matches("abc.txt.bak"));
    EXPECT_TRUE(FilePatterns("*.jpg;*").matches_everything());
    QStringList names{"b", "B", "a", "C", "A"};
    sort_ignoring_case(names);
    EXPECT_EQ(names, QStringList({"A", "a", "B", "b", "C"}));
}

TEST(MountRoots, KeepsUserMountsInOrderAndTheRootOfAPathIsItsLongestParent) {
    const QString table =
        "proc /proc proc rw 0 0\n"
        "/dev/sda1 / ext4 rw 0 0\n"
        "tmpfs /run/user/1000 tmpfs rw 0 0\n"
        "/dev/sdb1 /run/media/ann/USB\\040STICK vfat rw 0 0\n"
        "/dev/sdd1 /mnt/data ext4 rw 0 0\n"
        "/dev/sde1 /mnt/gone ext4 rw 0 0\n"
        "garbage\n";
    auto usable = [](const QString& p) { return p != "/mnt/gone"; };
    EXPECT_EQ(mounted_roots_from(table, usable),
              QStringList({"/", "/run/media/ann/USB STICK", "/mnt/data"}));
    // The root of a path is its longest parent on whole components.
    const QStringList roots{"/", "/home", "/home/ann/usb", "/media/cd"};
    EXPECT_EQ(root_of("/home/ann/usb/x", roots), "/home/ann/usb");
    EXPECT_EQ(root_of("/homework", roots), "/");
    EXPECT_EQ(root_of("/x", QStringList()), "");
}

// Views and proxies learn from the model which rows came, and take them as told.
TEST(ItemList, AddingRowsAnnouncesExactlyTheRowsAdded) {
    ItemList list;
    list.add_many({"a", "b"});
    QSignalSpy inserted(&list, &QAbstractItemModel::rowsInserted);
    list.add("c");
    list.add_many({"d", "e"});
    QStringList spans;
    for (const QList<QVariant>& rows : inserted) {
        spans << rows.at(1).toString() + "-" + rows.at(2).toString();
    }
    EXPECT_EQ(spans, QStringList({"2-2", "3-4"}));
}
