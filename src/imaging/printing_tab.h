#pragma once

#include "core/item_list.h"
#include "imaging/print_job.h"
#include "ui/tab_page.h"

#include <memory>

namespace Ui {
class PrintingTab;
}

// The Printing tab: prints the images of its list 1, 2, 4 or 8 to a page
// on the chosen printer. Every control stores its setting at once.
class PrintingTab : public TabPage, private PrintPanel {
    Q_OBJECT
public:
    explicit PrintingTab(Workbench& wb, QWidget* parent = nullptr);
    ~PrintingTab() override;

    // Fills the list from the main list's images, the boxes and options from
    // the settings, and the printer box from the machine's printers.
    void enter() override;

    // The pictures to print, `o_printing_file_list`.
    ItemList& files() { return files_; }
    // The printer that a job goes to: the last one chosen by name.
    const QString& current_printer() const { return printer_; }

private:
    // PrintPanel
    ItemList& list() override { return files_; }
    ImageControl& viewer() override;
    void show_row(int row) override;
    void fit_viewer() override;
    void set_viewer_visible(bool visible) override;
    void set_printing(bool printing) override;

    void print_now();
    void choose_printer(const QString& name);
    void write_setting(const char* key, const QString& value);

    std::unique_ptr<Ui::PrintingTab> ui_;
    ItemList files_;
    QString printer_;
    bool filling_ = false;
};
