#pragma once

#include <QDialog>

#include <memory>

namespace Ui {
class TemplateNotepad;
}
class TagDrag;

// A large modal edit window for one section of a template. It takes the
// section's text from the shared text when it is built and hands it back
// through the same string on "Save"; "Cancel" leaves the shared text as it
// came. Tags are dragged in from its own list, without the include chooser.
class TemplateNotepad : public QDialog {
    Q_OBJECT
public:
    TemplateNotepad(QString& shared_text, QWidget* parent = nullptr);
    ~TemplateNotepad() override;

private:
    void save();

    QString& shared_text_;
    std::unique_ptr<Ui::TemplateNotepad> ui_;
    TagDrag* drag_ = nullptr;
};
