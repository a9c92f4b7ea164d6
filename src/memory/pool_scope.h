// Which pool a thread uses.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include "memory/pool_slot.h"

namespace rgen::memory {

/// False in builds whose sanitizer has to see each block by itself.
extern const bool poolsAreUsed;

/// The pool of the innermost scope on the calling thread; null outside of all scopes, and where
/// pools are not used.
Pool* poolInUse();

/// While it lives, the calling thread uses a pool of `slot`. The caller releases every block that
/// is taken meanwhile before the scope ends; a pool with a block in use is not used again. Scopes
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
