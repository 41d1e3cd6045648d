#pragma once

#include <QDialog>

#include <memory>

namespace Ui {
class AboutBox;
}
#include <QString>
#include <QStringList>

// ABOUT: the application title and what the product does. Either button
// closes it.
class AboutBox : public QDialog {
    Q_OBJECT
public:
    explicit AboutBox(const QString& application_title, QWidget* parent = nullptr);
    ~AboutBox() override;

    // The lines of the product's description, in order.
    static QStringList description_lines();

private:
    std::unique_ptr<Ui::AboutBox> ui_;
};
