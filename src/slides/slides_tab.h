#pragma once

#include "ui/tab_page.h"

#include <memory>

namespace Ui {
class SlidesTab;
}

// The Slides tab: edits one saved slide show at a time (its images, music,
// delay and loop) and plays it.
class SlidesTab : public TabPage {
    Q_OBJECT
public:
    explicit SlidesTab(Workbench& wb, QWidget* parent = nullptr);
    ~SlidesTab() override;

private:
    std::unique_ptr<Ui::SlidesTab> ui_;
};
