// The lock of a generator: a mutual exclusion lock that cancellers get before all others.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <mutex>

namespace rgen::sync {

/// A mutual exclusion lock, not recursive, for std::lock_guard and its like; a CancellerLock
/// precedes these. Nobody precedes whoever holds it. Endless cancellers keep all others out.
/// From the announcement of a canceller until its turn, others yield the processor and ask again: a
/// thread with a higher real-time priority can keep the canceller from its turn, and so itself from
/// the lock, where both share a single processor.
class PriorityMutex {
public:
    /// Failures of the system are std::system_error, as those of std::mutex; nothing is held then.
    void lock();
    bool try_lock();
    void unlock() { mutex_.unlock(); }

    /// Returns after the cancellers that are counted at the call; at once where there are none.
    /// Not for whoever holds the lock. Failures as of lock().
    void letCancellersPrecede();

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
