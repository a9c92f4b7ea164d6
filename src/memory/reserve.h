// A little memory for when malloc has none left.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace rgen::memory {

/// Allocates blocks one after the other and starts again when all of them are released. May be used
/// by several threads at once.
class Reserve {
public:
    static constexpr std::size_t capacity = std::size_t{256} * 1024;

    /// Aligned like a block of malloc; null when too little is left. The header of the block says
    /// that no pool owns it, as in pool.h.
    void* allocate(std::size_t size) noexcept;
    void release(void* block) noexcept;
    bool owns(const void* block) const noexcept {
        const auto* byte = static_cast<const std::byte*>(block);
        return byte >= bytes_.data() && byte < bytes_.data() + capacity;
    }
    /// The size with which a block of the reserve was allocated.
    static std::size_t sizeOf(const void* block) noexcept;

private:
    struct alignas(std::max_align_t) Header {
        std::uint64_t size;
        std::uint64_t owner;
    };

    alignas(std::max_align_t) std::array<std::byte, capacity> bytes_ = {};
    std::atomic_flag isBusy_ = ATOMIC_FLAG_INIT;
    std::size_t used_ = 0;
    std::size_t blocksInUse_ = 0;
};

}  // namespace rgen::memory
