#include "slides/slides_tab.h"

#include "ui_slides_tab.h"

SlidesTab::SlidesTab(Workbench& wb, QWidget* parent) : TabPage(wb, parent), ui_(new Ui::SlidesTab) {
    ui_->setupUi(this);
}

SlidesTab::~SlidesTab() = default;
