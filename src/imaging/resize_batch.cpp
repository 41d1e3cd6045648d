#include "imaging/resize_batch.h"

#include "core/context.h"
#include "core/file_helpers.h"
#include "imaging/image_control.h"
#include "imaging/image_engine.h"
#include "imaging/render_prefetch.h"

namespace {

// Hands the worker a prefetcher for the length of a run, and takes it back
// however the run ends.
class PrefetchScope {
public:
    PrefetchScope(ImageControl& worker, PrefetchedJpegs* source) : worker_(worker) {
        worker_.set_prefetched(source);
    }
    ~PrefetchScope() { worker_.set_prefetched(nullptr); }
    PrefetchScope(const PrefetchScope&) = delete;
    PrefetchScope& operator=(const PrefetchScope&) = delete;

private:
    ImageControl& worker_;
};

// One step of the plain loop: loads `source` into the worker and makes its
// file. Returns the path written, "" when nothing was.
QString make_one(Context& ctx, const ResizeRun& run, const QString& source, bool there) {
    AppState& app = ctx.app;
    ImageControl& worker = *app.worker;
    const bool thumbnail = !run.resize;
    worker.set_file_name(source);
    app.thumbnail_prefix = run.prefix;
    const bool copy =
        there && thumbnail && worker.has_picture() && thumbnail_is_copy(worker, app.thumbnail_size);
    QString path = source;
    make_image_file(ctx, path, run.target_directory,
                    thumbnail ? QStringLiteral("thumbnail") : QStringLiteral("resize"), run.size,
                    run.size, run.failed);
    // The engine trims the path it is given, whether it writes or not.
    const QString trimmed = source.trimmed();
    if (path != trimmed) {
        return path;
    }
    return copy ? run.target_directory + u'/' + file_name_of(trimmed) : QString();
}

}  // namespace

ResizeOutcome run_resize_batch(Context& ctx, const ResizeRun& run) {
    AppState& app = ctx.app;
    ImageControl& worker = *app.worker;
    const bool thumbnail = !run.resize;

    ThumbnailValues values = ThumbnailValues::of(app);
    values.prefix = run.prefix;
    std::vector<PrefetchJob> jobs;
    jobs.reserve(static_cast<size_t>(run.paths.size()));
    for (const QString& p : run.paths) {
        jobs.push_back({p, thumbnail, run.size, run.size, values, worker.back_color()});
    }
    const int threads = run.threads > 0 ? run.threads : RenderPrefetcher::default_threads();
    if (threads <= 1) {
        jobs.clear();
    }
    RenderPrefetcher prefetch(std::move(jobs), threads, 2 * threads + 2);
    const PrefetchScope scope(worker, threads > 1 ? &prefetch : nullptr);

    ResizeOutcome outcome;
    Progress progress(ctx.ui, static_cast<int>(run.paths.size()));
    for (qsizetype i = 0; i < run.paths.size(); ++i) {
        progress.step(static_cast<int>(i));
        prefetch.advance_to(static_cast<size_t>(i));
        const QString source = run.paths.at(i);
        const bool there = file_exists_at(source);
        if (!there && run.failed) {
            run.failed(source, QStringLiteral("File not found: ") + source);
            ++outcome.failed;
            continue;
        }
        QString written;
        try {
            written = make_one(ctx, run, source, there);
        } catch (const std::exception& e) {
            if (!run.failed) {
                throw;
            }
            run.failed(source, failure_text(e));
        }
        if (written.isEmpty()) {
            outcome.failed += there ? 1 : 0;
            continue;
        }
        outcome.written << written;
        if (run.written) {
            run.written(written);
        }
    }
    return outcome;
}
