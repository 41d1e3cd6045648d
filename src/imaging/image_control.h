#pragma once

#include <QImage>
#include <QObject>
#include <QSize>
#include <QString>

// One picture and the state through which every command reads, shows, sizes
// and saves it: the image control of the window's viewers, of the preview
// and of the hidden worker that makes thumbnails and resized copies.
//
// Sizes: ImageWidth/ImageHeight are the picture's own pixels; Width/Height
// are the control's size in twips. On screen a pixel is 15 twips; the hidden
// worker counts 15.7 twips a pixel, the factor of the resize limits, so that
// a resized picture comes out at its limit and never above it.
//
// ViewMode 1: the control takes the picture's natural size. 2 and 3: the
// picture follows the control's size (fitted on the width or on the height).
//
// Not thread-safe: used from the user-interface thread.
class ImageControl : public QObject {
    Q_OBJECT
public:
    static constexpr double kScreenTwips = 15.0;
    static constexpr double kWorkerTwips = 15.7;

    explicit ImageControl(double twips_per_pixel = kScreenTwips, QObject* parent = nullptr);
    ~ImageControl() override;

    double twips_per_pixel() const { return twips_per_pixel_; }

    // Writing a path loads that file at once; "" empties the control. A file
    // that cannot be read throws RunError and leaves the control as it was.
    QString file_name() const { return file_name_; }
    void set_file_name(const QString& path);
    bool has_picture() const { return !natural_.isEmpty(); }

    // The picture's own size in pixels (16-bit values: a larger side is an
    // overflow error).
    int image_width() const;
    int image_height() const;

    float width() const { return width_; }
    float height() const { return height_; }
    void set_width(float twips);
    void set_height(float twips);

    int view_mode() const { return view_mode_; }
    void set_view_mode(int mode);

    // When above 0, the picture is reduced so that its larger side is this
    // many pixels, for display and for saving.
    int thumb_size() const { return thumb_size_; }
    void set_thumb_size(int pixels);

    // Save settings; they stay in force until written again.
    void set_scale_reset(int value) { scale_reset_ = value; }
    void set_dither(double value) { dither_ = static_cast<int>(value); }
    void set_optimize(bool on) { optimize_ = on; }
    void set_quality(double value) { quality_ = static_cast<int>(value); }
    void set_smoothing(double value) { smoothing_ = static_cast<int>(value); }
    // 0 draws a "3D" thumbnail with a raised bevel, 1 a flat one.
    void set_appearance(int value) { appearance_ = value; }
    // Colour number as decimal text (red in the low byte); "" for none.
    void set_back_color(const QString& decimal) { back_color_ = decimal; }
    int dither() const { return dither_; }
    bool optimize() const { return optimize_; }
    int quality() const { return quality_; }
    int smoothing() const { return smoothing_; }
    int appearance() const { return appearance_; }
    QString back_color() const { return back_color_; }

    // Writes the picture as shown (its size by ViewMode, Width/Height and
    // ThumbSize) as a JPEG file with the present save settings. The loaded
    // file is never changed. Throws RunError.
    void save_jpeg(const QString& path);

    // Turns the picture a quarter turn (the argument is always 1).
    void rotate(int turns);

    // Puts a picture that has no file, such as a scan, into the control.
    void set_picture(const QImage& image);

    // 11 busy, 0 default: the pointer over a viewer.
    int mouse_pointer() const { return mouse_pointer_; }
    void set_mouse_pointer(int value);

    // The size in pixels the picture has when shown or saved.
    QSize shown_size() const;
    // The picture at `size` pixels (an empty image when there is none).
    QImage picture(QSize size) const;

Q_SIGNALS:
    // Anything that changes what a view of this control shows.
    void changed();

private:
    QImage full_picture() const;

    double twips_per_pixel_;
    QString file_name_;
    QSize natural_;
    mutable QImage picture_;  // decoded on demand
    QImage set_picture_;      // a picture given without a file
    int rotation_ = 0;        // quarter turns applied to the file's picture
    float width_ = 1815;
    float height_ = 1215;
    int view_mode_ = 1;
    int thumb_size_ = 0;
    int scale_reset_ = 0;
    int dither_ = 1;
    bool optimize_ = false;
    int quality_ = 75;
    int smoothing_ = 0;
    int appearance_ = 1;
    QString back_color_;
    int mouse_pointer_ = 0;
};
