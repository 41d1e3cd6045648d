#pragma once

#include "core/context.h"
#include "core/settings.h"
#include "core/window_hooks.h"
#include "ui/workbench.h"

#include <QElapsedTimer>
#include <QMainWindow>
#include <QTimer>

#include <functional>

namespace Ui {
class MainWindow;
}
class QLabel;
class QMenu;
class TabPage;
class QProgressBar;
class TabStrip;

// The status bar, message loop and pointer of the main window, as commands see them.
// A command that shows a text per row gets it back at once from status(); the
// panel itself takes the latest text at most every kStatusPaintMs, and the last
// one always, so that the command does not spend its time painting.
class WindowHooks : public UiHooks {
public:
    static constexpr int kStatusPaintMs = 40;

    WindowHooks();
    void set_panel(QLabel* panel) { panel_ = panel; }
    void set_progress_bar(QProgressBar* bar) { bar_ = bar; }
    void set_status(const QString& text) override;
    void yield() override;
    void set_busy(bool busy) override;
    void show_progress(int done, int total) override;
    void end_progress() override;

private:
    void show_status();
    QLabel* panel_ = nullptr;
    QProgressBar* bar_ = nullptr;
    QElapsedTimer shown_;
    QTimer pending_;
};

// frm_main: one fixed window with the tab control SSTab, the status bar
// StatusBar1 and the menus. Its start is the whole start of the application,
// and finish_up the one way out.
class MainWindow : public QMainWindow, public Workbench {
    Q_OBJECT
public:
    static constexpr int kWidthTwips = 9495;
    static constexpr int kHeightTwips = 7110;

    MainWindow(AppState& app, Dialogs& dialogs, ShellServices& shell);
    ~MainWindow() override;

    // The load of the window, in its exact order. Returns false when no
    // database was found and the application has closed.
    bool start_application(const QStringList& arguments);
    // Stops the music, writes the settings, logs, and ends the process.
    void finish_up();
    void readwriteini(const QString& mode);
    // The entry of a tab: status text emptied, row 50 of the file list menu
    // disabled, then the tab's own entry by its caption.
    void enter_tab();

    // How the process ends; tests replace it.
    void set_end_process(std::function<void()> end) { end_process_ = std::move(end); }

    TabStrip& tabs();
    QMenu& item_menu() { return *item_menu_; }
    TabPage* page(const QString& caption);

    // Workbench
    Context& context() override { return ctx_; }
    QWidget* window_widget() override { return this; }
    QString current_tab_caption() const override;
    void set_tabs_enabled(bool enabled) override;
    void popup_item_menu() override;

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void build_item_menu();
    void item_menu_clicked(int row);
    void connect_menus();
    void open_help_file();
    void keep_fixed_size();

    std::unique_ptr<Ui::MainWindow> ui_;
    QLabel* status_panel_ = nullptr;
    WindowHooks hooks_;
    Context ctx_;
    QMenu* item_menu_ = nullptr;
    std::function<void()> end_process_;
    bool finishing_ = false;
};
