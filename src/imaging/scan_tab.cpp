#include "imaging/scan_tab.h"

#include "ui_scan_tab.h"

#include "imaging/preview_window.h"
#include "lists/list_commands.h"
#include "lists/panel_table.h"

ScanTab::ScanTab(Workbench& wb, QWidget* parent) : TabPage(wb, parent), ui_(new Ui::ScanTab) {
    ui_->setupUi(this);
    // The scans pass on to the main list and the catalog as the Load tab's
    // files do.
    connect(ui_->b_scan_update_main_list, &QPushButton::clicked, this,
            [this] { scan_update_main_list(wb_); });
    connect(ui_->b_scan_update_database, &QPushButton::clicked, this,
            [this] { scan_update_database(wb_); });
    // A picture that cannot be read leaves the viewer as it was, with no message.
    connect(ui_->o_scan_file_list, &QAbstractItemView::clicked, this, [this] {
        show_panel_file(wb_, QStringLiteral("scan"), current_row_text(ui_->o_scan_file_list));
    });
    connect(ui_->o_scan_image_view, &ImageView::clicked, this, [this] { open_preview(wb_); });
}

void ScanTab::enter() {
    enter_scan_lists(wb_);
}

ScanTab::~ScanTab() = default;
