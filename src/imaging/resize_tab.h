#pragma once

#include "core/item_list.h"
#include "ui/tab_page.h"

#include <memory>

namespace Ui {
class ResizeTab;
}

// The Resize tab: thumbnails or resized copies of the main list's files,
// the thumbnail settings, the target directory, and a preview of the file
// picked in its list. Each control writes its setting when the user changes
// it; entering the tab fills it again from the settings.
class ResizeTab : public TabPage {
    Q_OBJECT
public:
    explicit ResizeTab(Workbench& workbench, QWidget* parent = nullptr);
    ~ResizeTab() override;

    void enter() override;

    // The rows of o_thumbnail_list.
    ItemList& thumbnail_list() { return list_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void create();
    void list_clicked();
    void list_double_clicked();
    void dither_changed();
    void optimize_changed();
    void file_type_changed();
    void thumbnail_type_changed();
    void prefix_clicked(bool on);
    void selected_only_clicked(bool on);
    void choose_background_color();
    void choose_target_directory();
    void fill_empty_boxes();

    std::unique_ptr<Ui::ResizeTab> ui_;
    ItemList list_;
};

// Fills the Resize tab from the settings file: o_thumbnail_list from the main
// list with its "File Count: " caption, and every thumbnail control from its
// key (an empty key takes its default). Runs no change handler.
void fill_resize_tab(Workbench& wb);

// Sets the thumbnail target directory as the directory chooser does: the
// caption of o_thumbnail_target_directory, its setting and the shared value.
void set_thumbnail_target_directory(Workbench& wb, const QString& directory);
