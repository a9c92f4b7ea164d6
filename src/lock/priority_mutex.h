// The lock of a generator: a mutex that cancellers get before all other waiting threads.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <mutex>

namespace rgen::sync {

/// A non-recursive mutex for std::lock_guard and similar classes; a waiting CancellerLock gets it
/// before these. The thread that holds it is never interrupted. An uninterrupted series of
/// cancellers keeps all others out.
/// Between counting a canceller and its turn, other threads yield the processor and try again. On a
/// single processor, a thread with a higher real-time priority can thus keep the canceller from
/// running, and itself from the lock.
class PriorityMutex {
public:
    /// Throws std::system_error like std::mutex; the lock is then not held.
    void lock();
    bool try_lock();
    void unlock() { mutex_.unlock(); }

    /// Waits for the cancellers that are counted at the call; returns at once if there are none.
    /// The calling thread must not hold the lock. Throws as lock() does.
    void letCancellersPrecede();

    /// Number of CancellerLocks that hold the lock or wait for it. These get the lock before any
    /// other thread that waits for it or requests it later.
    unsigned cancellers() const { return cancellers_; }

private:
    friend class CancellerLock;

    std::mutex mutex_;
    /// Locked by the canceller whose turn it is, before it waits for `mutex_`.
    std::mutex turn_;
    std::atomic<unsigned> cancellers_ = 0;
};

/// Locks a PriorityMutex for a canceller.
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
