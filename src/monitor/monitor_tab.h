#pragma once

#include "ui/tab_page.h"

#include <memory>

namespace Ui {
class MonitorTab;
}

// The Monitor tab: the table of watched directories and their file types,
// the interval, and the button that starts and stops monitoring.
class MonitorTab : public TabPage {
    Q_OBJECT
public:
    explicit MonitorTab(Workbench& wb, QWidget* parent = nullptr);
    ~MonitorTab() override;

private:
    std::unique_ptr<Ui::MonitorTab> ui_;
};
