#include "catalog/same_info_dialog.h"

#include "catalog/same_info.h"
#include "lists/main_list_ui.h"
#include "ui/workbench.h"
#include "ui_same_info_dialog.h"

#include <QComboBox>

SameInfoDialog::SameInfoDialog(Workbench& wb, QWidget* parent)
    : QDialog(parent), ui_(new Ui::SameInfoDialog), wb_(wb) {
    ui_->setupUi(this);
    setWindowTitle(wb.context().app.application_title);
    ui_->l_info->setText(QStringLiteral(
        "The information below will be applied to all selected file names on the 'Main' tab.  "
        "Once the 'Update Now' button is selected, the changes cannot be reversed."));
    ui_->o_catalog->clear();
    if (auto* main_category = wb.find<QComboBox>(QStringLiteral("o_main_category"))) {
        for (int i = 0; i < main_category->count(); ++i) {
            ui_->o_catalog->addItem(main_category->itemText(i));
        }
    }
    ui_->o_catalog->setCurrentIndex(-1);
    ui_->o_catalog->clearEditText();
    connect(ui_->b_update, &QPushButton::clicked, this, &SameInfoDialog::update_now);
    connect(ui_->b_cancel, &QPushButton::clicked, this, &QDialog::hide);
}

SameInfoDialog::~SameInfoDialog() = default;

void SameInfoDialog::update_now() {
    Context& ctx = wb_.context();
    const QString catalog = ui_->o_catalog->currentText();
    // A catalog typed here joins the lists that offer names before any file
    // is written.
    apply_same_information(ctx, ctx.app.main_list, ui_->o_file_title->text(), catalog,
                           ui_->o_image_description->toPlainText(),
                           [this] { fill_catalog_lists(wb_); });
    hide();
}
