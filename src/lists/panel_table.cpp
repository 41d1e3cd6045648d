#include "lists/panel_table.h"

#include "core/run_error.h"
#include "imaging/image_view.h"
#include "lists/image_panels.h"
#include "ui/workbench.h"

#include <QListWidget>
#include <QWidget>

Panel find_panel(Workbench& wb, const QString& word) {
    struct Row {
        const char* word;
        const char* frame;
        const char* viewer;
    };
    static const Row kRows[] = {
        {"main", "f_main__image_view", "o_main_image_view"},
        {"load", "f_load_image_view", "o_load_image_view"},
        {"printing", "f_printing_image_view", "o_printing_image_view"},
        {"scan", "f_scan_image_view", "o_scan_image_view"},
        {"search", "f_search_image_view", "o_search_image_view"},
        {"slides", "f_slides_image_view", "o_slides_image_view"},
        {"thumbnail", "f_thumbnail_image_view", "o_thumbnail_image_view"},
    };
    for (const Row& r : kRows) {
        if (word == QLatin1String(r.word)) {
            return {wb.find<QWidget>(QLatin1String(r.frame)),
                    wb.find<ImageView>(QLatin1String(r.viewer))};
        }
    }
    return {};
}

void fit_panel(Workbench& wb, const QString& word) {
    const Panel p = find_panel(wb, word);
    if (!p.frame || !p.viewer) {
        return;
    }
    const auto tw = static_cast<float>(ImageControl::kScreenTwips);
    passed_over([&] {
        fit_to_frame(p.viewer->control(), static_cast<float>(p.frame->width()) * tw,
                     static_cast<float>(p.frame->height()) * tw);
    });
}

QString current_row_text(const QListWidget* list) {
    const QListWidgetItem* item = list ? list->currentItem() : nullptr;
    return item ? item->text() : QString();
}

void clear_viewer(ImageView* viewer) {
    if (!viewer) {
        return;
    }
    viewer->control().set_file_name(QString());
    viewer->control().set_width(1815);
    viewer->control().set_height(1215);
}

void show_panel_file(Workbench& wb, const QString& word, const QString& path,
                     bool resume_on_error) {
    const Panel p = find_panel(wb, word);
    if (!p.viewer) {
        return;
    }
    if (!is_image_file(path)) {
        clear_viewer(p.viewer);
        return;
    }
    AppState& app = wb.context().app;
    if (resume_on_error) {
        passed_over([&] { p.viewer->control().set_file_name(path); });
    } else {
        p.viewer->control().set_file_name(path);
    }
    app.selected_file = path;
    app.preview_file = path;
    fit_panel(wb, word);
}
