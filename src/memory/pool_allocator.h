// The pool in use, as an allocator for containers.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <new>

#include "memory/pool.h"
#include "memory/pool_scope.h"

namespace rgen::memory {

/// Takes blocks from the pool in use, outside of all scopes from the C heap. All objects are equal:
/// a block knows where it belongs.
template <typename T>
class PoolAllocator {
public:
    using value_type = T;

    PoolAllocator() = default;
    template <typename U>
    PoolAllocator(const PoolAllocator<U>& /*other*/) {}

    T* allocate(std::size_t count) {
        static_assert(alignof(T) <= 2 * sizeof(void*), "Blocks are aligned as those of malloc.");
        if (count > static_cast<std::size_t>(-1) / size) throw std::bad_alloc();
        void* block = memory::allocate(poolInUse(), count * size);
        if (block == nullptr) throw std::bad_alloc();
        return static_cast<T*>(block);
    }

    void deallocate(T* block, std::size_t /*count*/) { release(block); }

    template <typename U>
    bool operator==(const PoolAllocator<U>& /*other*/) const {
        return true;
    }
    template <typename U>
    bool operator!=(const PoolAllocator<U>& /*other*/) const {
        return false;
    }

private:
    // NOLINTNEXTLINE(bugprone-sizeof-expression): T may well be a pointer.
    static constexpr std::size_t size = sizeof(T);
};

}  // namespace rgen::memory
