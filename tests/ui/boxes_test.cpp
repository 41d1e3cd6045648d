#include "core/run_error.h"
#include "support/qt_print.h"
#include "ui/directory_box.h"
#include "ui/file_box.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

class BoxesTest : public ::testing::Test {
protected:
    void SetUp() override {
        base = QDir(tmp.path()).canonicalPath();
        for (const char* d : {"pics/Zoo", "pics/animals", "pics/Birds/owls"}) {
            QDir().mkpath(base + "/" + d);
        }
        for (const char* f : {"pics/b.JPG", "pics/a.gif", "pics/c.png", "pics/notes.txt"}) {
            ASSERT_TRUE(QFile(base + "/" + f).open(QIODevice::WriteOnly));
        }
    }
    QTemporaryDir tmp;
    QString base;
};

}  // namespace

TEST_F(BoxesTest, DirectoryBoxListsParentsItselfAndChildrenOpensRowsAndRefusesNonDirectories) {
    DirectoryBox box;
    QSignalSpy changed(&box, &DirectoryBox::path_changed);
    box.set_path(base + "/pics/");
    box.set_path(base + "/pics");  // the same path again is no change
    EXPECT_EQ(box.path(), base + "/pics");
    EXPECT_EQ(changed.count(), 1);
    const int parents = static_cast<int>(base.count(u'/')) + 2;  // "/" ... base, pics
    ASSERT_EQ(box.count(), parents + 3);
    EXPECT_EQ(DirectoryBox::row_path(box.item(0)), "/");
    EXPECT_EQ(box.currentRow(), parents - 1);
    EXPECT_EQ(box.item(parents)->text(), "animals");  // children sorted ignoring case
    EXPECT_EQ(box.item(parents + 2)->text(), "Zoo");
    EXPECT_EQ(DirectoryBox::row_path(box.item(parents + 1)), base + "/pics/Birds");

    Q_EMIT box.itemActivated(box.item(parents + 1));
    EXPECT_EQ(box.subdirectories(), QStringList({base + "/pics/Birds/owls"}));
    EXPECT_EQ(changed.at(1).at(0).toString(), base + "/pics/Birds");
    Q_EMIT box.itemActivated(box.item(0));
    EXPECT_EQ(box.path(), "/");

    box.set_path(base + "/pics");
    try {
        box.set_path(base + "/pics/a.gif");
        ADD_FAILURE() << "a file taken for a directory";
    } catch (const RunError& e) {
        EXPECT_EQ(e.text(), "Path not found");
    }
    // A child removed after listing: opening it leaves the path and drops the row.
    QDir(base + "/pics/Zoo").removeRecursively();
    changed.clear();
    Q_EMIT box.itemActivated(box.item(box.count() - 1));
    EXPECT_EQ(box.path(), base + "/pics");
    EXPECT_EQ(changed.count(), 0);
    EXPECT_EQ(box.subdirectories(), QStringList({base + "/pics/animals", base + "/pics/Birds"}));
}

TEST_F(BoxesTest, FileBoxFollowsPathAndPattern) {
    FileBox box;
    box.set_path(base + "/pics/");
    box.set_pattern("*.gif;*.jpg");
    EXPECT_EQ(box.file_names(), QStringList({"a.gif", "b.JPG"}));
    ASSERT_TRUE(QFile(base + "/pics/d.jpg").open(QIODevice::WriteOnly));
    EXPECT_EQ(box.count(), 2);  // a listing is a snapshot until refreshed
    box.refresh();
    EXPECT_EQ(box.file_names(), QStringList({"a.gif", "b.JPG", "d.jpg"}));
    box.set_path(base + "/missing");
    EXPECT_EQ(box.path(), base + "/missing");
    EXPECT_EQ(box.count(), 0);
}
