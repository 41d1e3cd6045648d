#include "lists/load_tab.h"

#include "ui_load_tab.h"

#include "catalog/busy_pointer.h"
#include "core/directory_reader.h"
#include "core/run_error.h"
#include "core/startup.h"
#include "imaging/preview_window.h"
#include "lists/directory_walk.h"
#include "lists/list_commands.h"
#include "lists/list_transfer.h"
#include "lists/main_list_ui.h"

#include <QElapsedTimer>
#include <QSignalBlocker>
#include <QTimer>

namespace {

// How often a running scan shows what it has gathered, in milliseconds: the
// rows in the list, and the count in the caption.
constexpr qint64 kListRefreshMs = 150;
constexpr qint64 kCountRefreshMs = 50;

}  // namespace

LoadTab::LoadTab(Workbench& wb, QWidget* parent)
    : TabPage(wb, parent), ui_(std::make_unique<Ui::LoadTab>()), files_(this) {
    ui_->setupUi(this);
    ui_->o_load_filelist->setModel(&files_);
    ui_->o_load_filelist->setSelectionModel(files_.selection_model());
    ui_->o_load_file_list->hide();
    ui_->b_load_cancel_scan->hide();

    connect(ui_->o_load_drive_list, &DriveBox::drive_changed, this, &LoadTab::change_drive);
    connect(ui_->o_load_dir_list, &DirectoryBox::path_changed, this, &LoadTab::change_directory);
    // A change of the text and a choice of a row each list the directory.
    // A choice that changes the text brings both signals in one turn of the
    // message loop: it lists once.
    connect(ui_->o_load_file_types, &QComboBox::editTextChanged, this, [this] {
        change_file_types();
        listed_this_turn_ = true;
        QTimer::singleShot(0, this, [this] { listed_this_turn_ = false; });
    });
    connect(ui_->o_load_file_types, &QComboBox::activated, this, [this] {
        if (!listed_this_turn_) {
            change_file_types();
        }
    });

    connect(ui_->b_load_scan, &QPushButton::clicked, this, &LoadTab::scan_now);
    connect(ui_->b_load_cancel_scan, &QPushButton::clicked, this, &LoadTab::cancel_scan);
    connect(ui_->b_load_searchtext, &QPushButton::clicked, this, &LoadTab::search_file_list);
    connect(ui_->b_load_clear_main_list, &QPushButton::clicked, this, &LoadTab::clear_main_list);
    connect(ui_->b_load_file_list, &QPushButton::clicked, this,
            [this] { pass_list_to_main(wb_, load_list_controls(wb_)); });
    connect(ui_->b_load_update_database, &QPushButton::clicked, this,
            [this] { enter_list_into_catalog(wb_, load_list_controls(wb_)); });

    connect(ui_->o_load_filelist, &FileListView::left_pressed, this, &LoadTab::show_current_file);
    connect(ui_->o_load_filelist, &FileListView::current_moved_by_key, this,
            &LoadTab::show_current_file);
    connect(ui_->o_load_filelist, &FileListView::right_pressed, this,
            [this] { wb_.popup_item_menu(); });
    connect(ui_->o_load_image_view, &ImageView::clicked, this, [this] { open_preview(wb_); });
}

LoadTab::~LoadTab() = default;

void LoadTab::enter() {
    fill_catalog_lists(wb_);
    default_update_option(load_list_controls(wb_));
    if (files_.empty()) {
        restore_load_tab();
    }
}

void LoadTab::fill_file_types() {
    const QSignalBlocker block(ui_->o_load_file_types);
    ui_->o_load_file_types->clear();
    ui_->o_load_file_types->addItems(load_file_types());
    ui_->o_load_file_types->setCurrentIndex(-1);
    ui_->o_load_file_types->clearEditText();
}

void LoadTab::restore_load_tab() {
    ProfileFile& settings = app().settings;
    const QString filter =
        settings.read(QStringLiteral("Current"), QStringLiteral("Last File Filter"));
    if (filter.isEmpty()) {
        ui_->o_load_file_types->setEditText(QStringLiteral("*.*"));
        settings.write(QStringLiteral("Current"), QStringLiteral("Last File Filter"),
                       QStringLiteral("*.*"));
    } else {
        ui_->o_load_file_types->setEditText(filter);
    }
    ui_->o_load_file_list->set_pattern(ui_->o_load_file_types->currentText());
    ui_->o_load_drive_list->set_drive(app().last_directory);
    ui_->o_load_dir_list->set_path(app().last_directory);
}

void LoadTab::change_drive(const QString& drive) {
    try {
        ui_->o_load_dir_list->set_path(drive);
    } catch (const RunError&) {
        // A root that cannot be opened is a drive that is not available.
        ctx().dialogs.info(QStringLiteral("The drive you selected is not available."));
    } catch (const std::exception& e) {
        ctx().dialogs.plain(QString::fromUtf8(e.what()));
    }
}

void LoadTab::change_directory() {
    const QString path = ui_->o_load_dir_list->path();
    const QString pattern = ui_->o_load_file_types->currentText();
    FileBox& box = *ui_->o_load_file_list;
    if (box.pattern() != pattern) {
        const QSignalBlocker block(&box);
        box.set_pattern(pattern);
    }
    box.set_path(path);
    if (!app().scan_started) {
        QStringList paths = box.file_names();
        prefix_paths(paths, path);
        files_.set_items(paths);
    }
    set_file_count();
}

void LoadTab::change_file_types() {
    const QString pattern = ui_->o_load_file_types->currentText();
    ui_->o_load_file_list->set_pattern(pattern);
    if (!pattern.isEmpty()) {
        app().settings.write(QStringLiteral("Current"), QStringLiteral("Last File Filter"),
                             pattern);
    }
    change_directory();
}

void LoadTab::scan_now() {
    BusyPointer busy(ctx().ui);
    ui_->b_load_cancel_scan->show();
    ui_->b_load_scan->hide();
    // The buttons come back also when an error stops the walk.
    struct Buttons {
        Ui::LoadTab& ui;
        ~Buttons() {
            ui.b_load_cancel_scan->hide();
            ui.b_load_scan->show();
        }
    } buttons{*ui_};

    const QString pattern = ui_->o_load_file_types->currentText();
    // The gathered paths reach the list a few times a second rather than
    // once per directory: each change of a long list costs its view a new
    // layout.
    files_.clear();
    QStringList pending;
    QElapsedTimer since;
    since.start();
    auto flush = [&] {
        files_.add_many(pending);
        pending.clear();
        since.restart();
    };
    DirectoryWalk hooks;
    // The directory box follows the walk. Its change is the walk's own: the
    // list is not filled again from the directory, but, as at a change of
    // directory, the caption shows the rows gathered so far (a few dozen
    // times a second at most: each new caption repaints the frame).
    QElapsedTimer counted;
    hooks.visiting = [&](const QString& directory) {
        DirectoryBox& box = *ui_->o_load_dir_list;
        const QString before = box.path();
        try {
            const QSignalBlocker block(&box);
            box.set_path(directory);
        } catch (const RunError&) {
            // Gone since the walk read it: the box stays where it was.
        }
        if (box.path() != before && (!counted.isValid() || counted.elapsed() >= kCountRefreshMs)) {
            show_file_count(files_.count() + static_cast<int>(pending.size()));
            counted.start();
        }
    };
    QString last;
    try {
        last = walk_directory_tree(
            ctx(), ui_->o_load_dir_list->path(), pattern,
            [&](const QStringList& paths) {
                pending += paths;
                if (since.elapsed() >= kListRefreshMs) {
                    flush();
                }
            },
            hooks);
    } catch (...) {
        // The rows gathered until an error stopped the walk stay in the list.
        flush();
        set_file_count();
        throw;
    }
    flush();
    if (!last.isEmpty()) {
        const QSignalBlocker block(ui_->o_load_file_list);
        ui_->o_load_file_list->set_pattern(pattern);
        ui_->o_load_file_list->set_path(last);
    }
    set_file_count();
}

void LoadTab::cancel_scan() {
    app().stop_scan = true;
}

void LoadTab::search_file_list() {
    const int row = ::search_file_list(ctx(), files_);
    if (row >= 0) {
        ui_->o_load_filelist->scrollTo(files_.index(row));
        show_current_file();
    }
}

void LoadTab::clear_main_list() {
    app().main_list.clear();
}

void LoadTab::show_current_file() {
    show_list_row(wb_, files_, QStringLiteral("load"));
}

void LoadTab::set_file_count() {
    show_file_count(files_.count());
}

void LoadTab::show_file_count(int rows) {
    ui_->f_load->setTitle(QStringLiteral("File Count: ") + QString::number(rows));
}
