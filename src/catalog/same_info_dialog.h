#pragma once

#include <QDialog>

#include <memory>

namespace Ui {
class SameInfoDialog;
}
class Workbench;

// frm_same_info: one title, catalog and description written to every file
// selected in the main list. Cancel writes nothing.
class SameInfoDialog : public QDialog {
    Q_OBJECT
public:
    explicit SameInfoDialog(Workbench& wb, QWidget* parent = nullptr);
    ~SameInfoDialog() override;

    void update_now();

private:
    std::unique_ptr<Ui::SameInfoDialog> ui_;
    Workbench& wb_;
};
