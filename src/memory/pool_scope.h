// Which pool a thread uses.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>

#include "memory/pool_slot.h"

namespace rgen::memory {

/// False in builds whose sanitizer has to see each block by itself.
extern const bool poolsAreUsed;

/// The pool of the innermost scope on the calling thread; null outside of all scopes, and where
/// pools are not used.
Pool* poolInUse();

/// What scopes of this process have found wrong at their ends. All zero, unless the XML libraries
/// or this library misuse their memory; tests look at it.
struct ScopeFaults {
    /// Pools with a block that was still in use.
    std::size_t poolsLeft;
    /// Releases of blocks that were free already.
    std::size_t wrongReleases;
};
ScopeFaults scopeFaults();

/// While it lives, the calling thread uses a pool of `slot`. The caller releases every block that
/// is taken meanwhile before the scope ends. A pool with a block in use is left to whoever holds
/// the block; one that noted a wrong release goes back to the C heap. Neither is used again. Scopes
/// of one thread may enclose each other, as when a translate callback generates with another
/// generator.
class PoolScope {
public:
    explicit PoolScope(PoolSlot& slot);
    ~PoolScope();
    PoolScope(const PoolScope&) = delete;
    PoolScope& operator=(const PoolScope&) = delete;

private:
    PoolSlot& slot_;
    std::unique_ptr<Pool> pool_;
    void* outerPool_;
};

}  // namespace rgen::memory
