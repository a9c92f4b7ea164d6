// The lock with precedence. A canceller announces itself by a number before it waits. Whoever else
// gets the mutex and sees an announcement returns the mutex at once and waits until the canceller
// has had its turn. So one mutex alone decides who works, and waiting needs no memory.
//
// SPDX-License-Identifier: MIT
#include "lock/priority_mutex.h"

#include <thread>

namespace rgen::sync {
namespace {

/// Takes its announcement back unless it is kept.
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
        // A canceller that is announced and has not taken its turn yet needs the processor.
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
    // The others need not wait for a turn that is over.
    --mutex_.cancellers_;
    mutex_.mutex_.unlock();
    mutex_.turn_.unlock();
}

}  // namespace rgen::sync
