#pragma once

#include <QtGlobal>

#include <condition_variable>
#include <mutex>

// Memory shared by the pictures that are decoded at the same time, on any
// thread: a decode holds the bytes it is expected to need until its picture
// is let go. A request that does not fit beside what is held waits until
// enough is released; a request larger than the whole budget waits until
// nothing else is held, and then runs alone. Requests are served in the order
// they came, so a large one is not passed over for ever by small ones.
//
// Thread-safe. A thread must not ask again while it holds: it could wait for
// itself.
class MemoryBudget {
public:
    explicit MemoryBudget(qint64 bytes);

    // Bytes held until it is destroyed (or moved from).
    class Hold {
    public:
        Hold() = default;
        Hold(Hold&& other) noexcept;
        Hold& operator=(Hold&& other) noexcept;
        ~Hold();
        qint64 bytes() const { return bytes_; }

    private:
        friend class MemoryBudget;
        Hold(MemoryBudget* budget, qint64 bytes) : budget_(budget), bytes_(bytes) {}
        MemoryBudget* budget_ = nullptr;
        qint64 bytes_ = 0;
    };

    // Waits for its turn and for room, then holds `bytes`.
    [[nodiscard]] Hold acquire(qint64 bytes);
    qint64 capacity() const { return capacity_; }
    qint64 held() const;

    // The budget every decode of a picture shares: 1 GiB, or half the
    // machine's memory where that is less.
    static MemoryBudget& decoding();

private:
    void release(qint64 bytes);

    const qint64 capacity_;
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    qint64 held_ = 0;
    quint64 next_ticket_ = 0;
    quint64 serving_ = 0;
};
