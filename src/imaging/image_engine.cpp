#include "imaging/image_engine.h"

#include "core/context.h"
#include "core/file_helpers.h"
#include "core/held_files.h"
#include "core/run_error.h"
#include "imaging/image_control.h"
#include "imaging/numeric_text.h"

namespace {

// Drops everything from the last "." of the whole path on, searching from the
// end, and appends `ending`. A path with no "." at all is left as it is; a "."
// in a directory name counts like any other.
QString replace_extension(const QString& path, const QString& ending) {
    const int dot = path.lastIndexOf(u'.');
    return dot < 0 ? path : path.left(dot) + ending;
}

}  // namespace

ThumbnailValues ThumbnailValues::of(const AppState& app) {
    ThumbnailValues v;
    v.dither = app.thumbnail_dither;
    v.optimize = app.thumbnail_optimize;
    v.quality = app.thumbnail_quality;
    v.smoothing = app.thumbnail_smoothing;
    v.size = app.thumbnail_size;
    v.background_color = app.thumbnail_background_color;
    v.three_d = app.thumbnail_3d;
    v.prefix = app.thumbnail_prefix;
    return v;
}

QString image_target_path(const QString& source, const QString& target_directory, bool thumbnail,
                          bool prefix) {
    QString directory, file;
    split_path(source, directory, file);
    QString target = target_directory;
    if (!target.endsWith(u'/')) {
        target += u'/';
    }
    target += file;
    if (!thumbnail) {
        return replace_extension(target, QStringLiteral(".jpg"));
    }
    if (!prefix) {
        if (!target.contains(QStringLiteral("_tn.jpg"))) {
            target = replace_extension(target, QStringLiteral("_tn.jpg"));
        }
        return target;
    }
    if (!target.contains(QStringLiteral("tn_"))) {
        const int slash = target.lastIndexOf(u'/');
        target.insert(slash + 1, QStringLiteral("tn_"));
    }
    if (!target.contains(QStringLiteral(".jpg"))) {
        target = replace_extension(target, QStringLiteral(".jpg"));
    }
    return target;
}

bool thumbnail_is_copy(const ImageControl& worker, const QString& thumbnail_size) {
    const double size = val_of_text(thumbnail_size);
    return !(worker.image_height() > size) && !(worker.image_width() > size);
}

int configure_for_save(ImageControl& worker, const ThumbnailValues& values, bool thumbnail,
                       const QString& source) {
    worker.set_scale_reset(0);
    worker.set_optimize(values.optimize == QLatin1String("Yes"));
    worker.set_quality(val_of_text(values.quality));
    worker.set_smoothing(val_of_text(values.smoothing));
    worker.set_dither(val_of_text(values.dither));
    if (thumbnail) {
        worker.set_appearance(values.three_d ? 0 : 1);
        if (!values.background_color.isEmpty()) {
            worker.set_back_color(values.background_color);
        }
    }
    // A metafile has no pixel size of its own: it is drawn at the thumbnail
    // size, and a resized copy takes that drawing through the limits below.
    const QString lower = source.toLower();
    const bool use_thumb_size =
        thumbnail || lower.contains(QLatin1String(".wmf")) || lower.contains(QLatin1String(".emf"));
    const int remembered = worker.thumb_size();
    if (use_thumb_size) {
        worker.set_thumb_size(to_int16(val_of_text(values.size)));
    }
    return remembered;
}

void fit_to_limits(ImageControl& worker, const QString& max_height, const QString& max_width) {
    worker.set_thumb_size(0);
    worker.set_view_mode(1);
    // The limits are counted in the worker's units, 15.7 to a pixel.
    const double limit_h = val_of_text(max_height) * ImageControl::kWorkerTwips;
    const double limit_w = val_of_text(max_width) * ImageControl::kWorkerTwips;
    if (worker.width() >= limit_w) {
        const double ratio = limit_w / worker.width();
        const float w = static_cast<float>(worker.width() * ratio);
        const float h = static_cast<float>(worker.height() * ratio);
        worker.set_width(w);
        worker.set_height(h);
        worker.set_view_mode(2);
    }
    if (worker.height() >= limit_h) {
        const double ratio = limit_h / worker.height();
        const float w = static_cast<float>(worker.width() * ratio);
        const float h = static_cast<float>(worker.height() * ratio);
        worker.set_width(w);
        worker.set_height(h);
        worker.set_view_mode(3);
    }
}

void make_image_file(Context& ctx, QString& path, const QString& target_directory,
                     const QString& kind, const QString& max_height, const QString& max_width,
                     const FailureSink& failed) {
    AppState& app = ctx.app;
    ImageControl& worker = *app.worker;
    if (!file_exists(path)) {
        return;
    }
    QString source_directory, file;
    split_path(path, source_directory, file);
    const bool thumbnail = kind == QLatin1String("thumbnail");
    if (thumbnail && thumbnail_is_copy(worker, app.thumbnail_size)) {
        // Small enough already: the source goes over as it is, in its own type.
        copy_file(path, target_directory + u'/' + file);
        return;
    }
    try {
        QString target = image_target_path(path, target_directory, thumbnail, app.thumbnail_prefix);
        const int remembered =
            configure_for_save(worker, ThumbnailValues::of(app), thumbnail, path);
        if (file_exists(target)) {
            delete_unheld_file(HeldFiles(app), target);
        }
        if (!thumbnail) {
            fit_to_limits(worker, max_height, max_width);
        }
        ctx.ui.set_status(QStringLiteral("Creating ") + target);
        ctx.ui.yield();
        worker.save_jpeg(target);
        path = target;
        worker.set_thumb_size(remembered);
    } catch (const std::exception& e) {
        if (failed) {
            failed(path, failure_text(e));
        } else {
            ctx.dialogs.plain(failure_text(e));
        }
        ctx.ui.set_busy(false);
    }
}

void resize_to_directory(Context& ctx, QString& path, const QString& target_directory,
                         const QString& max_height, const QString& max_width,
                         const FailureSink& failed) {
    // The worker's own file is split as well; nothing uses the parts.
    QString loaded_directory, loaded_file;
    split_path(ctx.app.worker->file_name(), loaded_directory, loaded_file);
    QString directory, file;
    split_path(path, directory, file);
    make_image_file(ctx, path, target_directory, QStringLiteral("jpg"), max_height, max_width,
                    failed);
}
