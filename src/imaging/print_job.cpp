#include "imaging/print_job.h"

#include "core/context.h"
#include "core/item_list.h"
#include "core/run_error.h"
#include "imaging/image_control.h"
#include "imaging/print_layout.h"

#include <cmath>

namespace {

// Runs the end of every job, however it ends: the buttons back, the pointer
// back.
struct JobEnd {
    Context& ctx;
    PrintPanel& panel;
    ~JobEnd() {
        panel.set_printing(false);
        ctx.ui.set_busy(false);
    }
};

QString validation_message(const PrintChoices& c, const ItemList& list) {
    QString message;
    if (list.empty()) {
        message = QStringLiteral(
            "There are no images to print.  Use the 'Load' tab to add images to the main file "
            "list.");
    }
    if (c.layout.isEmpty()) {
        message = QStringLiteral("You must select a page layout.");
    }
    if (!c.portrait && !c.landscape) {
        message = QStringLiteral("You must select portrait or landscape.");
    }
    if (c.quality.isEmpty()) {
        message = QStringLiteral("You must select the print quality.");
    }
    return message;
}

// The next selected row after `index`; `index` itself when none is left.
int next_selected(const ItemList& list, int index) {
    for (int row = index + 1; row < list.count(); ++row) {
        if (list.selected(row)) {
            return row;
        }
    }
    return index;
}

// The loop of a for statement with a step of either sign.
bool within(double v, double last, double step) {
    return step >= 0 ? v <= last : v >= last;
}

// Draws the viewer's picture at `zoom` with its top left corner at (x, y).
void draw_picture(PrintDevice& device, const ImageControl& viewer, double zoom, double x,
                  double y) {
    const int w = viewer.image_width();
    const int h = viewer.image_height();
    if (!viewer.has_picture() || w <= 0 || h <= 0) {
        return;
    }
    const QSizeF drawn(w * zoom, h * zoom);
    // Decoded no larger than it is drawn, nor than the picture itself: the
    // printer's own scaling makes up the rest.
    QSize decode(w, h);
    if (zoom < 1) {
        decode = QSize(std::max(1, static_cast<int>(std::lround(drawn.width()))),
                       std::max(1, static_cast<int>(std::lround(drawn.height()))));
    }
    device.draw(viewer.picture(decode), QRectF(QPointF(x, y), drawn));
}

}  // namespace

PrintOutcome print_images(Context& ctx, const PrintChoices& choices, PrintPanel& panel,
                          PrintDevice& device) {
    PrintOutcome out;
    AppState& app = ctx.app;
    ItemList& list = panel.list();
    ctx.ui.set_busy(true);
    ctx.ui.set_status(QStringLiteral("Initializing printer..."));
    ctx.ui.yield();
    panel.set_printing(true);
    JobEnd job_end{ctx, panel};

    out.message = validation_message(choices, list);
    if (!out.message.isEmpty()) {
        ctx.dialogs.info(out.message);
        return out;
    }

    app.stop_scan = false;
    int total = list.count();
    int index = 0;
    if (choices.selected_files) {
        const QList<int> rows = list.selected_rows();
        total = static_cast<int>(rows.size());
        if (rows.isEmpty()) {
            out.message = QStringLiteral("There are no images selected to print.");
            ctx.dialogs.info(out.message);
            return out;
        }
        index = rows.constFirst();
    }

    device.set_orientation(choices.portrait ? 1 : 2);
    const int quality = print_quality_number(choices.quality);
    if (quality != 0) {
        device.set_quality(quality);
    }
    if (!device.open_document()) {
        ctx.ui.set_status(QString());
        return out;
    }
    bool open = true;
    Progress progress(ctx.ui, total);
    try {
        const QSizeF page = device.scale_size();
        const PageGrid g =
            page_grid(choices.layout, !choices.portrait, page.width(), page.height());
        ImageControl& viewer = panel.viewer();
        int count = 0;
        bool leave = false;
        while (count < total && !leave) {
            for (double y = g.y0; within(y, g.y1, g.ys) && !leave; y += g.ys) {
                for (double x = g.x0; within(x, g.x1, g.xs); x += g.xs) {
                    ctx.ui.yield();
                    const QString path = list.item(index);
                    list.set_selected(index, false);
                    list.set_selected(index, true);
                    panel.show_row(index);
                    ctx.ui.set_status(path);
                    ctx.ui.yield();
                    if (wrong_shape(g.style, viewer.image_width(), viewer.image_height())) {
                        panel.set_viewer_visible(false);
                        ctx.ui.yield();
                        viewer.rotate(1);
                        app.preview_file = path;
                        panel.fit_viewer();
                        panel.set_viewer_visible(true);
                        ctx.ui.yield();
                    }
                    ctx.ui.set_status(path);
                    ctx.ui.yield();
                    if (app.stop_scan) {
                        out.cancelled = true;
                        leave = true;
                        break;
                    }
                    ++count;
                    const double zoom = print_zoom(viewer.image_width(), viewer.image_height(),
                                                   g.cw, g.ch, choices.use_max_size);
                    draw_picture(device, viewer, zoom, x, y);
                    ++out.printed;
                    progress.step(out.printed);
                    ctx.ui.yield();
                    if (app.stop_scan) {
                        out.cancelled = true;
                        leave = true;
                        break;
                    }
                    if (count == total) {
                        leave = true;
                        break;
                    }
                    if (g.per_page == 0) {
                        // A layout the table does not know has no page size.
                        throw RunError(QStringLiteral("Division by zero"));
                    }
                    if (count % g.per_page == 0) {
                        ctx.ui.set_status(QStringLiteral("Printing..."));
                        ctx.ui.yield();
                        open = false;
                        device.end_document();
                        open = device.open_document();
                        if (!open) {
                            leave = true;
                            break;
                        }
                    }
                    index = choices.selected_files ? next_selected(list, index) : index + 1;
                }
            }
        }
        if (open) {
            if (out.cancelled) {
                ctx.ui.set_status(QStringLiteral("Cancelling print job..."));
                ctx.ui.yield();
                open = false;
                device.kill_document();
            } else {
                ctx.ui.set_status(QStringLiteral("Printing..."));
                ctx.ui.yield();
                open = false;
                device.end_document();
            }
        }
    } catch (...) {
        if (open) {
            passed_over([&] { device.kill_document(); });
        }
        throw;
    }

    if (!choices.selected_files) {
        panel.set_viewer_visible(false);
        for (int row = 0; row < list.count(); ++row) {
            list.set_selected(row, false);
            ctx.ui.yield();
        }
        panel.set_viewer_visible(true);
    }
    passed_over([&] { panel.viewer().set_file_name(QString()); });
    ctx.ui.set_status(QString());
    ctx.ui.yield();
    return out;
}
