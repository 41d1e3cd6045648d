#pragma once

#include "ui/tab_page.h"

#include <memory>

#include <QStringListModel>

namespace Ui {
class MainTab;
}

// The Main tab: the main list, the fields of the selected file with their
// Save, and the commands that order the list.
class MainTab : public TabPage {
    Q_OBJECT
public:
    explicit MainTab(Workbench& wb, QWidget* parent = nullptr);
    ~MainTab() override;

    // Refills the catalog names and the file count.
    void enter() override;

    // Shows the current row's file and loads its fields from the catalog.
    void select_main_row();
    // b_main_save: writes the fields for the selected file.
    void save();
    // A double click: removes the current row with no question.
    void remove_current_row();
    // Command2 and b_main_move_down. Move down with no current row throws
    // RunError, which is left to the last-resort handler.
    void move_up();
    void move_down();
    // b_main_sort_file_list, by name or by date as `o_main_sort_by` says.
    void sort_list();

private:
    void fields_edited();
    std::unique_ptr<Ui::MainTab> ui_;
    QStringListModel sort_rows_;
};
