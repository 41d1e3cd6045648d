#pragma once

#include "core/item_list.h"
#include "ui/tab_page.h"

#include <memory>

namespace Ui {
class SearchTab;
}

// The Search tab: finds rows of the catalog by one of seven criteria, lists
// the found files that exist, previews the clicked one and can turn the
// result into the main list or copy the files elsewhere.
class SearchTab : public TabPage {
    Q_OBJECT
public:
    explicit SearchTab(Workbench& wb, QWidget* parent = nullptr);
    ~SearchTab() override;

    // Back to "Search File Name", and the catalog's record count.
    void enter() override;

    // b_search_database.
    void search_now();
    // b_search_add_to_main_list.
    void update_main_list();
    // b_search_copy_files.
    void copy_files();

    // o_search_list's rows, which the file list menu also works on.
    ItemList& results() { return results_; }

private:
    void show_clicked_file();

    std::unique_ptr<Ui::SearchTab> ui_;
    ItemList results_;
};
