#include "imaging/scan_tab.h"

#include "ui_scan_tab.h"

ScanTab::ScanTab(Workbench& wb, QWidget* parent) : TabPage(wb, parent), ui_(new Ui::ScanTab) {
    ui_->setupUi(this);
}

ScanTab::~ScanTab() = default;
