// The lock with priority. A canceller increments a counter before it waits. Any other thread that
// gets the mutex and sees a counter above zero unlocks the mutex at once and waits until the
// canceller has had its turn. So a single mutex protects the data, and waiting allocates no memory.
//
// SPDX-License-Identifier: MIT
#include "lock/priority_mutex.h"

#include <thread>

namespace rgen::sync {
namespace {

/// Counts a canceller; its destructor reverts that unless keep() was called.
class Announcement {
public:
    explicit Announcement(std::atomic<unsigned>& cancellers) : cancellers_(&cancellers) {
        ++cancellers;
    }
    ~Announcement() {
        if (cancellers_ != nullptr) --*cancellers_;
    }
    Announcement(const Announcement&) = delete;
    Announcement& operator=(const Announcement&) = delete;

    void keep() { cancellers_ = nullptr; }

private:
    std::atomic<unsigned>* cancellers_;
};

}  // namespace

void PriorityMutex::lock() {
    mutex_.lock();
    while (cancellers_ != 0) {
        mutex_.unlock();
        // A canceller that is counted but has not locked `turn_` yet needs the processor.
        std::this_thread::yield();
        { const std::lock_guard turn(turn_); }
        mutex_.lock();
    }
}

bool PriorityMutex::try_lock() {
    if (!mutex_.try_lock()) return false;
    if (cancellers_ == 0) return true;
    mutex_.unlock();
    return false;
}

void PriorityMutex::letCancellersPrecede() {
    if (cancellers_ == 0) return;
    const std::lock_guard afterThem(*this);
}

CancellerLock::CancellerLock(PriorityMutex& mutex) : mutex_(mutex) {
    Announcement announcement(mutex.cancellers_);
    std::unique_lock turn(mutex.turn_);
    mutex.mutex_.lock();
    static_cast<void>(turn.release());
    announcement.keep();
}

CancellerLock::~CancellerLock() {
    // Before the unlock, so that other threads do not wait for a turn that is over.
    --mutex_.cancellers_;
    mutex_.mutex_.unlock();
    mutex_.turn_.unlock();
}

}  // namespace rgen::sync
