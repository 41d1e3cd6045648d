#include "imaging/printing_tab.h"

#include "ui_printing_tab.h"

PrintingTab::PrintingTab(Workbench& wb, QWidget* parent)
    : TabPage(wb, parent), ui_(new Ui::PrintingTab) {
    ui_->setupUi(this);
}

PrintingTab::~PrintingTab() = default;
