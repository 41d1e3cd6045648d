#pragma once

#include <QString>

class QAbstractItemView;
class QCheckBox;
class QComboBox;
class QRadioButton;
class ItemList;
class Workbench;

// The controls through which a tab passes its list on: to the main list and
// into the catalog. The Load and Scan tabs have the same set under their own
// names.
struct ListControls {
    QAbstractItemView* list = nullptr;
    QComboBox* catalog = nullptr;
    QRadioButton* entire_list = nullptr;     // option index 0
    QRadioButton* selected_files = nullptr;  // option index 1
    QCheckBox* append_files = nullptr;
};

// The Load tab's set (`o_load_filelist`, ...) and the Scan tab's
// (`o_scan_file_list`, ...), found by name; missing controls are null.
ListControls load_list_controls(Workbench& wb);
ListControls scan_list_controls(Workbench& wb);

// The paths a list view shows: its ItemList model (null for none).
ItemList* item_list_of(QAbstractItemView* view);

// "Main List": passes the list to the main list, then refreshes the Main
// tab's file count and empties its fields.
void pass_list_to_main(Workbench& wb, const ListControls& c);
// "Database": enters the list into the catalog, shows the statistics and
// refills the catalog lists.
void enter_list_into_catalog(Workbench& wb, const ListControls& c);
// Turns on "Use entire list" when neither option is on.
void default_update_option(const ListControls& c);

// The Scan tab's two commands and the rest of its entry, over the controls
// of that tab found by name.
void scan_update_main_list(Workbench& wb);
void scan_update_database(Workbench& wb);
void enter_scan_lists(Workbench& wb);

// A click on a row of a tab's file list: shows the current row's file in the
// tab's panel (`panel_word`), a failing step passed over.
void show_list_row(Workbench& wb, const ItemList& list, const QString& panel_word);
