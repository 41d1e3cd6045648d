#pragma once

#include "pages/template_store.h"

#include <QDialog>

#include <array>
#include <memory>

namespace Ui {
class TemplateEditor;
}
class QAction;
class QButtonGroup;
class QPlainTextEdit;
class TagDrag;
class Workbench;

// frm_template_edit: the modal window in which the sections of a template are
// edited, one section at a time. Built, it lists the templates and loads the
// one selected on the Templates tab. Every change of a field enables the save
// button, which is the mark of unsaved changes; `unload()` is what the caller
// runs after the window closes, and it saves or asks as the user chose.
class TemplateEditor : public QDialog {
    Q_OBJECT
public:
    TemplateEditor(Workbench& wb, QWidget* parent = nullptr);
    ~TemplateEditor() override;

    // The fields as they stand, unsaved changes included.
    TemplateSections fields() const;
    // The close steps: save when "Save Upon Exit" is checked, else ask when
    // there are unsaved changes.
    void unload();

    // The menu's items, by their index in the Options menu (0, 5, ..., 35),
    // and the File menu's "Exit".
    QAction* options_item(int index) const;
    QAction* exit_item() const { return exit_item_; }

    // Handlers, public so that the window's tests drive them as a user would.
    void select_section(int index);
    void drop_tag(QPlainTextEdit* box);
    void edit_in_notepad(int section);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void build_menus();
    void load_named(const QString& name);
    void mark_changed();
    void save();
    void clear_sections();
    void copy();
    void delete_template();
    void preview(bool save_first);
    void show_text();

    Workbench& wb_;
    std::unique_ptr<Ui::TemplateEditor> ui_;
    std::array<QPlainTextEdit*, 6> sections_{};
    std::array<QWidget*, 6> labels_{};
    QButtonGroup* section_group_ = nullptr;
    TagDrag* drag_ = nullptr;
    QAction* exit_item_ = nullptr;
    QList<QPair<int, QAction*>> options_;
    QString copy_answer_;
};

// "Edit Template": shows the editor modally over the window, unloads it when
// it closes, and refills the template lists.
void open_template_editor(Workbench& wb);
