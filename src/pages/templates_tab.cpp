#include "pages/templates_tab.h"

#include "pages/template_editor.h"
#include "pages/template_lists.h"
#include "pages/template_store.h"
#include "ui_templates_tab.h"

TemplatesTab::TemplatesTab(Workbench& workbench, QWidget* parent)
    : TabPage(workbench, parent), ui_(std::make_unique<Ui::TemplatesTab>()) {
    ui_->setupUi(this);
    // "Create Output" stands on the tab and is never shown.
    ui_->b_template_create_page->hide();
    connect(ui_->b_template_new, &QPushButton::clicked, this, &TemplatesTab::add_new);
    connect(ui_->b_template_update, &QPushButton::clicked, this, &TemplatesTab::update_description);
    connect(ui_->o_template_delete, &QPushButton::clicked, this, &TemplatesTab::delete_selected);
    connect(ui_->b_template_edit, &QPushButton::clicked, this, &TemplatesTab::edit_selected);
    connect(ui_->o_template_list, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row >= 0) {
            show_description();
        }
    });
    connect(ui_->o_template_list, &QListWidget::itemClicked, this,
            [this](QListWidgetItem*) { show_description(); });
    connect(ui_->o_template_description, &QPlainTextEdit::textChanged, this,
            [this] { ui_->b_template_update->setEnabled(true); });
}

TemplatesTab::~TemplatesTab() = default;

void TemplatesTab::enter() {
    fill_template_lists(wb_);
}

QString TemplatesTab::selected_name() const {
    const QList<QListWidgetItem*> selected = ui_->o_template_list->selectedItems();
    return selected.isEmpty() ? QString() : selected.first()->text();
}

void TemplatesTab::add_new() {
    const std::optional<QString> title = add_template(ctx());
    if (!title) {
        return;
    }
    fill_template_lists(wb_);
    QListWidget* list = ui_->o_template_list;
    for (int i = 0; i < list->count(); ++i) {
        if (list->item(i)->text() == *title) {
            list->setCurrentRow(i);
            break;
        }
    }
}

void TemplatesTab::show_description() {
    const std::optional<QString> shown = template_description(app(), selected_name());
    if (shown) {
        ui_->o_template_description->setPlainText(*shown);
    }
    ui_->b_template_update->setEnabled(false);
}

void TemplatesTab::update_description() {
    update_template_description(app(), selected_name(), ui_->o_template_description->toPlainText());
    ui_->b_template_update->setEnabled(false);
}

void TemplatesTab::delete_selected() {
    if (delete_template(ctx(), selected_name())) {
        fill_template_lists(wb_);
    }
}

void TemplatesTab::edit_selected() {
    if (selected_name().isEmpty()) {
        return;
    }
    open_template_editor(wb_);
}
