#pragma once

#include "core/dialogs.h"

#include <QDialog>

#include <memory>

namespace Ui {
class DirectoryChooser;
}
#include <QString>

class QAction;
class QMenuBar;

// frm_tempdir, the directory chooser behind every "Select Directory" button.
// It opens at a start directory; the label o_directory always shows the
// directory of o_dir, and is what the caller reads when the chooser closes.
// OK (Command1, menu row 99, and the window's close box) and Cancel (Command2,
// menu row 98) both just close it; Cancel also marks it cancelled.
class DirectoryChooser : public QDialog {
    Q_OBJECT
public:
    DirectoryChooser(Dialogs& dialogs, const QString& start, QWidget* parent = nullptr);
    ~DirectoryChooser() override;

    // The caption of o_directory.
    QString chosen_path() const;
    bool cancelled() const { return cancelled_; }

    // Cancel, and the Escape key.
    void reject() override;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void open_at(const QString& start);
    void drive_changed(const QString& drive);
    void make_new_directory_here();
    void ok();

    std::unique_ptr<Ui::DirectoryChooser> ui_;
    Dialogs& dialogs_;
    QMenuBar* menu_bar_ = nullptr;
    bool cancelled_ = false;
};
