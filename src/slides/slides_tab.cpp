#include "slides/slides_tab.h"

#include "ui_slides_tab.h"

#include "imaging/preview_window.h"
#include "lists/panel_table.h"

SlidesTab::SlidesTab(Workbench& wb, QWidget* parent) : TabPage(wb, parent), ui_(new Ui::SlidesTab) {
    ui_->setupUi(this);
    // A picture that cannot be read is not caught here.
    connect(ui_->o_slides_filelist, &QAbstractItemView::clicked, this, [this] {
        show_panel_file(wb_, QStringLiteral("slides"), current_row_text(ui_->o_slides_filelist),
                        false);
    });
    connect(ui_->o_slides_image_view, &ImageView::clicked, this, [this] { open_preview(wb_); });
}

SlidesTab::~SlidesTab() = default;
