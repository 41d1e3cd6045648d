#pragma once

#include "ui/tab_page.h"

#include <memory>

namespace Ui {
class TemplatesTab;
}

// The Templates tab: the list of templates, their descriptions, and the
// commands that add, describe, delete and edit them. Entering the tab
// refills the template lists from the catalog.
class TemplatesTab : public TabPage {
    Q_OBJECT
public:
    explicit TemplatesTab(Workbench& workbench, QWidget* parent = nullptr);
    ~TemplatesTab() override;

    void enter() override;

private:
    QString selected_name() const;
    void add_new();
    void show_description();
    void update_description();
    void delete_selected();
    void edit_selected();

    std::unique_ptr<Ui::TemplatesTab> ui_;
};
