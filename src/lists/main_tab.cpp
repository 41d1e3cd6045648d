#include "lists/main_tab.h"

#include "ui_main_tab.h"

#include "catalog/busy_pointer.h"
#include "core/run_error.h"
#include "imaging/image_view.h"
#include "imaging/preview_window.h"
#include "lists/main_list.h"
#include "lists/main_list_ui.h"
#include "lists/panel_table.h"

#include <QApplication>
#include <QStyle>

namespace {

// The form of the common-information update stops row selection while it is open.
bool same_info_form_open() {
    const QWidgetList tops = QApplication::topLevelWidgets();
    for (QWidget* w : tops) {
        if (w->objectName() == QLatin1String("frm_same_info") && w->isVisible()) {
            return true;
        }
    }
    return false;
}

}  // namespace

MainTab::MainTab(Workbench& wb, QWidget* parent)
    : TabPage(wb, parent), ui_(std::make_unique<Ui::MainTab>()) {
    ui_->setupUi(this);
    ItemList& list = app().main_list;
    ui_->o_main_itemlist->setModel(&list);
    ui_->o_main_itemlist->setSelectionModel(list.selection_model());
    ui_->o_main_sort_listbox->setModel(&sort_rows_);
    ui_->o_main_sort_listbox->hide();
    ui_->Command2->setIcon(style()->standardIcon(QStyle::SP_ArrowUp));
    ui_->b_main_move_down->setIcon(style()->standardIcon(QStyle::SP_ArrowDown));

    connect(ui_->o_main_itemlist, &FileListView::left_pressed, this, &MainTab::select_main_row);
    connect(ui_->o_main_itemlist, &FileListView::current_moved_by_key, this,
            &MainTab::select_main_row);
    connect(ui_->o_main_itemlist, &FileListView::right_pressed, this, [this] {
        select_main_row();
        wb_.popup_item_menu();
    });
    connect(ui_->o_main_itemlist, &QAbstractItemView::doubleClicked, this,
            &MainTab::remove_current_row);

    connect(ui_->o_main_file_title, &QLineEdit::textChanged, this, &MainTab::fields_edited);
    connect(ui_->o_main_image_description, &QPlainTextEdit::textChanged, this,
            &MainTab::fields_edited);
    connect(ui_->o_main_category, &QComboBox::editTextChanged, this, &MainTab::fields_edited);
    connect(ui_->o_main_category, &QComboBox::activated, this, &MainTab::fields_edited);

    connect(ui_->b_main_save, &QPushButton::clicked, this, &MainTab::save);
    connect(ui_->Command2, &QPushButton::clicked, this, &MainTab::move_up);
    connect(ui_->b_main_move_down, &QPushButton::clicked, this, &MainTab::move_down);
    connect(ui_->b_main_sort_file_list, &QPushButton::clicked, this, &MainTab::sort_list);
    connect(ui_->o_main_image_view, &ImageView::clicked, this, [this] { open_preview(wb_); });
}

MainTab::~MainTab() = default;

void MainTab::enter() {
    fill_catalog_lists(wb_);
    set_main_file_count(wb_);
}

void MainTab::fields_edited() {
    ui_->b_main_save->setEnabled(true);
}

void MainTab::select_main_row() {
    if (same_info_form_open()) {
        return;
    }
    // Every statement here fails on its own and the next one runs.
    BusyPointer busy(ctx().ui);
    ui_->o_main_image_view->hide();
    ItemList& list = app().main_list;
    QString text;
    passed_over([&] { text = list.item(list.list_index()); });
    app().selected_file = text;
    show_panel_file(wb_, QStringLiteral("main"), text);
    if (const std::optional<FileFields> f = load_file_fields(ctx(), text)) {
        ui_->o_main_image_description->setPlainText(f->description);
        ui_->o_main_category->setEditText(f->catalog);
        ui_->o_main_file_title->setText(f->title);
    }
    ui_->b_main_save->setEnabled(false);
    ui_->o_main_image_view->show();
}

void MainTab::save() {
    const FileFields fields{ui_->o_main_file_title->text(),
                            ui_->o_main_image_description->toPlainText(),
                            ui_->o_main_category->currentText()};
    const auto* load_catalog = wb_.find<QComboBox>(QStringLiteral("o_load_catalog"));
    save_file_fields(ctx(), app().selected_file, fields,
                     load_catalog ? load_catalog->currentText() : QString());
    const QString kept = ui_->o_main_category->currentText();
    fill_catalog_lists(wb_);
    ui_->o_main_category->setEditText(kept);
    ui_->b_main_save->setEnabled(false);
}

void MainTab::remove_current_row() {
    ItemList& list = app().main_list;
    const int i = list.list_index();
    if (i < 0) {
        return;
    }
    const int next = remove_main_row(list, i);
    ui_->o_main_file_title->clear();
    ui_->o_main_image_description->clear();
    passed_over([&] { ui_->o_main_image_view->control().set_file_name(QString()); });
    if (next >= 0) {
        list.set_selected(next, true);
        list.set_list_index(next);
    }
}

void MainTab::move_up() {
    move_row_up(app().main_list);
    ui_->o_main_itemlist->scrollTo(ui_->o_main_itemlist->currentIndex());
}

void MainTab::move_down() {
    move_row_down(app().main_list);
    ui_->o_main_itemlist->scrollTo(ui_->o_main_itemlist->currentIndex());
}

void MainTab::sort_list() {
    {
        BusyPointer busy(ctx().ui);
        const QStringList scratch = ui_->o_main_sort_by_0->isChecked()
                                        ? sort_by_name(ctx(), app().main_list)
                                        : sort_by_date(ctx(), app().main_list);
        sort_rows_.setStringList(scratch);
        clear_main_fields(wb_);
    }
}
