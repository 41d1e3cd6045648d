#include "imaging/memory_budget.h"

#include <unistd.h>
#include <algorithm>
#include <utility>

MemoryBudget::MemoryBudget(qint64 bytes) : capacity_(std::max<qint64>(bytes, 1)) {}

MemoryBudget::Hold::Hold(Hold&& other) noexcept
    : budget_(std::exchange(other.budget_, nullptr)), bytes_(std::exchange(other.bytes_, 0)) {}

MemoryBudget::Hold& MemoryBudget::Hold::operator=(Hold&& other) noexcept {
    if (this != &other) {
        if (budget_) {
            budget_->release(bytes_);
        }
        budget_ = std::exchange(other.budget_, nullptr);
        bytes_ = std::exchange(other.bytes_, 0);
    }
    return *this;
}

MemoryBudget::Hold::~Hold() {
    if (budget_) {
        budget_->release(bytes_);
    }
}

MemoryBudget::Hold MemoryBudget::acquire(qint64 bytes) {
    bytes = std::max<qint64>(bytes, 0);
    std::unique_lock<std::mutex> lock(mutex_);
    const quint64 ticket = next_ticket_++;
    changed_.wait(lock,
                  [&] { return serving_ == ticket && (held_ == 0 || held_ + bytes <= capacity_); });
    ++serving_;
    held_ += bytes;
    lock.unlock();
    changed_.notify_all();  // the next in line may fit as well
    return Hold(this, bytes);
}

qint64 MemoryBudget::held() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return held_;
}

void MemoryBudget::release(qint64 bytes) {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        held_ -= bytes;
    }
    changed_.notify_all();
}

MemoryBudget& MemoryBudget::decoding() {
    static MemoryBudget budget([] {
        const qint64 gib = 1024ll * 1024 * 1024;
        const long pages = ::sysconf(_SC_PHYS_PAGES);
        const long page = ::sysconf(_SC_PAGE_SIZE);
        if (pages <= 0 || page <= 0) {
            return gib;
        }
        return std::min(gib, qint64(pages) * page / 2);
    }());
    return budget;
}
