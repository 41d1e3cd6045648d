#include "lists/directory_walk.h"

#include "support/qt_print.h"
#include "support/test_home.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace {

// Sets the stop flag at a given turn of the message loop, as the Cancel
// button would.
class CancelAtTurn : public UiHooks {
public:
    CancelAtTurn(AppState& app, int turn) : app_(app), turn_(turn) {}
    void yield() override {
        if (++turns == turn_) {
            app_.stop_scan = true;
        }
    }
    int turns = 0;

private:
    AppState& app_;
    int turn_;
};

class DirectoryWalkTest : public ::testing::Test {
protected:
    void SetUp() override {
        root = QDir(home.path("tree")).canonicalPath();
        for (const char* f :
             {"tree/top.jpg", "tree/Beta/b1.gif", "tree/alpha/a1.jpg", "tree/alpha/deep/d1.JPG",
              "tree/alpha/deep/skip.txt", "tree/Beta/inner/i1.jpg", "tree/gamma/notes.txt"}) {
            home.write_file(f);
        }
        root = QDir(home.path("tree")).canonicalPath();
    }
    TestHome home{false};
    QString root;
};

}  // namespace

TEST_F(DirectoryWalkTest, BreadthFirstWithParentsBeforeChildren) {
    ItemList files;
    home.app.stop_scan = true;  // a former cancel does not stop a new walk
    const QString last = scan_directory_tree(home.ctx, root, "*.*", files);
    EXPECT_EQ(files.items(),
              QStringList({root + "/top.jpg", root + "/alpha/a1.jpg", root + "/Beta/b1.gif",
                           root + "/gamma/notes.txt", root + "/alpha/deep/d1.JPG",
                           root + "/alpha/deep/skip.txt", root + "/Beta/inner/i1.jpg"}));
    EXPECT_EQ(last, root + "/Beta/inner");
    EXPECT_TRUE(home.app.scan_started);
    EXPECT_FALSE(home.app.stop_scan);
    EXPECT_TRUE(home.app.directory_list.empty());
    // One turn of the message loop per directory.
    EXPECT_EQ(home.ui.yields, 6);
}

TEST_F(DirectoryWalkTest, APatternListTakesEveryKindItNamesIgnoringCase) {
    ItemList files;
    scan_directory_tree(home.ctx, root, "*.gif;*.jpg", files);
    EXPECT_EQ(files.items(),
              QStringList({root + "/top.jpg", root + "/alpha/a1.jpg", root + "/Beta/b1.gif",
                           root + "/alpha/deep/d1.JPG", root + "/Beta/inner/i1.jpg"}));
    scan_directory_tree(home.ctx, root, "*.txt", files);
    EXPECT_EQ(files.items(),
              QStringList({root + "/gamma/notes.txt", root + "/alpha/deep/skip.txt"}));
}

TEST_F(DirectoryWalkTest, CancelStopsAtTheNextDirectoryAndKeepsTheQueue) {
    CancelAtTurn cancel(home.app, 3);
    Context ctx{home.app, home.dialogs, cancel, home.shell};
    ItemList files;
    files.add("/stale");
    scan_directory_tree(ctx, root, "*.*", files);
    // Two directories were walked before the stop was seen.
    EXPECT_EQ(files.items(), QStringList({root + "/top.jpg", root + "/alpha/a1.jpg"}));
    EXPECT_EQ(home.app.directory_list.items(),
              QStringList({root + "/Beta", root + "/gamma", root + "/alpha/deep"}));
    EXPECT_EQ(cancel.turns, 3);
}

TEST_F(DirectoryWalkTest, LinksBackUpTheTreeEndAndUnreadableDirectoriesArePassed) {
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
    EXPECT_EQ(files.items(),
              QStringList({root + "/top.jpg", root + "/alpha/a1.jpg", root + "/gamma/notes.txt",
                           root + "/alpha/deep/d1.JPG", root + "/alpha/deep/skip.txt"}));
}
