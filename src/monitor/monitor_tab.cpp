#include "monitor/monitor_tab.h"

#include "monitor/monitor_table.h"
#include "core/options_commands.h"
#include "core/run_error.h"
#include "ui/widget_rows.h"
#include "ui_monitor_tab.h"

#include <QSignalBlocker>

namespace {

const QString kCurrent = QStringLiteral("Current");

QString non_null(const QString& s) {
    return s.isNull() ? QStringLiteral("") : s;
}

// Removing a row that is not there fails as the list box's removal does.
void remove_list_row(QListWidget* list, int row) {
    if (row < 0 || row >= list->count()) {
        throw RunError(QStringLiteral("Invalid procedure call or argument"));
    }
    delete list->takeItem(row);
}

}  // namespace

MonitorTab::MonitorTab(Workbench& wb, QWidget* parent)
    : TabPage(wb, parent), ui_(new Ui::MonitorTab) {
    ui_->setupUi(this);
    connect(ui_->b_monitor_add, &QPushButton::clicked, this, [this] { add_clicked(); });
    connect(ui_->b_monitor_delete, &QPushButton::clicked, this, [this] { delete_clicked(); });
    connect(ui_->b_monitor_scan, &QPushButton::clicked, this, [this] { scan_clicked(); });
    for (QListWidget* list : {ui_->o_monitor_directories, ui_->o_monitor_file_types}) {
        QListWidget* other = list == ui_->o_monitor_directories ? ui_->o_monitor_file_types
                                                                : ui_->o_monitor_directories;
        connect(list, &QListWidget::itemDoubleClicked, this,
                [this, list](QListWidgetItem* item) { remove_row(list->row(item)); });
        // A click, or a key that moves the current row, highlights the same
        // row of the other list.
        connect(list, &QListWidget::itemClicked, this, [this, list, other](QListWidgetItem* item) {
            link_highlight(list, other, list->row(item));
        });
        connect(list, &QListWidget::currentRowChanged, this,
                [this, list, other](int row) { link_highlight(list, other, row); });
    }
    connect(ui_->o_monitor_drive_list, &DriveBox::drive_changed, this,
            [this](const QString& drive) { drive_changed(drive); });
    connect(ui_->o_monitor_dir_list, &DirectoryBox::path_changed, this,
            [this] { directory_changed(); });
    connect(ui_->o_monitor_file_type_list, &QComboBox::currentTextChanged, this,
            [this](const QString& text) { file_type_changed(text); });
    connect(ui_->o_monitor_interval, &QLineEdit::textChanged, this, [this](const QString& text) {
        // As typed, at each keystroke; the button cleans it up.
        app().settings.write(kCurrent, QStringLiteral("Monitor Interval"), non_null(text));
    });
    connect(ui_->o_monitor_save_in_db, &QCheckBox::clicked, this, [this](bool on) {
        app().settings.write(kCurrent, QStringLiteral("Monitor Save In Database"),
                             on ? QStringLiteral("Yes") : QStringLiteral("No"));
    });
    connect(&app().monitor.t_monitor, &QTimer::timeout, this,
            [this] { monitor_tick(ctx(), controls()); });
    show_scan_state(false);
}

MonitorTab::~MonitorTab() = default;

void MonitorTab::enter() {
    // The button shows "Monitor" whether or not the timer runs on.
    show_scan_state(false);
    // Nothing is cleared first: each entry appends the types and the table again.
    QComboBox* types = ui_->o_monitor_file_type_list;
    {
        // Appending chooses no row, so that choosing the first one below is
        // a change on the first entry, as on any other.
        const QSignalBlocker quiet(types);
        const int index = types->currentIndex();
        const QString typed = types->currentText();
        types->addItems(monitor_file_types());
        types->setCurrentIndex(index);
        types->setEditText(typed);
    }
    const MonitorOptions options = read_monitor_options(app().settings);
    if (options.file_type.isEmpty()) {
        types->setCurrentIndex(0);
    } else {
        types->setEditText(options.file_type);
    }
    ui_->o_monitor_interval->setText(options.interval);
    ui_->o_monitor_save_in_db->setChecked(options.save_in_db);
    const MonitorTable table = read_monitor_table(app().settings);
    ui_->o_monitor_directories->addItems(table.directories);
    ui_->o_monitor_file_types->addItems(table.file_types);
    table_loaded_ = true;
}

MonitorControls MonitorTab::controls() const {
    MonitorControls c;
    c.interval = ui_->o_monitor_interval->text();
    c.directories = rows_of(ui_->o_monitor_directories);
    c.file_types = rows_of(ui_->o_monitor_file_types);
    c.save_in_db = ui_->o_monitor_save_in_db->isChecked();
    return c;
}

void MonitorTab::add_clicked() {
    const QString type = ui_->o_monitor_file_type_list->currentText();
    if (type.isEmpty()) {
        ctx().dialogs.info(
            QStringLiteral("Select a file type to add a directory to the list to monitor."));
        return;
    }
    const QListWidgetItem* selected = ui_->o_monitor_file_types->currentItem();
    const QString path = ui_->o_monitor_dir_list->path();
    if (monitor_row_is_new(rows_of(ui_->o_monitor_directories),
                           selected ? selected->text() : QString(), path, type)) {
        ui_->o_monitor_file_types->addItem(type);
        ui_->o_monitor_directories->addItem(path);
    }
}

void MonitorTab::delete_clicked() {
    const QListWidgetItem* current = ui_->o_monitor_directories->currentItem();
    if (!ctx().dialogs.ask_yes_no(
            monitor_delete_question(current ? current->text() : QStringLiteral("")))) {
        return;
    }
    remove_row(ui_->o_monitor_directories->currentRow());
}

void MonitorTab::remove_row(int row) {
    remove_list_row(ui_->o_monitor_directories, row);
    remove_list_row(ui_->o_monitor_file_types, row);
}

void MonitorTab::link_highlight(QListWidget* clicked, QListWidget* other, int row) {
    if (row < 0 || row == other->currentRow() || !clicked->item(row)->isSelected()) {
        return;
    }
    other->clearSelection();
    other->setCurrentRow(row);
}

void MonitorTab::drive_changed(const QString& drive) {
    try {
        ui_->o_monitor_dir_list->set_path(drive);
    } catch (const std::exception& e) {
        ctx().dialogs.plain(QString::fromUtf8(e.what()));
    }
}

void MonitorTab::directory_changed() {
    FileBox& box = *ui_->o_monitor_file_list;
    {
        const QSignalBlocker quiet(&box);
        box.set_pattern(ui_->o_monitor_file_type_list->currentText());
    }
    box.set_path(ui_->o_monitor_dir_list->path());
}

void MonitorTab::file_type_changed(const QString& text) {
    // A bare pattern: "jpg" shows a file of that very name, where the pass
    // puts "*." in front.
    ui_->o_monitor_file_list->set_pattern(text);
    app().settings.write(kCurrent, QStringLiteral("Last Monitor File Type"), non_null(text));
}

void MonitorTab::scan_clicked() {
    const MonitorScan scan =
        monitor_scan_click(ctx().dialogs, read_setup_values(app()).file_copy_directory,
                           ui_->o_monitor_interval->text(), ui_->o_monitor_directories->count() > 0,
                           ui_->b_monitor_scan->text());
    ui_->o_monitor_interval->setText(scan.interval);
    switch_monitor(app().monitor, scan.action);
    if (scan.action != MonitorSwitch::None) {
        show_scan_state(scan.action == MonitorSwitch::Start);
    }
}

void MonitorTab::show_scan_state(bool on) {
    // Red (255) while monitoring, yellow (65535) while not.
    ui_->b_monitor_scan->setText(on ? QStringLiteral("Cancel Monitor") : QStringLiteral("Monitor"));
    ui_->b_monitor_scan->setStyleSheet(on ? QStringLiteral("background-color: #ff0000;")
                                          : QStringLiteral("background-color: #ffff00;"));
}
