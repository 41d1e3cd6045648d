#include "pages/index_tab.h"

#include "ui_index_tab.h"

IndexTab::IndexTab(Workbench& wb, QWidget* parent) : TabPage(wb, parent), ui_(new Ui::IndexTab) {
    ui_->setupUi(this);
}

IndexTab::~IndexTab() = default;
