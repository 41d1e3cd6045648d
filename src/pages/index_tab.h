#pragma once

#include "ui/tab_page.h"

#include <memory>

namespace Ui {
class IndexTab;
}

// The Index tab: writes a linked index of the main list, with no frames or
// as a frameset, from the chosen templates into a target directory.
class IndexTab : public TabPage {
    Q_OBJECT
public:
    explicit IndexTab(Workbench& wb, QWidget* parent = nullptr);
    ~IndexTab() override;

private:
    std::unique_ptr<Ui::IndexTab> ui_;
};
