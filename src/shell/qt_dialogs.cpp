#include "shell/qt_dialogs.h"

#include "core/catalog_location.h"
#include "shell/dialog_filter.h"
#include "shell/directory_chooser.h"
#include "ui/centre_form.h"

#include <QColorDialog>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

QtDialogs::QtDialogs(QString application_title, QWidget* parent)
    : title_(std::move(application_title)), parent_(parent) {}

Dialogs::Answer QtDialogs::message(const QString& text, Buttons buttons, Icon icon) {
    QMessageBox box(parent_);
    box.setWindowTitle(title_);
    box.setText(text);
    box.setTextFormat(Qt::PlainText);
    switch (icon) {
        case Icon::Information:
            box.setIcon(QMessageBox::Information);
            break;
        case Icon::Question:
            box.setIcon(QMessageBox::Question);
            break;
        case Icon::None:
            box.setIcon(QMessageBox::NoIcon);
            break;
    }
    switch (buttons) {
        case Buttons::Ok:
            box.setStandardButtons(QMessageBox::Ok);
            break;
        case Buttons::YesNo:
            box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
            box.setEscapeButton(QMessageBox::No);
            break;
        case Buttons::YesNoCancel:
            box.setStandardButtons(QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel);
            box.setEscapeButton(QMessageBox::Cancel);
            break;
    }
    box.adjustSize();
    centre_form(&box);
    box.exec();
    switch (box.standardButton(box.clickedButton())) {
        case QMessageBox::Yes:
            return Answer::Yes;
        case QMessageBox::No:
            return Answer::No;
        case QMessageBox::Cancel:
            return Answer::Cancel;
        default:
            break;
    }
    // Closed without a button: as its escape button would answer.
    switch (buttons) {
        case Buttons::Ok:
            return Answer::Ok;
        case Buttons::YesNo:
            return Answer::No;
        case Buttons::YesNoCancel:
            return Answer::Cancel;
    }
    return Answer::Cancel;
}

QString QtDialogs::input(const QString& prompt, const QString& title, const QString& default_text) {
    QInputDialog dialog(parent_);
    dialog.setWindowTitle(title.isEmpty() ? title_ : title);
    dialog.setLabelText(prompt);
    dialog.setTextValue(default_text);
    dialog.adjustSize();
    centre_form(&dialog);
    if (dialog.exec() != QDialog::Accepted) {
        return QString();
    }
    return dialog.textValue();
}

namespace {

// The open-file dialog, which may also take the URL of a catalog on a server
// typed into its file name box: such a name is no file, so the dialog would
// neither enable its button for it nor accept it.
class OpenFileDialog : public QFileDialog {
public:
    OpenFileDialog(QWidget* parent, const QString& title, bool takes_url)
        : QFileDialog(parent, title) {
        setOption(QFileDialog::DontUseNativeDialog, true);
        edit_ = findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        auto* box = findChild<QDialogButtonBox*>(QStringLiteral("buttonBox"));
        if (takes_url && edit_ && box) {
            connect(edit_, &QLineEdit::textChanged, this, [this, box](const QString& text) {
                if (is_server_catalog(text.trimmed())) {
                    if (QPushButton* open = box->button(QDialogButtonBox::Open)) {
                        open->setEnabled(true);
                    }
                }
            });
        } else {
            edit_ = nullptr;
        }
    }
    QString typed_url;

    void accept() override {
        const QString text = edit_ ? edit_->text().trimmed() : QString();
        if (is_server_catalog(text)) {
            typed_url = text;
            QDialog::accept();
            return;
        }
        QFileDialog::accept();
    }

private:
    QLineEdit* edit_ = nullptr;
};

}  // namespace

QString QtDialogs::open_file(const FileRequest& request) {
    OpenFileDialog dialog(parent_, request.title, request.takes_server_url);
    dialog.setFileMode(request.must_exist ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    // Qt's own dialog everywhere, so that filters and the start directory
    // behave the same on every desktop.
    dialog.setOption(QFileDialog::DontUseNativeDialog, true);
    const QStringList filters = qt_name_filters(request.filter);
    if (!filters.isEmpty()) {
        dialog.setNameFilters(filters);
    }
    if (!request.initial_directory.isEmpty() && QDir(request.initial_directory).exists()) {
        dialog.setDirectory(request.initial_directory);
    }
    if (!request.file_name.isEmpty()) {
        dialog.selectFile(request.file_name);
    }
    centre_form(&dialog);
    if (dialog.exec() != QDialog::Accepted) {
        return QString();
    }
    if (!dialog.typed_url.isEmpty()) {
        return dialog.typed_url;
    }
    if (dialog.selectedFiles().isEmpty()) {
        return QString();
    }
    return dialog.selectedFiles().constFirst();
}

std::optional<int> QtDialogs::choose_color(int initial) {
    QColorDialog dialog(color_from_number(initial), parent_);
    dialog.setWindowTitle(title_);
    centre_form(&dialog);
    if (dialog.exec() != QDialog::Accepted || !dialog.selectedColor().isValid()) {
        return std::nullopt;
    }
    return color_number(dialog.selectedColor());
}

std::optional<QString> QtDialogs::choose_item(const QString& prompt, const QStringList& items,
                                              int current) {
    QInputDialog dialog(parent_);
    dialog.setWindowTitle(title_);
    dialog.setLabelText(prompt);
    dialog.setComboBoxItems(items);
    dialog.setComboBoxEditable(false);
    if (current >= 0 && current < items.size()) {
        dialog.setTextValue(items.at(current));
    }
    centre_form(&dialog);
    if (dialog.exec() != QDialog::Accepted) {
        return std::nullopt;
    }
    return dialog.textValue();
}

Dialogs::DirectoryChoice QtDialogs::choose_directory(const QString& start) {
    DirectoryChooser chooser(*this, start, parent_);
    centre_form(&chooser);
    chooser.exec();
    return {chooser.chosen_path(), chooser.cancelled()};
}
