#include "imaging/printing_tab.h"

#include "ui_printing_tab.h"

#include "imaging/preview_window.h"
#include "imaging/print_device.h"
#include "lists/image_panels.h"
#include "lists/list_commands.h"
#include "lists/panel_table.h"

#include <QLineEdit>

namespace {

const QString kPrinting = QStringLiteral("Printing");

bool holds_y(const QString& value) {
    return value.toLower().contains(u'y');
}

QString yes_no(bool on) {
    return on ? QStringLiteral("Yes") : QStringLiteral("No");
}

}  // namespace

PrintingTab::PrintingTab(Workbench& wb, QWidget* parent)
    : TabPage(wb, parent),
      ui_(new Ui::PrintingTab),
      files_(this),
      printer_(default_printer_name()) {
    ui_->setupUi(this);
    ui_->o_printing_file_list->setModel(&files_);
    ui_->o_printing_file_list->setSelectionModel(files_.selection_model());
    // A picture that cannot be read leaves the viewer as it was, with no message.
    connect(ui_->o_printing_file_list, &FileListView::left_pressed, this,
            [this] { show_list_row(wb_, files_, QStringLiteral("printing")); });
    connect(ui_->o_printing_file_list, &FileListView::current_moved_by_key, this,
            [this] { show_list_row(wb_, files_, QStringLiteral("printing")); });
    connect(ui_->o_printing_image_view, &ImageView::clicked, this, [this] { open_preview(wb_); });

    connect(ui_->o_printing_printer, &QComboBox::currentTextChanged, this,
            [this](const QString& text) {
                write_setting("Printer", text);
                choose_printer(text);
            });
    connect(ui_->o_printing_layout, &QComboBox::currentTextChanged, this,
            [this](const QString& text) { write_setting("Page Layout", text); });
    connect(ui_->o_printer_print_quality, &QComboBox::currentTextChanged, this,
            [this](const QString& text) { write_setting("Print Quality", text); });
    connect(ui_->o_printing_orientation_0, &QRadioButton::clicked, this,
            [this] { write_setting("Print Orientation", QStringLiteral("Portrait")); });
    connect(ui_->o_printing_orientation_1, &QRadioButton::clicked, this,
            [this] { write_setting("Print Orientation", QStringLiteral("Landscape")); });
    connect(ui_->o_printing_print_selected_files, &QCheckBox::clicked, this,
            [this](bool on) { write_setting("Selected Files", yes_no(on)); });
    connect(ui_->o_printing_use_max_size, &QCheckBox::clicked, this,
            [this](bool on) { write_setting("Maximum Size", yes_no(on)); });

    connect(ui_->b_printing_print_now, &QPushButton::clicked, this, [this] { print_now(); });
    // Cancel only raises the flag; the running job looks at it between pictures.
    connect(ui_->b_printing_cancel_print, &QPushButton::clicked, this,
            [this] { app().stop_scan = true; });
}

PrintingTab::~PrintingTab() = default;

void PrintingTab::write_setting(const char* key, const QString& value) {
    if (!filling_) {
        app().settings.write(kPrinting, QLatin1String(key), value);
    }
}

void PrintingTab::choose_printer(const QString& name) {
    if (filling_) {
        return;
    }
    // The first printer of the machine whose name is the box's text becomes
    // current; a name that matches none leaves the current one.
    if (printer_names().contains(name)) {
        printer_ = name;
    }
}

void PrintingTab::enter() {
    QStringList images;
    for (const QString& path : app().main_list.items()) {
        if (is_image_file(path)) {
            images << path;
        }
    }
    files_.set_items(images);
    ui_->f_printing->setTitle(QStringLiteral("File Count: ") + QString::number(images.size()));

    filling_ = true;
    const ProfileFile& s = app().settings;
    const auto read = [&](const char* key) { return s.read(kPrinting, QLatin1String(key)); };
    ui_->o_printing_layout->clear();
    ui_->o_printing_layout->addItems(
        {"1 image/page", "2 images/page", "4 images/page", "8 images/page"});
    ui_->o_printer_print_quality->clear();
    ui_->o_printer_print_quality->addItems({"Draft", "Low", "Medium", "High"});
    if (const QString v = read("Selected Files"); !v.isEmpty()) {
        ui_->o_printing_print_selected_files->setChecked(holds_y(v));
    }
    if (const QString v = read("Maximum Size"); v.isEmpty() || holds_y(v)) {
        ui_->o_printing_use_max_size->setChecked(true);
    }
    if (const QString v = read("Print Quality"); !v.isEmpty()) {
        ui_->o_printer_print_quality->setEditText(v);
    } else {
        ui_->o_printer_print_quality->setEditText(QString());
    }
    const QString orientation = read("Print Orientation").toLower();
    if (orientation.contains(QLatin1String("portrait"))) {
        ui_->o_printing_orientation_0->setChecked(true);
    }
    if (orientation.contains(QLatin1String("landscape"))) {
        ui_->o_printing_orientation_1->setChecked(true);
    }
    ui_->o_printing_layout->setEditText(read("Page Layout"));

    const QStringList printers = printer_names();
    ui_->o_printing_printer->clear();
    ui_->o_printing_printer->addItems(printers);
    const QString chosen = read("Printer");
    filling_ = false;
    if (!chosen.isEmpty()) {
        ui_->o_printing_printer->setEditText(chosen);
        choose_printer(chosen);
    } else if (!printers.isEmpty()) {
        ui_->o_printing_printer->setEditText(printers.constFirst());
    }
    // The narrow boxes show their texts from the start.
    for (QComboBox* box :
         {ui_->o_printing_printer, ui_->o_printing_layout, ui_->o_printer_print_quality}) {
        box->lineEdit()->setCursorPosition(0);
    }
}

ImageControl& PrintingTab::viewer() {
    return ui_->o_printing_image_view->control();
}

void PrintingTab::show_row(int row) {
    if (row >= 0 && row < files_.count()) {
        files_.set_list_index(row);
    }
    show_panel_file(wb_, QStringLiteral("printing"), files_.item(row));
}

void PrintingTab::fit_viewer() {
    fit_panel(wb_, QStringLiteral("printing"));
}

void PrintingTab::set_viewer_visible(bool visible) {
    ui_->o_printing_image_view->setVisible(visible);
}

void PrintingTab::set_printing(bool printing) {
    ui_->b_printing_print_now->setEnabled(!printing);
    ui_->b_printing_cancel_print->setEnabled(printing);
}

void PrintingTab::print_now() {
    PrintChoices c;
    c.layout = ui_->o_printing_layout->currentText();
    c.portrait = ui_->o_printing_orientation_0->isChecked();
    c.landscape = ui_->o_printing_orientation_1->isChecked();
    c.quality = ui_->o_printer_print_quality->currentText();
    c.selected_files = ui_->o_printing_print_selected_files->isChecked();
    c.use_max_size = ui_->o_printing_use_max_size->isChecked();
    QtPrintDevice device(printer_, ctx().dialogs, app().last_directory);
    print_images(ctx(), c, *this, device);
}
