#include "imaging/preview_window.h"

#include "imaging/image_view.h"
#include "lists/image_panels.h"
#include "slides/music_operation.h"
#include "ui/centre_form.h"
#include "ui/workbench.h"
#include "ui_preview_window.h"

#include <QApplication>
#include <QKeyEvent>
#include <QResizeEvent>
#include <QScreen>

#include <cmath>

namespace {

constexpr float kTwips = static_cast<float>(ImageControl::kScreenTwips);

int to_pixels(float twips) {
    return std::max(1, static_cast<int>(std::lround(twips / kTwips)));
}

}  // namespace

PreviewWindow::PreviewWindow(Workbench& workbench, QWidget* parent)
    : QDialog(parent), wb_(workbench), ui_(std::make_unique<Ui::PreviewWindow>()) {
    ui_->setupUi(this);
    ui_->o_image->setFocusPolicy(Qt::StrongFocus);
    connect(ui_->o_image, &ImageView::key_pressed, this, [this](int key) { key_pressed(key); });
    connect(this, &QDialog::finished, this, [this] { unload(); });
}

PreviewWindow::~PreviewWindow() = default;

ImageView* PreviewWindow::image() const {
    return ui_->o_image;
}
QFrame* PreviewWindow::frame() const {
    return ui_->f_image;
}

void PreviewWindow::load() {
    AppState& app = wb_.context().app;
    ImageControl& c = ui_->o_image->control();
    try {
        c.set_file_name(app.preview_file);
        setWindowTitle(app.preview_file);
        fit_to_frame(c, static_cast<float>(ui_->f_image->width()) * kTwips,
                     static_cast<float>(ui_->f_image->height()) * kTwips);
    } catch (const std::exception&) {
        // The last picture stays on screen.
    }
}

void PreviewWindow::lay_out() {
    laid_out_for_ = size();
    // Margins in twips: 200 under and over the frame, 400 beside it; 300 and
    // 400 between the frame and the image.
    const float frame_h = static_cast<float>(height()) * kTwips - 200;
    const float frame_w = static_cast<float>(width()) * kTwips - 400;
    ui_->f_image->resize(to_pixels(frame_w), to_pixels(frame_h));
    ImageControl& c = ui_->o_image->control();
    c.set_height(static_cast<float>(ui_->f_image->height()) * kTwips - 300);
    c.set_width(static_cast<float>(ui_->f_image->width()) * kTwips - 400);
}

void PreviewWindow::resizeEvent(QResizeEvent* event) {
    QDialog::resizeEvent(event);
    if (!(windowState() & Qt::WindowMinimized) && event->size() != laid_out_for_) {
        lay_out();
    }
}

void PreviewWindow::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    if (event->type() != QEvent::WindowStateChange) {
        return;
    }
    const bool minimised = windowState() & Qt::WindowMinimized;
    if (was_minimised_ && !minimised) {
        lay_out();  // restored: laid out once more, not loaded again
    }
    was_minimised_ = minimised;
}

void PreviewWindow::keyPressEvent(QKeyEvent* event) {
    // Every key is the preview's own: none closes the window.
    key_pressed(event->key());
}

void PreviewWindow::key_pressed(int key) {
    QApplication::beep();
    if (key != Qt::Key_Space) {
        return;
    }
    Context& ctx = wb_.context();
    AppState& app = ctx.app;
    if (!app.slide_show_paused) {
        music_operation(app, 2);
        app.slide_show_paused = true;
        ctx.ui.set_busy(true);
        ui_->o_image->control().set_mouse_pointer(11);
        ctx.ui.yield();
    } else {
        music_operation(app, 21);
        app.slide_show_paused = false;
        ctx.ui.set_busy(false);
        ui_->o_image->control().set_mouse_pointer(0);
    }
}

void PreviewWindow::unload() {
    music_operation(wb_.context().app, 3);
    wb_.set_tabs_enabled(true);
}

void open_preview(Workbench& wb) {
    AppState& app = wb.context().app;
    if (app.preview_file.isEmpty()) {
        return;
    }
    PreviewWindow window(wb, wb.window_widget());
    if (const QScreen* screen = QGuiApplication::primaryScreen()) {
        const QRect area = screen->availableGeometry();
        window.resize(area.width() * 3 / 4, area.height() * 3 / 4);
    }
    window.lay_out();
    window.load();
    centre_form(&window);
    window.exec();
}
