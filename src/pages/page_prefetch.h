#pragma once

#include "pages/template_store.h"

#include <QHash>
#include <QString>

#include <memory>

struct AppState;
class RenderPrefetcher;

// The pictures one page will have the hidden worker save, planned before the
// walk and made ahead on the machine's other cores: the resized copy of each
// staged web image when limits are set, and each [timgsrc] thumbnail, in the
// order the walk reaches them. The walk names each point as it comes to it;
// the worker takes an output made ahead only when everything that decides its
// bytes is the same, so a plan that guessed wrong (a tag that came in through
// an include, a picture within the limits) costs time, never a different file.
//
// Lives on the walk's thread; the worker is handed back when it goes.
class PagePrefetch {
public:
    PagePrefetch(AppState& app, const TemplateSections& t, int slots, bool staging,
                 const QString& max_height, const QString& max_width);
    ~PagePrefetch();
    PagePrefetch(const PagePrefetch&) = delete;
    PagePrefetch& operator=(const PagePrefetch&) = delete;

    // The walk is about to resize file `k` in pass `pass` (0 for the first
    // per-file section, 1 for the second), or to make its thumbnail.
    void at_resize(int pass, int k) { advance(key(pass, k, 0)); }
    void at_thumbnail(int pass, int k) { advance(key(pass, k, 1)); }

private:
    static qint64 key(int pass, int k, int what) { return (qint64(k) * 2 + pass) * 2 + what; }
    void advance(qint64 point);

    AppState& app_;
    QHash<qint64, qsizetype> jobs_;  // point of the walk -> its job
    std::unique_ptr<RenderPrefetcher> prefetcher_;
};
