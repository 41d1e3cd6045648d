#pragma once

#include "core/context.h"

#include <QDialog>

#include <array>
#include <memory>
#include <optional>

namespace Ui {
class ColourForm;
}

class QLabel;
class QLineEdit;
class QMenuBar;
class QWidget;

// "HTML Color Options": the six colours of a page picked from 16 swatches,
// and a background image, shown on a sample. It opens from the Web Pages
// tab, whose background image box and two colour labels it reads and, on
// "Save / Exit", writes with their settings; the six working colour strings
// of the application state are what the page engine reads. "Cancel", or
// closing the window, changes nothing.
class ColourForm : public QDialog {
    Q_OBJECT
public:
    // The Web Pages tab's controls. `dialog_directory` is where the next
    // background image dialog opens; a chosen image's directory is kept there.
    ColourForm(Context& ctx, QLineEdit* html_background_image, QLabel* html_background_color,
               QLabel* html_text_color, QString& dialog_directory, QWidget* parent = nullptr);
    ~ColourForm() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void load();
    void swatch_clicked(int index);
    void set_role_colour(int role, int value);
    void select_background_image();
    void show_background_image();
    void save_and_exit();

    Context& ctx_;
    QLineEdit* html_background_image_;
    QLabel* html_background_color_;
    QLabel* html_text_color_;
    QString& dialog_directory_;
    std::unique_ptr<Ui::ColourForm> ui_;
    QMenuBar* menu_ = nullptr;
    QString background_path_;  // the working background image
    // Each sample's colour number, by role; none while it shows its design colour.
    std::array<std::optional<int>, 6> samples_;
};
