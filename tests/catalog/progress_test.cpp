#include "catalog/update_database.h"
#include "lists/directory_walk.h"
#include "support/qt_print.h"
#include "support/test_home.h"

#include <gtest/gtest.h>

// A long command shows its progress from its first item and hides it at its
// end, however it ends: done of total where the total is known, only done
// where it is not.
TEST(Progress, LongCommandsShowDoneOfTotalAndHideAtTheirEnd) {
    TestHome home;
    ItemList list;
    list.set_items(
        {home.write_file("p/a.jpg"), home.write_file("p/b.jpg"), home.write_file("p/c/d.jpg")});
    update_database_from_list(home.ctx, list, "Birds", true);
    EXPECT_EQ(home.ui.progress, QStringList({"0/3", "1/3", "2/3", "end"}));

    // The walk knows its end only there: it counts directories, with no total.
    home.ui.progress.clear();
    ItemList found;
    scan_directory_tree(home.ctx, home.path("p"), "*.*", found);
    EXPECT_EQ(found.count(), 3);
    EXPECT_EQ(home.ui.progress, QStringList({"0/0", "1/0", "end"}));

    // Stopped half-way, the progress goes all the same.
    home.ui.progress.clear();
    home.ui.on_turn = [&](int) { home.app.stop_scan = true; };
    scan_directory_tree(home.ctx, home.path("p"), "*.*", found);
    EXPECT_EQ(home.ui.progress.last(), "end");
}
