#include "catalog/search_tab.h"

#include "ui_search_tab.h"

SearchTab::SearchTab(Workbench& wb, QWidget* parent) : TabPage(wb, parent), ui_(new Ui::SearchTab) {
    ui_->setupUi(this);
}

SearchTab::~SearchTab() = default;
