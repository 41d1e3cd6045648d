#include "lists/directory_walk.h"

#include "support/qt_print.h"
#include "support/test_home.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace {

class DirectoryWalkTest : public ::testing::Test {
protected:
    void SetUp() override {
        for (const char* f :
             {"tree/top.jpg", "tree/Beta/b1.gif", "tree/alpha/a1.jpg", "tree/alpha/deep/d1.JPG",
              "tree/alpha/deep/skip.txt", "tree/Beta/inner/i1.jpg", "tree/gamma/notes.txt"}) {
            home.write_file(f);
        }
        root = QDir(home.path("tree")).canonicalPath();
    }
    QStringList under_root(const QStringList& names) const {
        QStringList out;
        for (const QString& n : names) {
            out << root + u'/' + n;
        }
        return out;
    }
    TestHome home{false};
    QString root;
};

}  // namespace

TEST_F(DirectoryWalkTest, BreadthFirstWithParentsBeforeChildrenAndPatternLists) {
    ItemList files;
    home.app.stop_scan = true;  // a former cancel does not stop a new walk
    const QString last = scan_directory_tree(home.ctx, root, "*.*", files);
    EXPECT_EQ(files.items(),
              under_root({"top.jpg", "alpha/a1.jpg", "Beta/b1.gif", "gamma/notes.txt",
                          "alpha/deep/d1.JPG", "alpha/deep/skip.txt", "Beta/inner/i1.jpg"}));
    EXPECT_EQ(last, root + "/Beta/inner");
    EXPECT_TRUE(home.app.scan_started);
    EXPECT_FALSE(home.app.stop_scan);
    EXPECT_TRUE(home.app.directory_list.empty());
    // One turn of the message loop per directory.
    EXPECT_EQ(home.ui.yields, 6);

    // A pattern list takes every kind it names, ignoring case.
    scan_directory_tree(home.ctx, root, "*.gif;*.jpg", files);
    EXPECT_EQ(files.items(), under_root({"top.jpg", "alpha/a1.jpg", "Beta/b1.gif",
                                         "alpha/deep/d1.JPG", "Beta/inner/i1.jpg"}));
    scan_directory_tree(home.ctx, root, "*.txt", files);
    EXPECT_EQ(files.items(), under_root({"gamma/notes.txt", "alpha/deep/skip.txt"}));
}

TEST_F(DirectoryWalkTest, CancelStopsAtTheNextDirectoryAndKeepsTheQueue) {
    RecordingUi cancel;
    cancel.on_turn = [&](int turn) {
        if (turn == 3) {
            home.app.stop_scan = true;  // as the Cancel button would
        }
    };
    Context ctx{home.app, home.dialogs, cancel, home.shell};
    ItemList files;
    files.add("/stale");
    scan_directory_tree(ctx, root, "*.*", files);
    // Two directories were walked before the stop was seen.
    EXPECT_EQ(files.items(), under_root({"top.jpg", "alpha/a1.jpg"}));
    EXPECT_EQ(home.app.directory_list.items(), under_root({"Beta", "gamma", "alpha/deep"}));
    EXPECT_EQ(cancel.yields, 3);
}

TEST_F(DirectoryWalkTest, OnlyLinksBackUpTheTreeAreCutAndUnreadableDirectoriesArePassed) {
    ASSERT_TRUE(QFile::link(root, root + "/alpha/loop"));
    ASSERT_TRUE(QFile::link(root + "/alpha", root + "/gamma/to_alpha"));
    // A directory that goes away after it was queued cannot be read.
    DirectoryWalk hooks;
    hooks.visiting = [&](const QString& dir) {
        if (dir == root) {
            QDir(root + "/Beta").removeRecursively();
        }
    };
    ItemList files;
    scan_directory_tree(home.ctx, root, "*.*", files, hooks);
    // The directory reached through a second link is walked again.
    EXPECT_EQ(files.items(),
              under_root({"top.jpg", "alpha/a1.jpg", "gamma/notes.txt", "alpha/deep/d1.JPG",
                          "alpha/deep/skip.txt", "gamma/to_alpha/a1.jpg",
                          "gamma/to_alpha/deep/d1.JPG", "gamma/to_alpha/deep/skip.txt"}));
}
