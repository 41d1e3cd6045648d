#pragma once

#include "core/context.h"

#include <functional>

class ItemList;

// The file list menu ("Item List Menu"): one menu shared by the lists of the
// Main, Load, Search and Resize tabs. Each item acts on the list of the tab
// that is current when it is chosen, and means somewhat different things on
// each tab; some do nothing on some tabs. Every failure is passed over.
struct ItemMenuTarget {
    QString caption;           // caption of the current tab, read at the click
    ItemList* list = nullptr;  // that tab's file list, if it has one
    // Sets "File Count: " on the frame of the Load or Resize list.
    std::function<void(int rows)> show_count;
    // Sets the caption of the Search tab's record count label.
    std::function<void(const QString& caption)> show_record_count;
};

enum ItemMenuRow {
    kRemoveFromList = 5,
    kDeleteFromDisk = 10,
    kDeleteFromDiskAndDatabase = 15,
    kOpenWithApplication = 25,
    kCommonInformation = 50,
};

// Runs item `row` (5, 10, 15 or 25). Item 50 opens a form and is the window's.
void run_item_menu(Context& ctx, int row, ItemMenuTarget& target);
