#include "pages/page_prefetch.h"

#include "core/app_state.h"
#include "imaging/image_control.h"
#include "imaging/numeric_text.h"
#include "imaging/render_prefetch.h"
#include "pages/tag_text.h"

#include <vector>

PagePrefetch::PagePrefetch(AppState& app, const TemplateSections& t, int slots, bool staging,
                           const QString& max_height, const QString& max_width)
    : app_(app) {
    const int threads = RenderPrefetcher::default_threads();
    if (threads <= 1) {
        return;  // with one core the walk is as quick doing it itself
    }
    const QString thumbnail_tag = QStringLiteral("[timgsrc]");
    const int thumbnails[2] = {
        static_cast<int>(t.image1.count(thumbnail_tag, Qt::CaseInsensitive)),
        static_cast<int>(t.image2.count(thumbnail_tag, Qt::CaseInsensitive))};
    const bool resizing = staging && val_of_text(max_height) != 0 && val_of_text(max_width) != 0;
    if (thumbnails[0] == 0 && thumbnails[1] == 0 && !resizing) {
        return;
    }
    const ThumbnailValues values = ThumbnailValues::of(app);
    const QString back_color = app.worker->back_color();
    std::vector<PrefetchJob> jobs;
    const ItemList& files = app.file_list;
    for (int i = 0; i < files.count(); i += slots) {
        for (int pass = 0; pass < 2; ++pass) {
            for (int k = i; k < i + slots; ++k) {
                const QString entry = files.item(k);
                if (entry.isEmpty()) {
                    continue;
                }
                if (resizing && is_web_image(entry)) {
                    jobs_.insert(key(pass, k, 0), static_cast<qsizetype>(jobs.size()));
                    jobs.push_back({entry, false, max_height, max_width, values, back_color});
                }
                // Each slot takes the next thumbnail tag of the section.
                if (k - i < thumbnails[pass]) {
                    jobs_.insert(key(pass, k, 1), static_cast<qsizetype>(jobs.size()));
                    jobs.push_back({entry, true, QString(), QString(), values, back_color});
                }
            }
        }
    }
    prefetcher_ = std::make_unique<RenderPrefetcher>(std::move(jobs), threads, 2 * threads + 2);
    app_.worker->set_prefetched(prefetcher_.get());
}

PagePrefetch::~PagePrefetch() {
    if (prefetcher_) {
        app_.worker->set_prefetched(nullptr);
    }
}

void PagePrefetch::advance(qint64 point) {
    if (!prefetcher_) {
        return;
    }
    const auto it = jobs_.constFind(point);
    if (it != jobs_.constEnd()) {
        prefetcher_->advance_to(static_cast<size_t>(it.value()));
    }
}
