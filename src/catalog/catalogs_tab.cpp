#include "catalog/catalogs_tab.h"

#include "ui_catalogs_tab.h"

#include "catalog/catalog_names.h"
#include "lists/main_list_ui.h"

CatalogsTab::CatalogsTab(Workbench& wb, QWidget* parent)
    : TabPage(wb, parent), ui_(std::make_unique<Ui::CatalogsTab>()) {
    ui_->setupUi(this);
    connect(ui_->b_category_add, &QPushButton::clicked, this, &CatalogsTab::add_name);
    connect(ui_->b_category_delete, &QPushButton::clicked, this, &CatalogsTab::delete_name);
    // A click on a row, or a key that moves to another, copies its name; a
    // row that is only current (the list taking the focus) copies nothing.
    auto copy_name = [this](QListWidgetItem* item) {
        if (item && item->isSelected()) {
            ui_->o_category_name->setText(item->text());
        }
    };
    connect(ui_->o_category_list, &QListWidget::itemClicked, this, copy_name);
    connect(ui_->o_category_list, &QListWidget::currentItemChanged, this, copy_name);
}

CatalogsTab::~CatalogsTab() = default;

void CatalogsTab::enter() {
    fill_catalog_lists(wb_);
}

void CatalogsTab::add_name() {
    const QString name = ui_->o_category_name->text();
    if (add_catalog_name(ctx(), name)) {
        ui_->o_category_list->addItem(name);
    }
    fill_catalog_lists(wb_);
}

void CatalogsTab::delete_name() {
    if (delete_catalog_name(ctx(), ui_->o_category_name->text())) {
        fill_catalog_lists(wb_);
    }
}
