#include "lists/list_transfer.h"

#include "support/qt_print.h"
#include "support/test_home.h"

#include <gtest/gtest.h>

TEST(PassToMainList, ASelectionNeverAddsAPathTwiceButCaseCounts) {
    TestHome home;
    ItemList source;
    source.add_many({"/p/A.jpg", "/p/b.jpg", "/p/c.jpg", "/p/b.jpg", "/p/d.jpg"});
    for (const int row : {0, 1, 3, 4}) {
        source.set_selected(row, true);
    }
    ItemList& main = home.app.main_list;
    main.add_many({"/p/a.jpg", "/p/d.jpg"});
    UpdateListOption option = UpdateListOption::SelectedFiles;
    home.dialogs.answer(Dialogs::Answer::Yes);
    EXPECT_TRUE(pass_to_main_list(home.ctx, source, main, true, option));
    EXPECT_EQ(main.items(), QStringList({"/p/a.jpg", "/p/d.jpg", "/p/A.jpg", "/p/b.jpg"}));
    EXPECT_EQ(option, UpdateListOption::SelectedFiles);

    // Replacing with nothing selected leaves an empty main list.
    source.clear_selection();
    home.dialogs.answer(Dialogs::Answer::Yes);
    EXPECT_TRUE(pass_to_main_list(home.ctx, source, main, false, option));
    EXPECT_TRUE(main.empty());
}

TEST(SearchFileList, FindsTheFirstRowHoldingTheTextIgnoringCase) {
    TestHome home;
    ItemList list;
    list.add_many({"/p/Owl.jpg", "/p/cat.gif", "/p/big owl.png", "/p/CAT2.gif"});
    list.set_selected(0, true);

    EXPECT_EQ(search_file_list(home.ctx, list), -1);
    ASSERT_EQ(home.dialogs.asked().size(), 1u);
    EXPECT_EQ(home.dialogs.asked()[0].kind, "input");
    EXPECT_EQ(home.dialogs.asked()[0].text, "Enter the search text.");
    EXPECT_EQ(home.dialogs.asked()[0].title, "Text Search");

    home.dialogs.answer_input("CAT");
    EXPECT_EQ(search_file_list(home.ctx, list), 1);
    EXPECT_EQ(list.selected_rows(), QList<int>({0, 1}));
    EXPECT_EQ(list.list_index(), 1);

    home.dialogs.answer_input("zebra");
    EXPECT_EQ(search_file_list(home.ctx, list), -1);
    EXPECT_EQ(list.selected_rows(), QList<int>({0, 1}));
    EXPECT_EQ(list.list_index(), 1);
    // Nothing is said when nothing is found.
    EXPECT_TRUE(home.dialogs.messages().isEmpty());
}
