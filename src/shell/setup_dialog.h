#pragma once

#include "core/context.h"

#include <QDialog>

#include <memory>

namespace Ui {
class SetupDialog;
}

// frm_setup, the Options dialog: each label shows a value, the button beside
// it changes it. Every change is stored at once; there is no apply step.
class SetupDialog : public QDialog {
    Q_OBJECT
public:
    explicit SetupDialog(Context& ctx, QWidget* parent = nullptr);
    ~SetupDialog() override;

private:
    void choose_database();
    void choose_file_copy_directory();
    void choose_preview_image();

    std::unique_ptr<Ui::SetupDialog> ui_;
    Context& ctx_;
};
