#include "imaging/render_prefetch.h"

#include "core/run_error.h"
#include "imaging/image_control.h"

#include <algorithm>

RenderPrefetcher::RenderPrefetcher(std::vector<PrefetchJob> jobs, int threads, int window)
    : jobs_(std::move(jobs)),
      slots_(jobs_.size()),
      window_(static_cast<size_t>(std::max(window, 1))) {
    const int n = std::clamp(threads, 1, 16);
    for (int i = 0; i < n && static_cast<size_t>(i) < jobs_.size(); ++i) {
        threads_.emplace_back([this] { work(); });
    }
}

RenderPrefetcher::~RenderPrefetcher() {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        stop_ = true;
    }
    wake_.notify_all();
    for (std::thread& t : threads_) {
        t.join();
    }
}

int RenderPrefetcher::default_threads() {
    return static_cast<int>(std::max(1u, std::thread::hardware_concurrency()));
}

void RenderPrefetcher::work() {
    std::unique_lock<std::mutex> lock(mutex_);
    for (;;) {
        wake_.wait(
            lock, [this] { return stop_ || (next_ < jobs_.size() && next_ < current_ + window_); });
        if (stop_) {
            return;
        }
        const size_t i = next_++;
        Slot& slot = slots_[i];
        if (slot.state != State::Waiting) {
            continue;  // the loop took this one over
        }
        slot.state = State::Running;
        lock.unlock();
        Slot done;
        run_job(jobs_[i], done);
        lock.lock();
        slot.key = std::move(done.key);
        slot.result = std::move(done.result);
        slot.state = done.state;
        if (i < current_) {
            slot.result = EncodedJpeg();  // the loop has gone past it
        }
        wake_.notify_all();
    }
}

void RenderPrefetcher::run_job(const PrefetchJob& job, Slot& out) {
    out.state = State::Skipped;
    try {
        ImageControl scratch(ImageControl::kWorkerTwips);
        scratch.set_back_color(job.back_color);
        scratch.set_file_name(job.path.trimmed());
        if (!scratch.has_picture()) {
            return;
        }
        if (job.thumbnail && thumbnail_is_copy(scratch, job.values.size)) {
            return;
        }
        configure_for_save(scratch, job.values, job.thumbnail, job.path);
        if (!job.thumbnail) {
            fit_to_limits(scratch, job.max_height, job.max_width);
        }
        out.key = scratch.render_key();
        if (!out.key) {
            return;
        }
        try {
            out.result.bytes = scratch.encoded_jpeg();
        } catch (const RunError& e) {
            out.result.error = e.text();
        }
        out.state = State::Done;
    } catch (const std::exception&) {
        // Whatever failed before the output was known, the loop meets again.
        out.state = State::Skipped;
    }
}

void RenderPrefetcher::advance_to(size_t index) {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        current_ = index;
        for (size_t i = 0; i < index && i < slots_.size(); ++i) {
            slots_[i].result = EncodedJpeg();
            slots_[i].key.reset();
        }
    }
    wake_.notify_all();
}

std::optional<EncodedJpeg> RenderPrefetcher::take(const RenderKey& key) {
    std::unique_lock<std::mutex> lock(mutex_);
    if (current_ >= slots_.size()) {
        return std::nullopt;
    }
    Slot& slot = slots_[current_];
    if (slot.state == State::Waiting) {
        // Not started: the worker is as quick doing it itself.
        slot.state = State::Skipped;
        return std::nullopt;
    }
    wake_.wait(lock, [&slot] { return slot.state == State::Done || slot.state == State::Skipped; });
    if (slot.state != State::Done || !slot.key || !(*slot.key == key)) {
        return std::nullopt;
    }
    slot.state = State::Skipped;  // taken once
    return std::move(slot.result);
}
