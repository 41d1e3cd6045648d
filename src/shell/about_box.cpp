#include "shell/about_box.h"

#include "ui_about_box.h"

AboutBox::AboutBox(const QString& application_title, QWidget* parent)
    : QDialog(parent), ui_(new Ui::AboutBox) {
    ui_->setupUi(this);
    setWindowTitle(QStringLiteral("About ") + application_title);
    ui_->l_about_title->setText(application_title);
    QFont big = ui_->l_about_title->font();
    big.setBold(true);
    big.setPointSizeF(big.pointSizeF() * 1.5);
    ui_->l_about_title->setFont(big);
    ui_->l_about_description->setText(description_lines().join(u'\n'));
}

AboutBox::~AboutBox() = default;

QStringList AboutBox::description_lines() {
    return {
        QStringLiteral("The Quilldex allows you to store file names into a library so that meta "),
        QStringLiteral("data can be associated with the file names.  Quickly and easily create"),
        QStringLiteral(
            "web pages that can be copied directly to a web site without modification. "),
        QStringLiteral("Use templates to create various output in your HTML pages. "),
        QStringLiteral("You resize or create thumbnail images from the list of selected files."),
    };
}
