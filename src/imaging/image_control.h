#pragma once

#include "imaging/image_decoder.h"
#include "imaging/render_key.h"

#include <QImage>
#include <QObject>
#include <QSize>
#include <QString>

#include <memory>
#include <optional>

class SourceFile;

// One picture and the state through which every command reads, shows, sizes
// and saves it: the image control of the window's viewers, of the preview
// and of the hidden worker that makes thumbnails and resized copies.
//
// Sizes: ImageWidth/ImageHeight are the picture's own pixels, upright by its
// EXIF orientation; Width/Height are the control's size in twips. On screen a
// pixel is 15 twips; the hidden worker counts 15.7 twips a pixel, the factor
// of the resize limits, so that a resized picture comes out at its limit and
// never above it.
//
// ViewMode 1: the control takes the picture's natural size. 2 and 3: the
// picture follows the control's size (fitted on the width or on the height).
//
// Loading is lazy: writing FileName opens the file and reads its header (type,
// size, orientation); pixels are decoded when the picture is shown or saved,
// at the reduction that size allows. The file stays open while it is loaded,
// so a save may replace the very file it came from.
//
// One thread at a time: the viewers and the worker live on the user-interface
// thread; a batch makes its own controls on its own threads. Every control
// decodes within one memory budget shared by all threads (a picture of up to
// four million pixels kept after it is shown lies outside it).
class ImageControl : public QObject {
    Q_OBJECT
public:
    static constexpr double kScreenTwips = 15.0;
    static constexpr double kWorkerTwips = 15.7;

    explicit ImageControl(double twips_per_pixel = kScreenTwips, QObject* parent = nullptr);
    ~ImageControl() override;

    double twips_per_pixel() const { return twips_per_pixel_; }

    // Writing a path loads that file at once; "" empties the control. A file
    // that is not there (or cannot be opened) empties the control and keeps
    // the name, with no error. A file that is no readable picture throws
    // RunError and leaves the control as it was.
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

    // When above 0, a save makes a thumbnail: a square frame of this many
    // pixels, filled with BackColor, holding the picture reduced to fit,
    // and with Appearance 0 ("3D") a raised bevel two pixels wide drawn
    // along its edge, inside which the picture fits.
    int thumb_size() const { return thumb_size_; }
    void set_thumb_size(int pixels);

    // Save settings; they stay in force until written again. ScaleReset is
    // accepted and has no effect. Dither chooses the resampling (0 fast,
    // 1 default, 2 high), Optimize libjpeg's optimised Huffman tables, Quality
    // (1-100) its quality, Smoothing (0-100) its smoothing factor.
    void set_scale_reset(int value) { scale_reset_ = value; }
    void set_dither(double value);
    void set_optimize(bool on) { optimize_ = on; }
    void set_quality(double value);
    void set_smoothing(double value);
    // 0 draws a "3D" thumbnail with a raised bevel, 1 a flat one.
    void set_appearance(int value) { appearance_ = value; }
    // Colour number as decimal text (red in the low byte); "" for none, which
    // fills with white. Also what shows through transparent pixels.
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
    // The bytes save_jpeg would write. Throws RunError.
    QByteArray encoded_jpeg();
    // The picture save_jpeg encodes. Throws RunError.
    QImage rendered();
    // What decides the saved bytes; nothing for a picture without a file.
    std::optional<RenderKey> render_key() const;
    // JPEGs encoded ahead that a save may take instead of encoding its own
    // (not owned; null for none).
    void set_prefetched(PrefetchedJpegs* source) { prefetched_ = source; }

    // Turns the picture a quarter turn (the argument is always 1).
    void rotate(int turns);

    // Puts a picture that has no file, such as a scan, into the control.
    void set_picture(const QImage& image);

    // 11 busy, 0 default: the pointer over a viewer.
    int mouse_pointer() const { return mouse_pointer_; }
    void set_mouse_pointer(int value);

    // The size in pixels the picture has when shown or saved (empty when
    // there is none or the control has no size left).
    QSize shown_size() const;
    // The picture at `size` pixels, for painting and printing (an empty image
    // when there is none). Throws RunError when the file cannot be decoded.
    QImage picture(QSize size) const;
    // The type read from the loaded file's content.
    ImageType image_type() const { return header_.type; }

Q_SIGNALS:
    // Anything that changes what a view of this control shows.
    void changed();

private:
    void clear_picture();
    void follow_natural_size();
    // The upright picture, rotated, at least `want` in size where the decoder
    // can reduce while decoding.
    QImage source_at_least(QSize want, Resampling quality) const;
    // The size to decode at for `want` shown, in the file's upright frame.
    QSize decode_need(QSize want, Resampling quality) const;
    bool decoded_enough(QSize need) const;
    // Decodes and reduces to `size`. A decode waits for its share of the
    // budget that all decodes in the process hold together.
    QImage picture_at(QSize size, Resampling quality) const;
    QRgb back_rgb() const;

    double twips_per_pixel_;
    QString file_name_;
    std::shared_ptr<SourceFile> source_;
    ImageHeader header_;
    QSize natural_;           // upright, after Rotate
    QImage given_;            // a picture given without a file
    int rotation_ = 0;        // quarter turns by Rotate
    mutable QImage decoded_;  // the file's picture as last decoded
    mutable bool decoded_full_ = false;
    mutable QImage shown_cache_;
    mutable QString damaged_;  // why the file's pixels failed to decode, once they did
    mutable Resampling shown_quality_ = Resampling::Default;
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
    PrefetchedJpegs* prefetched_ = nullptr;
};
