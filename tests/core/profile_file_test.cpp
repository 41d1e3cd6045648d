#include "core/profile_file.h"

#include "support/plain_user.h"
#include "support/qt_print.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

QString read_all(const QString& path) {
    QFile f(path);
    f.open(QIODevice::ReadOnly);
    return QString::fromUtf8(f.readAll());
}

}  // namespace

TEST(ProfileFile, SectionsAndKeysIgnoreCaseKeepTheirPlaceAndNullDeletes) {
    QTemporaryDir dir;
    ProfileFile ini(dir.path() + "/a.ini");
    EXPECT_EQ(ini.read("Current", "Database"), "");
    ASSERT_TRUE(ini.write("Current", "Database", "/x/qd.mdb"));
    ASSERT_TRUE(ini.write("Output", "Target Directory", "/out"));
    ASSERT_TRUE(ini.write("current", "EDITOR", "vi"));
    ASSERT_TRUE(ini.write("CURRENT", "database", "/y/qd.mdb"));
    EXPECT_EQ(ini.read("CURRENT", "DATABASE"), "/y/qd.mdb");
    EXPECT_EQ(ini.read("current", "editor"), "vi");
    // The replaced key keeps its line; the new key joins its own section.
    EXPECT_EQ(
        read_all(ini.path()),
        "[Current]\r\nDatabase=/y/qd.mdb\r\nEDITOR=vi\r\n[Output]\r\nTarget Directory=/out\r\n");
    EXPECT_EQ(ini.keys("Current"), QStringList({"Database", "EDITOR"}));

    // A null value deletes the key; an empty one stays.
    ini.write("S", "A", "1");
    ini.write("S", "B", "");
    EXPECT_TRUE(ini.contains("S", "B"));
    EXPECT_EQ(ini.read("S", "B", "default"), "");
    ini.write("S", "A", QString());
    EXPECT_FALSE(ini.contains("S", "A"));
    EXPECT_EQ(ini.read("S", "A", "default"), "default");
    ini.remove("S", "B");
    ini.remove("Nowhere", "B");  // nothing to delete is no error
    EXPECT_TRUE(ini.keys("S").isEmpty());
}

TEST(ProfileFile, ReadIsCutAtTheBufferTrimmedAndSeesOtherWritersAndFailsQuietly) {
    QTemporaryDir dir;
    ProfileFile ini(dir.path() + "/a.ini");
    const QString longer(300, u'x');
    ini.write("S", "Long", longer);
    EXPECT_EQ(ini.read("S", "Long").size(), 254);
    EXPECT_EQ(ini.read("S", "Long", QString(), 1000), longer);
    EXPECT_EQ(ini.read("S", "Missing", QString(300, u'd')).size(), 254);
    QFile f(ini.path());
    f.open(QIODevice::Append);
    f.write("[T]\r\n  Key  =   padded value   \r\nQuoted=\"a b\"\r\nnoequals\r\n");
    f.close();
    EXPECT_EQ(ini.read("t", "key"), "padded value");
    EXPECT_EQ(ini.read("T", "Quoted"), "a b");
    EXPECT_EQ(ini.keys("T"), QStringList({"Key", "Quoted"}));

    // Changes made behind its back are seen.
    ini.write("S", "K", "one");
    ProfileFile other(ini.path());
    other.write("S", "K", "two-and-longer");
    EXPECT_EQ(ini.read("S", "K"), "two-and-longer");

    ProfileFile nowhere(dir.path() + "/missing-dir/a.ini");
    EXPECT_FALSE(nowhere.write("S", "K", "v"));
    EXPECT_EQ(nowhere.read("S", "K"), "");
}

TEST(ProfileFile, ALineBreakStaysOnOneLineAndAReadOnlyDirectoryIsWrittenInPlace) {
    QTemporaryDir dir;
    ProfileFile ini(dir.path() + "/a.ini");
    ini.write("S", "A", "1");
    ini.write("T", "B", "2");
    EXPECT_TRUE(ini.write("S", "A", "two\r\nlines\nand\rmore"));
    EXPECT_TRUE(ini.write("S", "New\nKey", "x"));
    EXPECT_EQ(read_all(ini.path()), "[S]\r\nA=two lines and more\r\nNew Key=x\r\n[T]\r\nB=2\r\n");
    EXPECT_EQ(ProfileFile(ini.path()).read("S", "A"), "two lines and more");

    // A directory the user may not write in, with a file the user may: no
    // temporary file can be made beside it, so the file is written in place.
    QFile::setPermissions(dir.path(), QFileDevice::ReadOwner | QFileDevice::ExeOwner);
    PlainUserThread user;
    if (!user.why_not().isEmpty()) {
        GTEST_SKIP() << user.why_not().toStdString();
    }
    EXPECT_TRUE(ini.write("T", "B", "3"));
    EXPECT_EQ(read_all(ini.path()), "[S]\r\nA=two lines and more\r\nNew Key=x\r\n[T]\r\nB=3\r\n");
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files | QDir::Hidden), QStringList({"a.ini"}));
    QFile::setPermissions(dir.path(),
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
}
