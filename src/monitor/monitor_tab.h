#pragma once

#include "monitor/monitor_pass.h"
#include "ui/tab_page.h"

#include <memory>

namespace Ui {
class MonitorTab;
}
class QListWidget;

// The Monitor tab: the table of watched directories and their file types,
// the interval, and the button that starts and stops monitoring. Each event
// of the monitor's timer reads the tab's controls and runs a tick.
class MonitorTab : public TabPage {
    Q_OBJECT
public:
    explicit MonitorTab(Workbench& wb, QWidget* parent = nullptr);
    ~MonitorTab() override;

    void enter() override;

    // Whether an entry has filled the table from the settings in this run:
    // until then the lists are empty and stand for nothing.
    bool table_loaded() const { return table_loaded_; }
    // The controls as the button and the timer read them.
    MonitorControls controls() const;

private:
    void add_clicked();
    void delete_clicked();
    void remove_row(int row);
    void link_highlight(QListWidget* clicked, QListWidget* other, int row);
    void drive_changed(const QString& drive);
    void directory_changed();
    void file_type_changed(const QString& text);
    void scan_clicked();
    void show_scan_state(bool on);

    std::unique_ptr<Ui::MonitorTab> ui_;
    bool table_loaded_ = false;
};
