#pragma once

#include "ui/tab_page.h"

#include <memory>

namespace Ui {
class PrintingTab;
}

// The Printing tab: prints the images of its list 1, 2, 4 or 8 to a page
// on the chosen printer.
class PrintingTab : public TabPage {
    Q_OBJECT
public:
    explicit PrintingTab(Workbench& wb, QWidget* parent = nullptr);
    ~PrintingTab() override;

private:
    std::unique_ptr<Ui::PrintingTab> ui_;
};
