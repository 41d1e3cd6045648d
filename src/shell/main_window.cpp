#include "shell/main_window.h"

#include "catalog/catalog_check.h"
#include "catalog/database.h"
#include "catalog/same_info_dialog.h"
#include "core/catalog_location.h"
#include "core/file_helpers.h"
#include "core/run_error.h"
#include "core/startup.h"
#include "imaging/image_log.h"
#include "imaging/resize_tab.h"
#include "lists/item_menu.h"
#include "lists/load_tab.h"
#include "lists/main_list_ui.h"
#include "monitor/monitor_tab.h"
#include "pages/template_lists.h"
#include "shell/about_box.h"
#include "shell/setup_dialog.h"
#include "shell/tab_strip.h"
#include "shell/workbench_pages.h"
#include "slides/music_operation.h"
#include "ui/centre_form.h"
#include "ui/directory_box.h"
#include "ui/drive_box.h"
#include "ui/tab_page.h"
#include "ui/widget_rows.h"
#include "ui_main_window.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QCloseEvent>
#include <QCursor>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QProgressBar>
#include <QStatusBar>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

// ---------------------------------------------------------------- hooks

WindowHooks::WindowHooks() {
    pending_.setSingleShot(true);
    pending_.callOnTimeout([this] { show_status(); });
}

void WindowHooks::set_status(const QString& text) {
    UiHooks::set_status(text);
    if (!panel_) {
        return;
    }
    if (!shown_.isValid() || shown_.elapsed() >= kStatusPaintMs) {
        show_status();
    } else if (!pending_.isActive()) {
        pending_.start(static_cast<int>(kStatusPaintMs - shown_.elapsed()));
    }
}

void WindowHooks::show_status() {
    pending_.stop();
    if (panel_) {
        panel_->setText(UiHooks::status());
    }
    shown_.start();
}

void WindowHooks::show_progress(int done, int total) {
    if (!bar_) {
        return;
    }
    // A range of 0..0 makes the bar run busy where no end is known.
    bar_->setRange(0, std::max(total, 0));
    bar_->setValue(total > 0 ? std::min(done, total) : 0);
    bar_->setVisible(true);
}

void WindowHooks::end_progress() {
    if (bar_) {
        bar_->setVisible(false);
    }
}

void WindowHooks::yield() {
    QCoreApplication::processEvents();
}

void WindowHooks::set_busy(bool busy) {
    UiHooks::set_busy(busy);
    // One pointer for the whole screen, as a flag rather than a stack.
    if (busy) {
        if (!QApplication::overrideCursor()) {
            QApplication::setOverrideCursor(Qt::WaitCursor);
        }
    } else {
        while (QApplication::overrideCursor()) {
            QApplication::restoreOverrideCursor();
        }
    }
}

// ---------------------------------------------------------------- window

namespace {

int px(int twips) {
    return static_cast<int>(std::lround(twips / 15.0));
}
int twips(int pixels) {
    return pixels * 15;
}

const char* kVendorHost = QUILLDEX_VENDOR_HOST;

}  // namespace

MainWindow::MainWindow(AppState& app, Dialogs& dialogs, ShellServices& shell)
    : ui_(new Ui::MainWindow), ctx_{app, dialogs, hooks_, shell}, end_process_([] {
          std::fflush(nullptr);
          std::_Exit(0);
      }) {
    ui_->setupUi(this);
    status_panel_ = new QLabel(this);
    status_panel_->setObjectName(QStringLiteral("StatusBar1_panel1"));
    ui_->StatusBar1->addWidget(status_panel_, 1);
    hooks_.set_panel(status_panel_);
    // Beside the status text, seen only while a long command runs.
    auto* progress = new QProgressBar(this);
    progress->setObjectName(QStringLiteral("StatusBar1_progress"));
    progress->setMaximumWidth(160);
    progress->setVisible(false);
    ui_->StatusBar1->addPermanentWidget(progress);
    hooks_.set_progress_bar(progress);
    setWindowTitle(app.application_title);
    build_item_menu();
    add_workbench_pages(*this, tabs());
    connect(&tabs(), &TabStrip::tab_clicked, this, [this] { enter_tab(); });
    connect_menus();
    keep_fixed_size();
}

MainWindow::~MainWindow() = default;

TabStrip& MainWindow::tabs() {
    return *ui_->SSTab;
}

TabPage* MainWindow::page(const QString& caption) {
    const int i = tabs().index_of(caption);
    return i < 0 ? nullptr : qobject_cast<TabPage*>(tabs().page(i));
}

QString MainWindow::current_tab_caption() const {
    return ui_->SSTab->caption(ui_->SSTab->current_index());
}

void MainWindow::set_tabs_enabled(bool enabled) {
    tabs().setEnabled(enabled);
}

void MainWindow::popup_item_menu() {
    item_menu_->popup(QCursor::pos());
}

void MainWindow::build_item_menu() {
    item_menu_ = new QMenu(QStringLiteral("Item List Menu"), this);
    item_menu_->setObjectName(QStringLiteral("rightmousemenu"));
    const std::pair<int, const char*> rows[] = {
        {5, "Remove file from the list"},
        {10, "Delete file from disk"},
        {15, "Delete file from disk and database"},
        {25, "Open using associated application"},
        {50, "Update selected files with common information"},
    };
    for (const auto& [index, caption] : rows) {
        QAction* a = item_menu_->addAction(QString::fromLatin1(caption));
        a->setObjectName(QStringLiteral("rightmousemenuitems_%1").arg(index));
        const int row = index;
        connect(a, &QAction::triggered, this, [this, row] { item_menu_clicked(row); });
    }
}

void MainWindow::item_menu_clicked(int row) {
    if (row == kCommonInformation) {
        // Acts on the main list on whatever tab it is enabled.
        ItemList& main_list = ctx_.app.main_list;
        int first = -1;
        for (int i = 0; i < main_list.count() && first < 0; ++i) {
            if (main_list.selected(i)) {
                first = i;
            }
        }
        if (first < 0) {
            return;
        }
        {
            SameInfoDialog same_info(*this, this);
            centre_form(&same_info);
            same_info.exec();
        }
        clear_main_fields(*this);
        return;
    }
    // The tab is asked afresh at each click: the same item means something
    // else on each tab.
    ItemMenuTarget target;
    target.caption = current_tab_caption();
    const std::pair<const char*, const char*> lists[] = {
        {"Main", "o_main_itemlist"},
        {"Load", "o_load_filelist"},
        {"Search", "o_search_list"},
        {"Resize", "o_thumbnail_list"},
    };
    for (const auto& [caption, name] : lists) {
        if (target.caption == QLatin1String(caption)) {
            if (auto* view = Workbench::find<QAbstractItemView>(QLatin1String(name))) {
                target.list = qobject_cast<ItemList*>(view->model());
            }
        }
    }
    const QString frame = target.caption == QLatin1String("Load") ? QStringLiteral("f_load")
                                                                  : QStringLiteral("f_thumbnails");
    target.show_count = [this, frame](int rows) {
        if (auto* box = Workbench::find<QGroupBox>(frame)) {
            box->setTitle(QStringLiteral("File Count: ") + QString::number(rows));
        }
    };
    target.show_record_count = [this](const QString& caption) {
        if (auto* label = Workbench::find<QLabel>(QStringLiteral("l_search_db_record_count"))) {
            label->setText(caption);
        }
    };
    run_item_menu(ctx_, row, target);
}

void MainWindow::connect_menus() {
    connect(ui_->menuFileItem_99, &QAction::triggered, this, [this] {
        finish_up();
        end_process_();
    });
    connect(ui_->menuOptionsItem_50, &QAction::triggered, this, [this] {
        SetupDialog setup(ctx_, this);
        centre_form(&setup);
        setup.exec();
    });
    connect(ui_->menuHelpItem_99, &QAction::triggered, this, [this] {
        AboutBox about(ctx_.app.application_title, this);
        centre_form(&about);
        about.exec();
    });
    connect(ui_->menuHelpItem_0, &QAction::triggered, this, [this] { open_help_file(); });
    connect(ui_->menuHelpItem_2, &QAction::triggered, this, [this] { open_help_file(); });
    connect(ui_->menuHelpItem_3, &QAction::triggered, this, [this] { open_help_file(); });
    const std::pair<QAction*, const char*> online[] = {
        {ui_->menuHelpOnlineItem_5, "/profiles/profile.asp?src=qd"},
        {ui_->menuHelpOnlineItem_15, "/misc/informed.asp?src=qd"},
        {ui_->menuHelpOnlineItem_20, "/software/qd/index.asp?src=qd"},
        {ui_->menuHelpOnlineItem_25, "/software/downloads.asp?src=qd"},
    };
    for (const auto& [action, path] : online) {
        const QString url = QString::fromLatin1(kVendorHost) + QString::fromLatin1(path);
        connect(action, &QAction::triggered, this, [this, url] { ctx_.shell.open_document(url); });
    }
}

void MainWindow::open_help_file() {
    AppState& app = ctx_.app;
    if (file_exists_at(app.help_file)) {
        ctx_.shell.open_document(QStringLiteral("file://") + app.help_file);
    } else {
        ctx_.dialogs.plain(QStringLiteral("The help file, ") + app.app_dir +
                           QStringLiteral("/qdhelp.htm, does not exist."));
    }
}

void MainWindow::keep_fixed_size() {
    const QSize size(px(kWidthTwips), px(kHeightTwips));
    setMinimumSize(size);
    setMaximumSize(size);
    resize(size);
}

void MainWindow::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    if (!isMinimized() && size() != QSize(px(kWidthTwips), px(kHeightTwips))) {
        keep_fixed_size();
    }
}

void MainWindow::changeEvent(QEvent* event) {
    QMainWindow::changeEvent(event);
    // A maximise is undone: the window has one size.
    if (event->type() == QEvent::WindowStateChange && (windowState() & Qt::WindowMaximized)) {
        setWindowState(windowState() & ~Qt::WindowMaximized);
        keep_fixed_size();
    }
}

void MainWindow::closeEvent(QCloseEvent* event) {
    event->accept();
    finish_up();
}

// ---------------------------------------------------------------- tab entry

void MainWindow::enter_tab() {
    ctx_.ui.set_status(QString());
    QAction* row50 = item_menu_->findChild<QAction*>(QStringLiteral("rightmousemenuitems_50"));
    if (!row50) {
        for (QAction* a : item_menu_->actions()) {
            if (a->objectName() == QLatin1String("rightmousemenuitems_50")) {
                row50 = a;
            }
        }
    }
    if (row50) {
        row50->setEnabled(false);
    }
    const QString caption = current_tab_caption();
    if (caption == QLatin1String("Main") && row50) {
        row50->setEnabled(true);
    }
    if (TabPage* p = page(caption)) {
        p->enter();
    }
}

// ---------------------------------------------------------------- settings

void MainWindow::readwriteini(const QString& mode) {
    const QString m = mode.toUpper();
    AppState& app = ctx_.app;
    if (m == QLatin1String("READ")) {
        // The Resize tab's controls from their keys, which also paints the
        // thumbnail background colour button.
        passed_over([&] { fill_resize_tab(*this); });
        passed_over([&] {
            app.thumbnail_background_color = app.settings.read(
                QStringLiteral("Current"), QStringLiteral("Thumbnail Background Color"));
        });
        passed_over([&] {
            if (auto* target =
                    Workbench::find<QLineEdit>(QStringLiteral("o_html_target_directory"))) {
                target->setText(app.settings.read(QStringLiteral("Output"),
                                                  QStringLiteral("Target Directory")));
            }
        });
        read_settings(ctx_, find_database_at_start);
    } else if (m == QLatin1String("WRITE")) {
        std::optional<WindowPlacement> placement;
        if (windowState() == Qt::WindowNoState) {
            placement = WindowPlacement{twips(y()), twips(x()), twips(height()), twips(width())};
        }
        const auto* monitor = qobject_cast<MonitorTab*>(page(QStringLiteral("Monitor")));
        write_settings(app,
                       rows_of(Workbench::find<QWidget>(QStringLiteral("o_monitor_directories"))),
                       rows_of(Workbench::find<QWidget>(QStringLiteral("o_monitor_file_types"))),
                       placement, monitor && monitor->table_loaded());
    }
}

// ---------------------------------------------------------------- start and end

bool MainWindow::start_application(const QStringList& arguments) {
    AppState& app = ctx_.app;
    passed_over([&] { update_uninstall_ini(app); });

    app.log_messages = false;
    passed_over([&] {
        if (command_line_turns_log_on(arguments)) {
            app.log_messages = true;
            set_image_log(app.log_path());
            write_log(app.log_path(), QStringLiteral("-------------------------"),
                      QStringLiteral("-------------------------"), 1);
        }
    });

    ctx_.ui.set_busy(true);
    ctx_.ui.yield();

    // The spare tab between Audit and Slides is never shown.
    tabs().set_tab_visible(11, false);
    for (QAction* a : item_menu_->actions()) {
        if (a->objectName() == QLatin1String("rightmousemenuitems_50")) {
            a->setEnabled(false);
        }
    }

    app.system_directory = QStringLiteral("/usr/lib");
    app.windows_directory = QStringLiteral("");

    // A first run: the settings file is made from the empty values.
    passed_over([&] {
        if (!file_exists_at(app.ini_path)) {
            if (app.log_messages) {
                write_log(app.log_path(), QStringLiteral("startitoff"),
                          QStringLiteral("readwriteini_write"), 0);
            }
            readwriteini(QStringLiteral("WRITE"));
            app.settings.write(QStringLiteral("Current"), QStringLiteral("Auto Start Browser"),
                               QStringLiteral("Yes"));
        }
    });

    passed_over([&] {
        if (app.log_messages) {
            write_log(app.log_path(), QStringLiteral("startitoff"),
                      QStringLiteral("readwriteini_read"), 0);
        }
    });
    passed_over([&] { readwriteini(QStringLiteral("READ")); });

    if (catalog_exists(app.database_path)) {
        passed_over([&] { fill_template_list(*this); });
        if (auto* load = qobject_cast<LoadTab*>(page(QStringLiteral("Load")))) {
            passed_over([&] { load->fill_file_types(); });
            passed_over([&] { load->restore_load_tab(); });
        }
        passed_over([&] { app.main_list.clear(); });
        passed_over([&] { make_application_directories(app); });
    }

    if (!catalog_exists(app.database_path)) {
        ctx_.ui.set_busy(false);
        close();
        return false;
    }
    passed_over([&] { write_page_fragments(app); });
    passed_over([&] { centre_form(this); });
    setWindowTitle(app.application_title);
    tabs().set_current_index(0);
    hide();
    ctx_.ui.set_busy(true);
    ctx_.ui.set_busy(false);
    // The main list is always empty here: the Load tab's boxes go to the last
    // drive and directory, and the two values are read back from them.
    auto* drive = Workbench::find<DriveBox>(QStringLiteral("o_load_drive_list"));
    auto* directory = Workbench::find<DirectoryBox>(QStringLiteral("o_load_dir_list"));
    if (drive && directory) {
        const QString kept = app.last_directory;
        passed_over([&] {
            if (!app.last_drive.isEmpty()) {
                drive->set_drive(app.last_drive);
            }
        });
        passed_over([&] {
            if (!app.last_directory.isEmpty()) {
                directory->set_path(app.last_directory);
            }
        });
        passed_over([&] { directory->set_path(kept); });
        app.last_drive = drive->drive();
        app.last_directory = directory->path();
    }
    show();
    ctx_.ui.set_busy(false);
    return true;
}

void MainWindow::finish_up() {
    if (finishing_) {
        return;
    }
    finishing_ = true;
    AppState& app = ctx_.app;
    passed_over([&] { music_operation(app, 3); });
    passed_over([&] { readwriteini(QStringLiteral("WRITE")); });
    if (app.log_messages) {
        passed_over([&] {
            write_log(app.log_path(), QStringLiteral("finishup"), QStringLiteral("exit"), 0);
        });
    }
    // A command still running keeps every row it saved.
    passed_over([&] { app.database.commit_batch(); });
    end_process_();
}
