#include "imaging/image_view.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QResizeEvent>
#include <QSignalBlocker>

#include <cmath>

ImageView::ImageView(QWidget* parent) : QWidget(parent), control_(ImageControl::kScreenTwips) {
    setFocusPolicy(Qt::ClickFocus);
    // The designed size is the control's starting size.
    connect(&control_, &ImageControl::changed, this, &ImageView::follow_control);
}

QSize ImageView::sizeHint() const {
    return QSize(static_cast<int>(std::lround(control_.width() / ImageControl::kScreenTwips)),
                 static_cast<int>(std::lround(control_.height() / ImageControl::kScreenTwips)));
}

void ImageView::follow_control() {
    const QSize s = sizeHint();
    if (s != size()) {
        resize(s.expandedTo(QSize(1, 1)));
    }
    setCursor(control_.mouse_pointer() == 11 ? Qt::WaitCursor : Qt::ArrowCursor);
    update();
}

void ImageView::resizeEvent(QResizeEvent* event) {
    // A size given by the form (its designed geometry) is the control's size.
    if (event->size() != sizeHint()) {
        const QSignalBlocker quiet(&control_);
        control_.set_width(static_cast<float>(event->size().width() * ImageControl::kScreenTwips));
        control_.set_height(
            static_cast<float>(event->size().height() * ImageControl::kScreenTwips));
    }
    QWidget::resizeEvent(event);
}

void ImageView::paintEvent(QPaintEvent*) {
    QPainter p(this);
    if (!control_.has_picture()) {
        if (control_.file_name().isEmpty()) {
            last_painted_ = QImage();
        }
        return;
    }
    const QSize shown =
        control_.view_mode() == 1 && control_.thumb_size() <= 0 ? control_.shown_size() : size();
    // A file whose pixels turn out damaged, though its header read, leaves the
    // picture that stood before, with no message: the damage is reported by
    // the command that saves or prints it.
    try {
        last_painted_ = control_.picture(shown);
    } catch (const std::exception&) {
    }
    p.drawImage(QPoint(0, 0), last_painted_);
}

void ImageView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint())) {
        Q_EMIT clicked();
    }
    QWidget::mouseReleaseEvent(event);
}

void ImageView::keyPressEvent(QKeyEvent* event) {
    // The key is the viewer's: it does not go on to the window as well.
    Q_EMIT key_pressed(event->key());
    event->accept();
}
