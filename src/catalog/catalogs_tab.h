#pragma once

#include "ui/tab_page.h"

#include <memory>

namespace Ui {
class CatalogsTab;
}

// The Catalogs tab: the list of catalog names, and Add and Delete.
class CatalogsTab : public TabPage {
    Q_OBJECT
public:
    explicit CatalogsTab(Workbench& wb, QWidget* parent = nullptr);
    ~CatalogsTab() override;

    // Refills the catalog names.
    void enter() override;

    // b_category_add: adds the name of `o_category_name` unless it is there.
    void add_name();
    // b_category_delete: deletes the name after a question. A name with an
    // apostrophe throws, which is left to the last-resort handler.
    void delete_name();

private:
    std::unique_ptr<Ui::CatalogsTab> ui_;
};
