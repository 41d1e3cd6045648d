#include "pages/template_notepad.h"

#include "pages/kept_text_box.h"
#include "pages/tag_drag.h"
#include "pages/template_commands.h"
#include "ui_template_notepad.h"

TemplateNotepad::TemplateNotepad(QString& shared_text, QWidget* parent)
    : QDialog(parent), shared_text_(shared_text), ui_(std::make_unique<Ui::TemplateNotepad>()) {
    setObjectName(QStringLiteral("frm_template_notepad"));
    ui_->setupUi(this);
    ui_->o_tags->addItems(notepad_tags());
    set_box_text(ui_->o_notepad, shared_text_);
    drag_ = new TagDrag(ui_->o_tags, this);
    drag_->add_target(ui_->o_notepad, [this](QPlainTextEdit* box) {
        const QListWidgetItem* row = ui_->o_tags->currentItem();
        insert_at_selection_start(box, row ? row->text() : QString());
    });
    connect(ui_->b_save, &QPushButton::clicked, this, &TemplateNotepad::save);
    connect(ui_->b_cancel, &QPushButton::clicked, this, &QDialog::reject);
}

TemplateNotepad::~TemplateNotepad() = default;

void TemplateNotepad::save() {
    shared_text_ = box_text(ui_->o_notepad);
    accept();
}
