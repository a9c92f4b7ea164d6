// The lock of a generator: a mutual exclusion lock that cancellers get before all others.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <mutex>

namespace rgen::sync {

/// A mutual exclusion lock, not recursive, for std::lock_guard and its like; a CancellerLock
/// precedes these. Nobody precedes whoever holds it. Endless cancellers keep all others out.
class PriorityMutex {
public:
    /// Failures of the system are std::system_error, as those of std::mutex; nothing is held then.
    void lock();
    bool try_lock();
    void unlock() { mutex_.unlock(); }

    /// How many CancellerLocks hold the lock or wait for it. Those that are counted here precede
    /// whoever asks for the lock, or waits for it, from now on.
    unsigned cancellers() const { return cancellers_; }

private:
    friend class CancellerLock;

    std::mutex mutex_;
    /// Held by the canceller whose turn it is, from before it waits for `mutex_`.
    std::mutex turn_;
    std::atomic<unsigned> cancellers_ = 0;
};

/// Holds a PriorityMutex for a canceller.
class CancellerLock {
public:
    explicit CancellerLock(PriorityMutex& mutex);
    ~CancellerLock();
    CancellerLock(const CancellerLock&) = delete;
    CancellerLock& operator=(const CancellerLock&) = delete;

private:
    PriorityMutex& mutex_;
};

}  // namespace rgen::sync
