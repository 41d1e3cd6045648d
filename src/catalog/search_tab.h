#pragma once

#include "ui/tab_page.h"

#include <memory>

namespace Ui {
class SearchTab;
}

// The Search tab: finds rows of the catalog by one of seven criteria, lists
// the found files that exist, previews the clicked one and can turn the
// result into the main list or copy the files elsewhere.
class SearchTab : public TabPage {
    Q_OBJECT
public:
    explicit SearchTab(Workbench& wb, QWidget* parent = nullptr);
    ~SearchTab() override;

private:
    std::unique_ptr<Ui::SearchTab> ui_;
};
