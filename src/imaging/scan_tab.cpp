#include "imaging/scan_tab.h"

#include "ui_scan_tab.h"

#include "imaging/preview_window.h"
#include "imaging/scan_command.h"
#include "lists/list_commands.h"
#include "lists/panel_table.h"

ScanTab::ScanTab(Workbench& wb, QWidget* parent)
    : TabPage(wb, parent), ui_(new Ui::ScanTab), files_(this) {
    ui_->setupUi(this);
    ui_->o_scan_file_list->setModel(&files_);
    ui_->o_scan_file_list->setSelectionModel(files_.selection_model());
    // The scans pass on to the main list and the catalog as the Load tab's
    // files do.
    connect(ui_->b_scan_update_main_list, &QPushButton::clicked, this,
            [this] { scan_update_main_list(wb_); });
    connect(ui_->b_scan_update_database, &QPushButton::clicked, this,
            [this] { scan_update_database(wb_); });
    // A row clicked or reached by a key shows its picture.
    connect(ui_->o_scan_file_list, &FileListView::left_pressed, this,
            [this] { show_list_row(wb_, files_, QStringLiteral("scan")); });
    connect(ui_->o_scan_file_list, &FileListView::current_moved_by_key, this,
            [this] { show_list_row(wb_, files_, QStringLiteral("scan")); });
    connect(ui_->o_scan_image_view, &ImageView::clicked, this, [this] { open_preview(wb_); });
    connect(ui_->b_scan_get_device, &QPushButton::clicked, this,
            [this] { select_scan_source(ctx()); });
    connect(ui_->b_scan_get_image, &QPushButton::clicked, this, [this] {
        ScanPanel panel{ui_->o_scan_image_view->control(), files_,
                        [this] { fit_panel(wb_, QStringLiteral("scan")); }};
        scan_image(ctx(), panel);
    });
}

void ScanTab::enter() {
    enter_scan_lists(wb_);
}

ScanTab::~ScanTab() = default;
