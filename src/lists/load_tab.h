#pragma once

#include "core/item_list.h"
#include "ui/tab_page.h"

#include <memory>

namespace Ui {
class LoadTab;
}

// The Load tab: browses the disk with the drive, directory and file boxes,
// gathers full paths in `o_load_filelist` (by browsing, or by a walk of a
// whole tree), and passes them to the main list or into the catalog.
class LoadTab : public TabPage {
    Q_OBJECT
public:
    explicit LoadTab(Workbench& wb, QWidget* parent = nullptr);
    ~LoadTab() override;

    // Refills the catalog names, turns on "Use entire list" when neither
    // option is on, and restores the boxes while the list is empty.
    void enter() override;

    // The rows of the file filter box, as the start fills them.
    void fill_file_types();
    // The filter from the settings (written as "*.*" when empty), then the
    // drive and directory of the last directory. A last directory that is
    // gone throws RunError ("Path not found").
    void restore_load_tab();

    // The commands of the tab.
    void change_drive(const QString& drive);
    void change_directory();
    void change_file_types();
    void scan_now();
    void cancel_scan();
    void search_file_list();
    void clear_main_list();
    void show_current_file();

    // The gathered paths, `o_load_filelist`.
    ItemList& files() { return files_; }

private:
    // The caption of `f_load`: "File Count: " + the rows of the list.
    void set_file_count();
    void show_file_count(int rows);
    std::unique_ptr<Ui::LoadTab> ui_;
    ItemList files_;
    bool listed_this_turn_ = false;
};
