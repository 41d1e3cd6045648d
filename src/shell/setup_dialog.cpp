#include "shell/setup_dialog.h"

#include "ui_setup_dialog.h"

#include "catalog/catalog_check.h"
#include "catalog/vellumark_import.h"
#include "core/options_commands.h"
#include "core/pick_helpers.h"

SetupDialog::SetupDialog(Context& ctx, QWidget* parent)
    : QDialog(parent), ui_(new Ui::SetupDialog), ctx_(ctx) {
    ui_->setupUi(this);
    const SetupValues values = read_setup_values(ctx_.app);
    ui_->o_options_database->setText(values.database);
    ui_->o_options_file_copy_directory->setText(values.file_copy_directory);
    ui_->o_options_preview_image->setText(values.preview_image);

    connect(ui_->b_options_database, &QPushButton::clicked, this, &SetupDialog::choose_database);
    connect(ui_->b_options_file_copy_directory, &QPushButton::clicked, this,
            &SetupDialog::choose_file_copy_directory);
    connect(ui_->b_options_preview_image, &QPushButton::clicked, this,
            &SetupDialog::choose_preview_image);
    connect(ui_->b_options_load_vlk_images, &QPushButton::clicked, this,
            [this] { import_vellumark_ini(ctx_); });
    // b_options_browser has no command.
}

SetupDialog::~SetupDialog() = default;

void SetupDialog::choose_database() {
    switch (select_database(ctx_)) {
        case DatabaseChoice::Accepted:
            ui_->o_options_database->setText(ctx_.app.database_path);
            break;
        case DatabaseChoice::Refused:
            ui_->o_options_database->clear();
            break;
        case DatabaseChoice::NotChosen:
            break;
    }
}

void SetupDialog::choose_file_copy_directory() {
    ui_->o_options_file_copy_directory->setText(::choose_file_copy_directory(ctx_));
}

void SetupDialog::choose_preview_image() {
    const QString path = select_preview_image(ctx_);
    if (!path.isEmpty()) {
        ui_->o_options_preview_image->setText(path);
    }
}
