#include "imaging/image_control.h"

#include "core/run_error.h"
#include "imaging/image_log.h"
#include "imaging/jpeg_writer.h"
#include "imaging/memory_budget.h"
#include "imaging/numeric_text.h"
#include "imaging/source_file.h"

#include <QPainter>
#include <QSaveFile>
#include <QTransform>

#include <algorithm>
#include <cmath>

namespace {

// A decoded picture larger than this is not kept once it has been shown.
constexpr qint64 kKeepDecodedPixels = 4'000'000;

QImage rotated(const QImage& image, int quarter_turns) {
    if (quarter_turns == 0 || image.isNull()) {
        return image;
    }
    return image.transformed(QTransform().rotate(90.0 * quarter_turns));
}

QImage over_colour(const QImage& image, QRgb colour) {
    if (!image.hasAlphaChannel()) {
        return image;
    }
    QImage out(image.size(), QImage::Format_RGB32);
    out.fill(colour);
    QPainter p(&out);
    p.drawImage(0, 0, image);
    return out;
}

// A raised bevel: light along the top and left, dark along the bottom and
// right, `width` lines deep.
void draw_bevel(QImage& canvas, int width, QRgb back) {
    QPainter p(&canvas);
    const QColor base = QColor::fromRgb(back);
    const QColor light[2] = {QColor(255, 255, 255), base.lighter(130)};
    const QColor dark[2] = {QColor(64, 64, 64), base.darker(150)};
    const int w = canvas.width();
    const int h = canvas.height();
    for (int i = 0; i < width && i < 2; ++i) {
        p.setPen(light[i]);
        p.drawLine(i, i, w - 1 - i, i);
        p.drawLine(i, i, i, h - 1 - i);
        p.setPen(dark[i]);
        p.drawLine(i, h - 1 - i, w - 1 - i, h - 1 - i);
        p.drawLine(w - 1 - i, i, w - 1 - i, h - 1 - i);
    }
}

// The most that decoding a picture to `decoded` pixels and reducing it to
// `out` holds at once: the decoded picture (and the 16-bit picture it was
// converted from), a turned copy when Rotate turned it, the premultiplied copy
// a reduction works on and the filter's rows for a careful one, and the result.
qint64 picture_cost(QSize decoded, QSize out, Resampling quality, bool turned, bool deep,
                    bool converted) {
    const qint64 pixels = qint64(decoded.width()) * decoded.height();
    qint64 bytes = pixels * (deep ? 12 : 4);
    if (converted && quality == Resampling::Default) {
        bytes += pixels * 4;
    }
    if (turned) {
        bytes += pixels * 4;
    }
    if (quality == Resampling::High) {
        bytes += pixels * 4 + qint64(out.width()) * decoded.height() * 16;
    }
    return bytes + qint64(out.width()) * out.height() * 4;
}

}  // namespace

ImageControl::ImageControl(double twips_per_pixel, QObject* parent)
    : QObject(parent), twips_per_pixel_(twips_per_pixel) {
    route_library_warnings();
}

ImageControl::~ImageControl() = default;

void ImageControl::clear_picture() {
    source_.reset();
    header_ = ImageHeader();
    natural_ = QSize();
    given_ = QImage();
    rotation_ = 0;
    decoded_ = QImage();
    decoded_full_ = false;
    shown_cache_ = QImage();
    damaged_.clear();
}

void ImageControl::follow_natural_size() {
    if (view_mode_ == 1 && has_picture()) {
        width_ = static_cast<float>(natural_.width() * twips_per_pixel_);
        height_ = static_cast<float>(natural_.height() * twips_per_pixel_);
    }
}

void ImageControl::set_file_name(const QString& path) {
    if (path.isEmpty()) {
        clear_picture();
        file_name_.clear();
        Q_EMIT changed();
        return;
    }
    std::shared_ptr<SourceFile> file = SourceFile::open(path);
    if (!file && path.trimmed() != path) {
        // Blanks around a path are not part of it to file_exists, which is
        // how every command decides there is a file to load.
        file = SourceFile::open(path.trimmed());
    }
    if (!file) {
        clear_picture();
        file_name_ = path;
        Q_EMIT changed();
        return;
    }
    const ImageHeader header = read_image_header(*file);  // throws: nothing changed yet
    clear_picture();
    file_name_ = path;
    source_ = std::move(file);
    header_ = header;
    natural_ = header.upright();
    follow_natural_size();
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
    follow_natural_size();
    Q_EMIT changed();
}

void ImageControl::set_thumb_size(int pixels) {
    thumb_size_ = pixels;
    Q_EMIT changed();
}

void ImageControl::set_dither(double value) {
    dither_ = std::clamp(static_cast<int>(std::lround(value)), 0, 2);
}

void ImageControl::set_quality(double value) {
    quality_ = std::clamp(static_cast<int>(std::lround(value)), 1, 100);
}

void ImageControl::set_smoothing(double value) {
    smoothing_ = std::clamp(static_cast<int>(std::lround(value)), 0, 100);
}

void ImageControl::set_mouse_pointer(int value) {
    mouse_pointer_ = value;
    Q_EMIT changed();
}

QSize ImageControl::shown_size() const {
    if (!has_picture()) {
        return QSize();
    }
    if (thumb_size_ > 0) {
        return QSize(thumb_size_, thumb_size_);
    }
    if (view_mode_ == 1) {
        return natural_;
    }
    const double w = width_ / twips_per_pixel_;
    const double h = height_ / twips_per_pixel_;
    if (!(w >= 0.5 && h >= 0.5 && w < 65536 && h < 65536)) {
        return QSize();
    }
    return QSize(static_cast<int>(std::lround(w)), static_cast<int>(std::lround(h)));
}

QSize ImageControl::decode_need(QSize want, Resampling quality) const {
    // In the file's upright frame, before Rotate's quarter turns.
    QSize need = (rotation_ & 1) ? want.transposed() : want;
    if (quality == Resampling::High) {
        need *= 2;
    }
    return need.boundedTo(header_.upright());
}

bool ImageControl::decoded_enough(QSize need) const {
    return !decoded_.isNull() && (decoded_full_ || (decoded_.width() >= need.width() &&
                                                    decoded_.height() >= need.height()));
}

QImage ImageControl::source_at_least(QSize want, Resampling quality) const {
    if (!given_.isNull()) {
        return rotated(given_, rotation_);
    }
    if (!source_) {
        return QImage();
    }
    const QSize need = decode_need(want, quality);
    if (!decoded_enough(need)) {
        // A file whose pixels failed once fails again at once: a viewer asks
        // at every paint.
        if (!damaged_.isEmpty()) {
            throw RunError(damaged_);
        }
        decoded_ = QImage();
        try {
            decoded_ = decode_image(*source_, header_, need, quality);
        } catch (const RunError& e) {
            damaged_ = e.text();
            throw;
        }
        decoded_full_ = decoded_.size() == header_.upright();
    }
    return rotated(decoded_, rotation_);
}

QImage ImageControl::picture_at(QSize size, Resampling quality) const {
    // Declared first, so that it is let go after every picture below.
    MemoryBudget::Hold hold;
    if (source_ && given_.isNull()) {
        const QSize need = decode_need(size, quality);
        if (!decoded_enough(need)) {
            hold = MemoryBudget::decoding().acquire(
                picture_cost(decoded_size(header_, need), size, quality, rotation_ != 0,
                             header_.deep, header_.type != ImageType::Jpeg));
        }
    }
    const QImage source = source_at_least(size, quality);
    QImage out = resample(source, size, quality);
    if (qint64(decoded_.width()) * decoded_.height() > kKeepDecodedPixels) {
        decoded_ = QImage();
        decoded_full_ = false;
    }
    return out;
}

QImage ImageControl::picture(QSize size) const {
    if (!has_picture() || size.isEmpty()) {
        return QImage();
    }
    if (shown_cache_.size() != size || shown_quality_ != Resampling::Default) {
        shown_cache_ = QImage();
        shown_cache_ = picture_at(size, Resampling::Default);
        shown_quality_ = Resampling::Default;
    }
    return shown_cache_;
}

QRgb ImageControl::back_rgb() const {
    if (back_color_.trimmed().isEmpty()) {
        return qRgb(255, 255, 255);
    }
    const double v = val_of_text(back_color_);
    if (v < 0 || v > 0xFFFFFF) {
        return qRgb(255, 255, 255);
    }
    const auto n = static_cast<quint32>(v);
    return qRgb(n & 255, (n >> 8) & 255, (n >> 16) & 255);
}

QImage ImageControl::rendered() {
    if (!has_picture()) {
        throw RunError(QStringLiteral("There is no picture to save."));
    }
    const QSize out = shown_size();
    if (out.isEmpty()) {
        throw RunError(QStringLiteral("The picture has no size to save."));
    }
    // The output is held whole, as a decoded picture is, so the same limit
    // holds: a square thumbnail frame grows with the square of its size.
    if (qint64(out.width()) * out.height() > kMaxDecodePixels) {
        const QString name = file_name_.isEmpty() ? QStringLiteral("the picture") : file_name_;
        throw RunError(
            QStringLiteral("Cannot make %1 of %2 x %3 pixels of %4: no picture may have "
                           "more than %5 pixels.")
                .arg(thumb_size_ > 0 ? QStringLiteral("a thumbnail") : QStringLiteral("a copy"))
                .arg(out.width())
                .arg(out.height())
                .arg(name)
                .arg(kMaxDecodePixels));
    }
    const Resampling quality = resampling_for_dither(dither_);
    const QRgb back = back_rgb();
    if (thumb_size_ <= 0) {
        return over_colour(picture_at(out, quality), back);
    }
    const int bevel = appearance_ == 0 && thumb_size_ >= 8 ? 2 : 0;
    const int inner = thumb_size_ - 2 * bevel;
    QSize fit = natural_.scaled(inner, inner, Qt::KeepAspectRatio);
    fit = fit.expandedTo(QSize(1, 1));
    const QImage pic = picture_at(fit, quality);
    QImage canvas(out, QImage::Format_RGB32);
    canvas.fill(back);
    {
        QPainter p(&canvas);
        p.drawImage((out.width() - fit.width()) / 2, (out.height() - fit.height()) / 2, pic);
    }
    if (bevel > 0) {
        draw_bevel(canvas, bevel, back);
    }
    return canvas;
}

std::optional<RenderKey> ImageControl::render_key() const {
    if (!source_ || !given_.isNull() || rotation_ != 0) {
        return std::nullopt;
    }
    RenderKey k;
    k.path = file_name_;
    k.identity = source_->identity();
    k.shown = shown_size();
    k.thumb_size = thumb_size_;
    k.appearance = thumb_size_ > 0 ? appearance_ : 1;
    k.back_color = back_color_;
    k.dither = dither_;
    k.jpeg = {quality_, smoothing_, optimize_};
    return k;
}

QByteArray ImageControl::encoded_jpeg() {
    if (prefetched_) {
        if (const std::optional<RenderKey> key = render_key()) {
            if (std::optional<EncodedJpeg> ready = prefetched_->take(*key)) {
                if (!ready->error.isEmpty()) {
                    throw RunError(ready->error);
                }
                return ready->bytes;
            }
        }
    }
    return encode_jpeg(rendered(), {quality_, smoothing_, optimize_});
}

void ImageControl::save_jpeg(const QString& path) {
    const QByteArray bytes = encoded_jpeg();
    QSaveFile out(path);
    if (!out.open(QIODevice::WriteOnly) || out.write(bytes) != bytes.size() || !out.commit()) {
        throw RunError(QStringLiteral("Cannot write ") + path + QStringLiteral(": ") +
                       out.errorString());
    }
}

void ImageControl::rotate(int turns) {
    if (!has_picture()) {
        return;
    }
    rotation_ = ((rotation_ + turns) % 4 + 4) % 4;
    if (turns % 2 != 0) {
        natural_ = natural_.transposed();
    }
    shown_cache_ = QImage();
    follow_natural_size();
    Q_EMIT changed();
}

void ImageControl::set_picture(const QImage& image) {
    clear_picture();
    file_name_.clear();
    given_ = image;
    natural_ = image.size();
    follow_natural_size();
    Q_EMIT changed();
}

// Compiled here rather than with the forms, so that the command-line program
// can take the worker without the window's code.
#include "moc_image_control.cpp"
