#include "catalog/search_tab.h"

#include "ui_search_tab.h"

#include "catalog/busy_pointer.h"
#include "catalog/search.h"
#include "imaging/preview_window.h"
#include "lists/main_list_ui.h"
#include "lists/panel_table.h"

SearchTab::SearchTab(Workbench& wb, QWidget* parent)
    : TabPage(wb, parent), ui_(new Ui::SearchTab), results_(this) {
    ui_->setupUi(this);
    ui_->o_search_list->setModel(&results_);
    ui_->o_search_list->setSelectionModel(results_.selection_model());
    connect(ui_->b_search_database, &QPushButton::clicked, this, &SearchTab::search_now);
    connect(ui_->b_search_add_to_main_list, &QPushButton::clicked, this,
            &SearchTab::update_main_list);
    connect(ui_->b_search_copy_files, &QPushButton::clicked, this, &SearchTab::copy_files);
    connect(ui_->o_search_list, &FileListView::left_pressed, this, &SearchTab::show_clicked_file);
    connect(ui_->o_search_list, &FileListView::right_pressed, this,
            [this] { wb_.popup_item_menu(); });
    connect(ui_->o_search_image_view, &ImageView::clicked, this, [this] { open_preview(wb_); });
}

SearchTab::~SearchTab() = default;

void SearchTab::enter() {
    // The kind chosen before is not kept; the value and the list are.
    ui_->o_search_item->clear();
    ui_->o_search_item->addItems(search_kinds());
    ui_->o_search_item->setCurrentIndex(kDefaultSearchKind);
    ui_->l_search_db_record_count->setText(record_count_caption(ctx()));
}

void SearchTab::search_now() {
    if (search_database(ctx(), ui_->o_search_item->currentText(), ui_->o_search_value->text(),
                        results_)) {
        ui_->f_search->setTitle(QStringLiteral("File Count: ") + QString::number(results_.count()));
    }
}

void SearchTab::update_main_list() {
    if (search_to_main_list(ctx(), results_, ui_->o_search_copy_files->isChecked())) {
        clear_main_fields(wb_);
    }
}

void SearchTab::copy_files() {
    copy_found_files(ctx(), results_, ui_->o_search_copy_files->isChecked());
}

void SearchTab::show_clicked_file() {
    // Under the wait cursor; a picture that cannot be read is not caught here.
    ctx().ui.set_busy(true);
    const int row = results_.list_index();
    show_panel_file(wb_, QStringLiteral("search"), row < 0 ? QString() : results_.item(row), false);
    ctx().ui.set_busy(false);
}
