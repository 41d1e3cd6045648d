#include "imaging/image_control.h"

#include "shell/run_error.h"

#include <QFileInfo>
#include <QImageReader>
#include <QImageWriter>
#include <QPainter>

#include <cmath>

ImageControl::ImageControl(double twips_per_pixel, QObject* parent)
    : QObject(parent), twips_per_pixel_(twips_per_pixel) {}

ImageControl::~ImageControl() = default;

void ImageControl::set_file_name(const QString& path) {
    if (path.isEmpty()) {
        file_name_.clear();
        natural_ = QSize();
        picture_ = QImage();
        set_picture_ = QImage();
        rotation_ = 0;
        Q_EMIT changed();
        return;
    }
    if (!QFileInfo(path).isFile()) {
        throw RunError(QStringLiteral("File not found: ") + path);
    }
    QImageReader reader(path);
    reader.setAutoTransform(true);
    QImage img = reader.read();
    if (img.isNull()) {
        throw RunError(QStringLiteral("The picture in ") + path +
                       QStringLiteral(" cannot be read: ") + reader.errorString());
    }
    file_name_ = path;
    picture_ = img;
    set_picture_ = QImage();
    rotation_ = 0;
    natural_ = img.size();
    if (view_mode_ == 1) {
        width_ = static_cast<float>(natural_.width() * twips_per_pixel_);
        height_ = static_cast<float>(natural_.height() * twips_per_pixel_);
    }
    Q_EMIT changed();
}

int ImageControl::image_width() const {
    if (natural_.width() > 32767) {
        throw RunError(QStringLiteral("Overflow"));
    }
    return natural_.width();
}

int ImageControl::image_height() const {
    if (natural_.height() > 32767) {
        throw RunError(QStringLiteral("Overflow"));
    }
    return natural_.height();
}

void ImageControl::set_width(float twips) {
    width_ = twips;
    Q_EMIT changed();
}

void ImageControl::set_height(float twips) {
    height_ = twips;
    Q_EMIT changed();
}

void ImageControl::set_view_mode(int mode) {
    view_mode_ = mode;
    if (mode == 1 && has_picture()) {
        width_ = static_cast<float>(natural_.width() * twips_per_pixel_);
        height_ = static_cast<float>(natural_.height() * twips_per_pixel_);
    }
    Q_EMIT changed();
}

void ImageControl::set_thumb_size(int pixels) {
    thumb_size_ = pixels;
    Q_EMIT changed();
}

void ImageControl::set_mouse_pointer(int value) {
    mouse_pointer_ = value;
    Q_EMIT changed();
}

QImage ImageControl::full_picture() const {
    return picture_;
}

QSize ImageControl::shown_size() const {
    if (!has_picture()) {
        return QSize();
    }
    if (thumb_size_ > 0) {
        QSize s = natural_;
        s.scale(thumb_size_, thumb_size_, Qt::KeepAspectRatio);
        return s.expandedTo(QSize(1, 1));
    }
    if (view_mode_ == 1) {
        return natural_;
    }
    const double w = width_ / twips_per_pixel_;
    const double h = height_ / twips_per_pixel_;
    if (!(w >= 0.5 && h >= 0.5 && w < 1e6 && h < 1e6)) {
        return QSize();
    }
    return QSize(static_cast<int>(std::lround(w)), static_cast<int>(std::lround(h)));
}

QImage ImageControl::picture(QSize size) const {
    const QImage full = full_picture();
    if (full.isNull() || size.isEmpty()) {
        return QImage();
    }
    if (size == full.size()) {
        return full;
    }
    return full.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

void ImageControl::save_jpeg(const QString& path) {
    if (!has_picture()) {
        throw RunError(QStringLiteral("There is no picture to save."));
    }
    if (shown_size().isEmpty()) {
        throw RunError(QStringLiteral("The picture has no size to save."));
    }
    QImage out = picture(shown_size()).convertToFormat(QImage::Format_RGB32);
    QImageWriter writer(path, "jpeg");
    writer.setQuality(quality_);
    writer.setOptimizedWrite(optimize_);
    if (!writer.write(out)) {
        throw RunError(QStringLiteral("The picture cannot be saved as ") + path +
                       QStringLiteral(": ") + writer.errorString());
    }
}

void ImageControl::rotate(int turns) {
    if (!has_picture()) {
        return;
    }
    QTransform t;
    t.rotate(90.0 * turns);
    picture_ = picture_.transformed(t);
    natural_ = picture_.size();
    rotation_ = (rotation_ + turns) % 4;
    if (view_mode_ == 1) {
        width_ = static_cast<float>(natural_.width() * twips_per_pixel_);
        height_ = static_cast<float>(natural_.height() * twips_per_pixel_);
    }
    Q_EMIT changed();
}

void ImageControl::set_picture(const QImage& image) {
    file_name_.clear();
    set_picture_ = image;
    picture_ = image;
    natural_ = image.size();
    rotation_ = 0;
    if (view_mode_ == 1) {
        width_ = static_cast<float>(natural_.width() * twips_per_pixel_);
        height_ = static_cast<float>(natural_.height() * twips_per_pixel_);
    }
    Q_EMIT changed();
}
