#include "monitor/monitor_tab.h"

#include "ui_monitor_tab.h"

MonitorTab::MonitorTab(Workbench& wb, QWidget* parent)
    : TabPage(wb, parent), ui_(new Ui::MonitorTab) {
    ui_->setupUi(this);
}

MonitorTab::~MonitorTab() = default;
