#include "imaging/printing_tab.h"

#include "ui_printing_tab.h"

#include "imaging/preview_window.h"
#include "lists/panel_table.h"

PrintingTab::PrintingTab(Workbench& wb, QWidget* parent)
    : TabPage(wb, parent), ui_(new Ui::PrintingTab) {
    ui_->setupUi(this);
    // A picture that cannot be read leaves the viewer as it was, with no message.
    connect(ui_->o_printing_file_list, &QAbstractItemView::clicked, this, [this] {
        show_panel_file(wb_, QStringLiteral("printing"),
                        current_row_text(ui_->o_printing_file_list));
    });
    connect(ui_->o_printing_image_view, &ImageView::clicked, this, [this] { open_preview(wb_); });
}

PrintingTab::~PrintingTab() = default;
