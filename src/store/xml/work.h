// One piece of work with the XML libraries on one thread: its pool, its failed allocations, its
// stack limits.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstddef>

#include "memory/pool_slot.h"

namespace rgen {

/// While it lives, memory for the XML libraries on the calling thread comes from its pool. The
/// memory functions of these libraries have no argument of ours, so the innermost work is stored in
/// the thread's pointer. Works nest: a translate callback may generate with another generator.
///
/// A work can be without a pool: without memory for one, or in a build with the address sanitizer.
/// It is then no thread's current work. Blocks come from malloc and, as a last resort, from the
/// reserve; failures are counted for all threads without a current work together.
class XmlWork {
public:
    /// A whole piece of work, such as one report, in a pool of `slot`. Everything that is allocated
    /// meanwhile has to be freed before the work ends. Throws std::bad_alloc when libxml2 has no
    /// memory for the thread.
    explicit XmlWork(memory::PoolSlot& slot);

    /// A part of the current work, in the same pool, that may use the reserve when malloc has no
    /// memory. libxslt does not check all of its allocations: without a reserve it might write
    /// through a null pointer. So the part must fail as a whole unless memorySufficed().
    struct WithReserve {};
    explicit XmlWork(WithReserve) noexcept;

    ~XmlWork();
    XmlWork(const XmlWork&) = delete;
    XmlWork& operator=(const XmlWork&) = delete;

    /// The innermost work of the calling thread; null outside of all works and without a pool.
    static XmlWork* current() noexcept;

    /// Its pool, or null.
    static memory::Pool* currentPool() noexcept;

    memory::Pool* pool() const noexcept { return pool_; }

    /// For current works: a small block from the pool, or null, also when the stack is short.
    void* allocateFast(std::size_t size) noexcept {
        return stackIsShort() ? nullptr : pool_->allocateFast(size);
    }

    /// Counts a failed allocation of the calling thread.
    static void noteFailure() noexcept;

    /// False after a failed allocation. Check it after libxml2 and libxslt calls: their result may
    /// be incomplete even if they report success.
    bool memorySufficed() const noexcept { return *failures_ == failuresBefore_; }

    /// Whether the reserve serves the calling thread. Never when its stack is short: that refusal
    /// ends runaway recursion.
    static bool mayUseReserve() noexcept;

    /// From now on templates have to stop below `lowestForTemplates`, and the work gets no small
    /// blocks below `lowestForMemory`.
    void limitStack(const char* lowestForTemplates, const char* lowestForMemory) noexcept;
    const char* lowestForTemplates() const noexcept { return lowestForTemplates_; }
    bool stackIsShort() const noexcept {
        return static_cast<const char*>(__builtin_frame_address(0)) < lowestForMemory_;
    }

private:
    static std::atomic<std::size_t>& failuresOfThread() noexcept;
    void startToCount() noexcept;

    const char* lowestForMemory_ = nullptr;
    memory::Pool* pool_ = nullptr;
    XmlWork* const outer_;
    /// Null for a part, which does not own its pool.
    memory::PoolSlot* const slot_ = nullptr;
    const char* lowestForTemplates_ = nullptr;
    /// Mutable, since the memory functions count for works that their owners declare const.
    mutable std::atomic<std::size_t> ownFailures_ = 0;
    /// The counter that counts for this work, and its value when the work began.
    const std::atomic<std::size_t>* failures_ = nullptr;
    std::size_t failuresBefore_ = 0;
    const bool hasReserve_;
};

}  // namespace rgen
