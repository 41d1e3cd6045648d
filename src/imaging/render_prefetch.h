#pragma once

#include "imaging/image_engine.h"
#include "imaging/render_key.h"

#include <QString>

#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

// One output a batch will ask of the worker: the source, the kind, the limits
// and the thumbnail values as they stood when the batch began.
struct PrefetchJob {
    QString path;
    bool thumbnail = true;
    QString max_height;
    QString max_width;
    ThumbnailValues values;
    QString back_color;  // the worker's back colour when the batch began
};

// Decodes, scales and encodes a batch's outputs ahead of the loop that writes
// them, on a few threads of its own, each job on a control of its own set up
// exactly as the worker will be. The loop moves through the jobs in order
// (`advance_to`); the worker's save asks `take` for the output of the job at
// hand and gets it only when its RenderKey matches, so whatever changed in
// between (a setting, the file itself) makes the worker encode its own.
// Jobs run at most `window` ahead of the loop, which bounds the memory held.
//
// `advance_to` and `take` are called from the loop's thread only.
class RenderPrefetcher : public PrefetchedJpegs {
public:
    RenderPrefetcher(std::vector<PrefetchJob> jobs, int threads, int window);
    ~RenderPrefetcher() override;
    RenderPrefetcher(const RenderPrefetcher&) = delete;
    RenderPrefetcher& operator=(const RenderPrefetcher&) = delete;

    void advance_to(size_t index);
    std::optional<EncodedJpeg> take(const RenderKey& key) override;

    // Threads the machine offers to a batch.
    static int default_threads();

private:
    enum class State { Waiting, Running, Done, Skipped };
    struct Slot {
        State state = State::Waiting;
        std::optional<RenderKey> key;
        EncodedJpeg result;
    };
    void work();
    static void run_job(const PrefetchJob& job, Slot& out);

    std::vector<PrefetchJob> jobs_;
    std::vector<Slot> slots_;
    size_t window_;
    size_t next_ = 0;
    size_t current_ = 0;
    bool stop_ = false;
    std::mutex mutex_;
    std::condition_variable wake_;
    std::vector<std::thread> threads_;
};
