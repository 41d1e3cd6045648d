#include "shell/spare_tab.h"

#include "ui_spare_tab.h"

SpareTab::SpareTab(Workbench& wb, QWidget* parent) : TabPage(wb, parent), ui_(new Ui::SpareTab) {
    ui_->setupUi(this);
}

SpareTab::~SpareTab() = default;
