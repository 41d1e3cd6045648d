#pragma once

#include "core/item_list.h"
#include "ui/tab_page.h"

#include <memory>

namespace Ui {
class ScanTab;
}

// The Scan tab: takes pictures from a scanner into its own list, from which
// they go to the main list or the catalog.
class ScanTab : public TabPage {
    Q_OBJECT
public:
    explicit ScanTab(Workbench& wb, QWidget* parent = nullptr);
    ~ScanTab() override;

    // Refills the catalog names and turns on "Use entire list" when neither
    // option is on.
    void enter() override;

    // The scanned files, `o_scan_file_list`.
    ItemList& files() { return files_; }

private:
    std::unique_ptr<Ui::ScanTab> ui_;
    ItemList files_;
};
