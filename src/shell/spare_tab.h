#pragma once

#include "ui/tab_page.h"

#include <memory>

namespace Ui {
class SpareTab;
}

// The spare tab "11": an empty page whose tab is hidden at each start.
class SpareTab : public TabPage {
    Q_OBJECT
public:
    explicit SpareTab(Workbench& wb, QWidget* parent = nullptr);
    ~SpareTab() override;

private:
    std::unique_ptr<Ui::SpareTab> ui_;
};
