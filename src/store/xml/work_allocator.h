// Allocator for containers that hold the data of a piece of XML work.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <new>

#include "memory/pool.h"
#include "store/xml/work.h"

namespace rgen {

/// Allocates from the pool of the current XmlWork, or from malloc without one. All instances are
/// equal: a block's header says where it belongs.
template <typename T>
class WorkAllocator {
public:
    using value_type = T;

    WorkAllocator() = default;
    template <typename U>
    WorkAllocator(const WorkAllocator<U>& /*other*/) {}

    T* allocate(std::size_t count) {
        static_assert(alignof(T) <= 2 * sizeof(void*), "Blocks are aligned like those of malloc.");
        if (count > static_cast<std::size_t>(-1) / size) throw std::bad_alloc();
        void* block = memory::allocate(XmlWork::currentPool(), count * size);
        if (block == nullptr) throw std::bad_alloc();
        return static_cast<T*>(block);
    }

    void deallocate(T* block, std::size_t /*count*/) { memory::release(block); }

    template <typename U>
    bool operator==(const WorkAllocator<U>& /*other*/) const {
        return true;
    }
    template <typename U>
    bool operator!=(const WorkAllocator<U>& /*other*/) const {
        return false;
    }

private:
    // NOLINTNEXTLINE(bugprone-sizeof-expression): T may well be a pointer.
    static constexpr std::size_t size = sizeof(T);
};

}  // namespace rgen
