#include "pages/template_editor.h"

#include "core/pick_helpers.h"
#include "pages/kept_text_box.h"
#include "pages/page_options_ui.h"
#include "pages/tag_drag.h"
#include "pages/template_commands.h"
#include "pages/template_lists.h"
#include "pages/template_notepad.h"
#include "ui/centre_form.h"
#include "ui/workbench.h"
#include "ui_template_editor.h"

#include <QButtonGroup>
#include <QEvent>
#include <QListWidget>
#include <QMenuBar>
#include <QPushButton>

namespace {

constexpr int kMenuHeight = 24;

// Hides "Create Web Page(s)" and shows Stop on the window while a preview
// runs, as a page run does, and puts them back however the preview ends.
class PreviewButtons {
public:
    explicit PreviewButtons(Workbench& wb)
        : create_(wb.find<QPushButton>(QStringLiteral("b_html_create_html"))),
          stop_(wb.find<QPushButton>(QStringLiteral("b_webpages_stop_create"))) {
        set_running(true);
    }
    ~PreviewButtons() { set_running(false); }

private:
    void set_running(bool running) {
        if (stop_) {
            stop_->setVisible(running);
        }
        if (create_) {
            create_->setVisible(!running);
        }
    }
    QPushButton* create_;
    QPushButton* stop_;
};

}  // namespace

TemplateEditor::TemplateEditor(Workbench& wb, QWidget* parent)
    : QDialog(parent), wb_(wb), ui_(std::make_unique<Ui::TemplateEditor>()) {
    setObjectName(QStringLiteral("frm_template_edit"));
    ui_->setupUi(this);
    setWindowTitle(wb_.context().app.application_title);
    sections_ = {ui_->o_template_header, ui_->o_template_preimage,  ui_->o_template_image1,
                 ui_->o_template_image2, ui_->o_template_postimage, ui_->o_template_footer};
    labels_ = {ui_->l_template_header, ui_->l_template_preimage,  ui_->l_template_image1,
               ui_->l_template_image2, ui_->l_template_postimage, ui_->l_template_footer};
    section_group_ = new QButtonGroup(this);
    section_group_->setObjectName(QStringLiteral("o_section"));
    const std::array<QRadioButton*, 6> options = {ui_->o_section_0, ui_->o_section_1,
                                                  ui_->o_section_2, ui_->o_section_3,
                                                  ui_->o_section_4, ui_->o_section_5};
    for (int i = 0; i < 6; ++i) {
        section_group_->addButton(options[i], i);
    }
    connect(section_group_, &QButtonGroup::idClicked, this, &TemplateEditor::select_section);

    drag_ = new TagDrag(ui_->o_template_tags, this);
    for (int i = 0; i < 6; ++i) {
        QPlainTextEdit* box = sections_[i];
        drag_->add_target(box, [this](QPlainTextEdit* b) { drop_tag(b); });
        box->viewport()->installEventFilter(this);
        connect(box, &QPlainTextEdit::textChanged, this, &TemplateEditor::mark_changed);
    }
    connect(ui_->o_template_description, &QLineEdit::textChanged, this,
            &TemplateEditor::mark_changed);
    connect(ui_->b_template_update, &QPushButton::clicked, this, &TemplateEditor::save);
    // Every change of the name's text loads the template of that name, as a
    // click on a row of the list does.
    connect(ui_->o_template_name, &QComboBox::currentTextChanged, this,
            &TemplateEditor::load_named);
    connect(ui_->o_template_name, &QComboBox::activated, this,
            [this](int row) { load_named(ui_->o_template_name->itemText(row)); });
    build_menus();

    // The list of names, and the template selected on the Templates tab.
    AppState& app = wb_.context().app;
    QString listed;
    if (auto* list = wb_.find<QListWidget>(QStringLiteral("o_template_list"))) {
        const QList<QListWidgetItem*> selected = list->selectedItems();
        if (!selected.isEmpty()) {
            listed = selected.first()->text();
        }
    }
    const QStringList names = template_names(app);
    int noted = -1;
    if (!names.isEmpty()) {
        const QSignalBlocker block(ui_->o_template_name);
        ui_->o_template_name->clear();
        ui_->o_template_name->addItems(names);
        ui_->o_template_name->setCurrentIndex(-1);
        noted = static_cast<int>(names.indexOf(listed));
    }
    if (noted >= 0) {
        ui_->o_template_name->setCurrentIndex(noted);
    }
    ui_->o_template_tags->addItems(editor_tags());
    options_item(0)->setChecked(save_on_close(app));
    select_section(0);
}

TemplateEditor::~TemplateEditor() = default;

void TemplateEditor::build_menus() {
    auto* bar = new QMenuBar(this);
    bar->setGeometry(0, 0, width(), kMenuHeight);
    QMenu* file = bar->addMenu(QStringLiteral("&File"));
    file->setObjectName(QStringLiteral("menuFile"));
    exit_item_ = file->addAction(QStringLiteral("Exit"));
    exit_item_->setObjectName(QStringLiteral("menuFileItem"));
    // "Exit" only hides the window; the caller's unload runs the close steps.
    connect(exit_item_, &QAction::triggered, this, &QDialog::accept);

    QMenu* options = bar->addMenu(QStringLiteral("&Options"));
    options->setObjectName(QStringLiteral("menuOptions"));
    const auto add = [&](int index, const char* caption, void (TemplateEditor::*handler)()) {
        QAction* a = options->addAction(QLatin1String(caption));
        a->setObjectName(QStringLiteral("menuOptionsItem_%1").arg(index));
        options_.append({index, a});
        if (handler) {
            connect(a, &QAction::triggered, this, handler);
        }
        return a;
    };
    QAction* save_on_exit = add(0, "Save Upon Exit", nullptr);
    save_on_exit->setCheckable(true);
    connect(save_on_exit, &QAction::triggered, this,
            [this](bool checked) { set_save_on_close(wb_.context().app, checked); });
    QAction* rule = options->addSeparator();
    rule->setObjectName(QStringLiteral("menuOptionsItem_1"));
    options_.append({1, rule});
    add(5, "Clear", &TemplateEditor::clear_sections);
    add(10, "Copy", &TemplateEditor::copy);
    add(15, "Delete", &TemplateEditor::delete_template);
    connect(add(20, "Preview", nullptr), &QAction::triggered, this, [this] { preview(false); });
    add(25, "Save", &TemplateEditor::save);
    connect(add(30, "Save and Preview", nullptr), &QAction::triggered, this,
            [this] { preview(true); });
    add(35, "Template Text", &TemplateEditor::show_text);
}

QAction* TemplateEditor::options_item(int index) const {
    for (const auto& [i, action] : options_) {
        if (i == index) {
            return action;
        }
    }
    return nullptr;
}

TemplateSections TemplateEditor::fields() const {
    TemplateSections t;
    t.name = ui_->o_template_name->currentText();
    t.header = box_text(ui_->o_template_header);
    t.pre_image = box_text(ui_->o_template_preimage);
    t.image1 = box_text(ui_->o_template_image1);
    t.image2 = box_text(ui_->o_template_image2);
    t.post_image = box_text(ui_->o_template_postimage);
    t.footer = box_text(ui_->o_template_footer);
    t.description = ui_->o_template_description->text();
    return t;
}

void TemplateEditor::load_named(const QString& name) {
    TemplateSections t;
    // A name with an apostrophe fails here, and that error is not caught.
    if (load_template(wb_.context().app, name, t)) {
        set_box_text(ui_->o_template_header, t.header);
        set_box_text(ui_->o_template_preimage, t.pre_image);
        set_box_text(ui_->o_template_image1, t.image1);
        set_box_text(ui_->o_template_image2, t.image2);
        set_box_text(ui_->o_template_postimage, t.post_image);
        set_box_text(ui_->o_template_footer, t.footer);
        ui_->o_template_description->setText(t.description);
        select_section(0);
    }
    ui_->b_template_update->setEnabled(false);
}

void TemplateEditor::select_section(int index) {
    if (auto* option = section_group_->button(index)) {
        option->setChecked(true);
    }
    for (int i = 0; i < 6; ++i) {
        sections_[i]->setVisible(i == index);
        labels_[i]->setVisible(i == index);
    }
}

void TemplateEditor::mark_changed() {
    ui_->b_template_update->setEnabled(true);
}

void TemplateEditor::save() {
    save_template(wb_.context().app, fields());
    ui_->b_template_update->setEnabled(false);
}

void TemplateEditor::unload() {
    Context& ctx = wb_.context();
    if (options_item(0)->isChecked()) {
        save_template(ctx.app, fields());
    } else if (ui_->b_template_update->isEnabled()) {
        if (ctx.dialogs.ask_yes_no(QStringLiteral(
                "You did not save changes to the template.  Do you want to save them now?"))) {
            save_template(ctx.app, fields());
        }
    }
}

void TemplateEditor::clear_sections() {
    // A box that is empty already does not change, and so marks nothing.
    for (QPlainTextEdit* box : sections_) {
        if (!box->toPlainText().isEmpty()) {
            set_box_text(box, QString());
        }
    }
}

void TemplateEditor::copy() {
    const QString added = copy_template(wb_.context(), fields(), copy_answer_);
    if (added.isEmpty()) {
        return;
    }
    ui_->o_template_name->addItem(added);
    ui_->o_template_name->setCurrentIndex(ui_->o_template_name->count() - 1);
}

void TemplateEditor::delete_template() {
    delete_template_row(wb_.context(), ui_->o_template_name->currentText());
}

void TemplateEditor::preview(bool save_first) {
    Context& ctx = wb_.context();
    if (save_first) {
        save_template(ctx.app, fields());
    }
    const QString output = save_first ? ctx.app.app_dir + QStringLiteral("/temp.htm")
                                      : ctx.app.temp_directory() + QStringLiteral("/temp.htm");
    PreviewButtons buttons(wb_);
    preview_template(ctx, read_page_options(wb_), fields(), output);
}

void TemplateEditor::show_text() {
    show_template_text(wb_.context(), fields());
}

void TemplateEditor::drop_tag(QPlainTextEdit* box) {
    const QListWidgetItem* row = ui_->o_template_tags->currentItem();
    QString insert = row ? row->text() : QString();
    if (insert == QLatin1String("[include=]")) {
        const QString path = select_include_file(wb_.context());
        insert = QStringLiteral("[include=") + path + u']';
    }
    insert_at_selection_start(box, insert);
}

void TemplateEditor::edit_in_notepad(int section) {
    QPlainTextEdit* box = sections_.at(section);
    const QString before = box_text(box);
    QString shared = before;
    {
        TemplateNotepad notepad(shared, this);
        centre_form(&notepad);
        notepad.exec();
    }
    // Written back only when it differs, so that a cancelled notepad does
    // not count as a change.
    if (before != shared) {
        set_box_text(box, shared);
    }
}

bool TemplateEditor::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonDblClick) {
        for (int i = 0; i < 6; ++i) {
            if (sections_[i]->viewport() == watched) {
                edit_in_notepad(i);
                return true;
            }
        }
    }
    return QDialog::eventFilter(watched, event);
}

void TemplateEditor::resizeEvent(QResizeEvent* event) {
    QDialog::resizeEvent(event);
    if (auto* bar = findChild<QMenuBar*>()) {
        bar->setGeometry(0, 0, width(), kMenuHeight);
    }
    const int box_w = std::max(100, width() - 180);
    const int box_h = std::max(60, height() - 160);
    for (QPlainTextEdit* box : sections_) {
        box->setGeometry(10, 110, box_w, box_h);
    }
    ui_->l_template_tags->move(width() - 160, 90);
    ui_->o_template_tags->setGeometry(width() - 160, 110, 150, box_h);
    ui_->b_template_update->move(width() - 160, height() - 40);
}

void open_template_editor(Workbench& wb) {
    {
        TemplateEditor editor(wb, wb.window_widget());
        centre_form(&editor);
        editor.exec();
        editor.unload();
    }
    fill_template_lists(wb);
}
