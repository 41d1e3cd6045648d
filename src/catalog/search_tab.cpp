#include "catalog/search_tab.h"

#include "ui_search_tab.h"

#include "imaging/preview_window.h"
#include "lists/panel_table.h"

SearchTab::SearchTab(Workbench& wb, QWidget* parent) : TabPage(wb, parent), ui_(new Ui::SearchTab) {
    ui_->setupUi(this);
    // Under the wait cursor; a picture that cannot be read is not caught here.
    connect(ui_->o_search_list, &QAbstractItemView::clicked, this, [this] {
        ctx().ui.set_busy(true);
        show_panel_file(wb_, QStringLiteral("search"), current_row_text(ui_->o_search_list), false);
        ctx().ui.set_busy(false);
    });
    connect(ui_->o_search_image_view, &ImageView::clicked, this, [this] { open_preview(wb_); });
}

SearchTab::~SearchTab() = default;
