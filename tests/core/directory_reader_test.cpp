#include "core/directory_reader.h"
#include "core/mount_roots.h"
#include "support/plain_user.h"
#include "support/qt_print.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

void touch(const QString& path) {
    QDir().mkpath(path.section(u'/', 0, -2));
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly)) << path.toStdString();
}

class DirectoryReaderTest : public ::testing::Test {
protected:
    QString at(const QString& name) const { return tmp.path() + u'/' + name; }
    QTemporaryDir tmp;
};

}  // namespace

TEST_F(DirectoryReaderTest, SubdirectoriesAreFullPathsSortedIgnoringCaseWithLinksAndOneSeparator) {
    QDir().mkpath(at("beta"));
    QDir().mkpath(at("Alpha"));
    QDir().mkpath(at("gamma/inner"));
    QDir().mkpath(at(".hidden"));
    touch(at("afile.txt"));
    ASSERT_TRUE(QFile::link(at("gamma"), at("Delta-link")));
    ASSERT_TRUE(QFile::link(at("afile.txt"), at("file-link")));
    ASSERT_TRUE(QFile::link(at("nowhere"), at("broken-link")));

    EXPECT_EQ(subdirectory_paths(tmp.path()),
              QStringList({at("Alpha"), at("beta"), at("Delta-link"), at("gamma")}));
    // A closing "/" on the directory gives no doubled separator.
    EXPECT_EQ(subdirectory_paths(tmp.path() + "/").first(), at("Alpha"));
    EXPECT_EQ(subdirectory_paths(at("gamma")), QStringList({at("gamma/inner")}));
    EXPECT_TRUE(subdirectory_paths(at("gamma/inner")).isEmpty());
    // Children and files of a root have a single separator.
    const QStringList top = subdirectory_paths("/");
    ASSERT_FALSE(top.isEmpty());
    for (const QString& p : top) {
        EXPECT_FALSE(p.startsWith("//")) << p.toStdString();
        EXPECT_EQ(p.count(u'/'), 1) << p.toStdString();
    }
    QStringList names{"a.jpg", "b c.gif"};
    prefix_paths(names, "/");
    EXPECT_EQ(names, QStringList({"/a.jpg", "/b c.gif"}));
    names = {"a.jpg"};
    prefix_paths(names, "/media/cd");
    EXPECT_EQ(names, QStringList({"/media/cd/a.jpg"}));
}

TEST_F(DirectoryReaderTest, MissingOrUnreadableDirectoriesGiveEmptyLists) {
    EXPECT_TRUE(subdirectory_paths(at("missing")).isEmpty());
    EXPECT_TRUE(matching_file_names(at("missing"), "*.*").isEmpty());
    EXPECT_TRUE(subdirectory_paths(QString()).isEmpty());
    EXPECT_TRUE(matching_file_names(QString(), "*.*").isEmpty());
    touch(at("plain.txt"));
    EXPECT_TRUE(subdirectory_paths(at("plain.txt")).isEmpty());

    // Unreadable, and readable but not to be entered: its names could not be
    // opened.
    QDir().mkpath(at("locked/sub"));
    touch(at("locked/a.jpg"));
    PlainUserThread user;
    if (!user.why_not().isEmpty()) {
        GTEST_SKIP() << user.why_not().toStdString();
    }
    for (const auto mode :
         {QFileDevice::Permissions(), QFileDevice::ReadOwner | QFileDevice::WriteOwner}) {
        QFile::setPermissions(at("locked"), mode);
        EXPECT_TRUE(subdirectory_paths(at("locked")).isEmpty());
        EXPECT_TRUE(matching_file_names(at("locked"), "*.jpg").isEmpty());
    }
    QFile::setPermissions(at("locked"),
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
}

TEST_F(DirectoryReaderTest, FilesMatchPatternListsIgnoringCase) {
    for (const char* name : {"b.JPG", "a.gif", "C.jpg", "d.png", "README", "archive.tar.gz",
                             "x.jpeg", ".hidden.jpg", "photo.jpg.txt"}) {
        touch(at(name));
    }
    QDir().mkpath(at("folder.jpg"));
    ASSERT_TRUE(QFile::link(at("a.gif"), at("e-link.gif")));

    EXPECT_EQ(matching_file_names(tmp.path(), "*.gif;*.jpg"),
              QStringList({"a.gif", "b.JPG", "C.jpg", "e-link.gif"}));
    EXPECT_EQ(matching_file_names(tmp.path(), " *.JPG ; *.png "),
              QStringList({"b.JPG", "C.jpg", "d.png"}));
    // "*.*" is every file, those without an extension too.
    EXPECT_EQ(matching_file_names(tmp.path(), "*.*"),
              QStringList({"a.gif", "archive.tar.gz", "b.JPG", "C.jpg", "d.png", "e-link.gif",
                           "photo.jpg.txt", "README", "x.jpeg"}));
    EXPECT_EQ(matching_file_names(tmp.path(), "*.*.*"), matching_file_names(tmp.path(), "*.*"));
    EXPECT_EQ(matching_file_names(tmp.path(), ""), matching_file_names(tmp.path(), "*.*"));
    // A bare word is a whole name, and "?" is one character.
    EXPECT_EQ(matching_file_names(tmp.path(), "readme"), QStringList({"README"}));
    EXPECT_TRUE(matching_file_names(tmp.path(), "jpg").isEmpty());
    EXPECT_EQ(matching_file_names(tmp.path(), "?.jpg"), QStringList({"b.JPG", "C.jpg"}));
    EXPECT_EQ(matching_file_names(tmp.path(), "*.tar.*"), QStringList({"archive.tar.gz"}));
    EXPECT_EQ(matching_file_names(tmp.path(), "photo.*"), QStringList({"photo.jpg.txt"}));
}

TEST(FilePatterns, WildcardsBacktrackOptionalExtensionsAndCaseFoldedSort) {
    const FilePatterns p("a*b*c.txt");
    EXPECT_TRUE(p.matches("abc.txt"));
    EXPECT_TRUE(p.matches("aXbYbZc.TXT"));
    EXPECT_FALSE(p.matches("abc.txt.bak"));
    EXPECT_FALSE(p.matches("bc.txt"));
    const FilePatterns name_any("readme.*");
    EXPECT_TRUE(name_any.matches("README"));
    EXPECT_TRUE(name_any.matches("readme.md"));
    EXPECT_FALSE(name_any.matches("readme2"));
    EXPECT_FALSE(FilePatterns("*.jpg").matches_everything());
    EXPECT_TRUE(FilePatterns("*.jpg;*").matches_everything());
    // Sorting folds case first, then puts capitals first.
    QStringList names{"b", "B", "a", "C", "A"};
    sort_ignoring_case(names);
    EXPECT_EQ(names, QStringList({"A", "a", "B", "b", "C"}));
}

TEST(MountRoots, KeepsUserMountsInOrderAndTheRootOfAPathIsItsLongestParent) {
    const QString table =
        "proc /proc proc rw 0 0\n"
        "sysfs /sys sysfs rw 0 0\n"
        "/dev/sda1 / ext4 rw 0 0\n"
        "/dev/sda2 /home ext4 rw 0 0\n"
        "tmpfs /run tmpfs rw 0 0\n"
        "tmpfs /run/user/1000 tmpfs rw 0 0\n"
        "/dev/sdb1 /run/media/ann/USB\\040STICK vfat rw 0 0\n"
        "/dev/sdc1 /media/cdrom iso9660 ro 0 0\n"
        "/dev/sda3 /boot/efi vfat rw 0 0\n"
        "cgroup2 /mnt/cg cgroup2 rw 0 0\n"
        "/dev/sdd1 /mnt/data ext4 rw 0 0\n"
        "/dev/sdd1 /mnt/data ext4 rw 0 0\n"
        "/dev/sde1 /mnt/gone ext4 rw 0 0\n"
        "garbage\n";
    auto usable = [](const QString& p) { return p != "/mnt/gone"; };
    EXPECT_EQ(mounted_roots_from(table, usable),
              QStringList({"/", "/home", "/run/media/ann/USB STICK", "/media/cdrom", "/mnt/data"}));
    EXPECT_EQ(mounted_roots().first(), "/");
    // The root of a path is its longest parent on whole components.
    const QStringList roots{"/", "/home", "/home/ann/usb", "/media/cd"};
    EXPECT_EQ(root_of("/home/ann/pics", roots), "/home");
    EXPECT_EQ(root_of("/home/ann/usb/x", roots), "/home/ann/usb");
    EXPECT_EQ(root_of("/home/ann/usb", roots), "/home/ann/usb");
    EXPECT_EQ(root_of("/homework", roots), "/");
    EXPECT_EQ(root_of("/media/cd/", roots), "/media/cd");
    EXPECT_EQ(root_of("/media/cdrom", roots), "/");
    EXPECT_EQ(root_of("relative/path", roots), "/");
    EXPECT_EQ(root_of("/x", QStringList()), "");
}
