#include "imaging/scan_tab.h"

#include "ui_scan_tab.h"

#include "lists/list_commands.h"

ScanTab::ScanTab(Workbench& wb, QWidget* parent) : TabPage(wb, parent), ui_(new Ui::ScanTab) {
    ui_->setupUi(this);
    // The scans pass on to the main list and the catalog as the Load tab's
    // files do.
    connect(ui_->b_scan_update_main_list, &QPushButton::clicked, this,
            [this] { scan_update_main_list(wb_); });
    connect(ui_->b_scan_update_database, &QPushButton::clicked, this,
            [this] { scan_update_database(wb_); });
}

void ScanTab::enter() {
    enter_scan_lists(wb_);
}

ScanTab::~ScanTab() = default;
