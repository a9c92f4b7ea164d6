// A little memory for the moment in which the C heap has none left.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace rgen::memory {

/// Hands out blocks one after the other and starts anew when all are back. Safe from several
/// threads.
class Reserve {
public:
    static constexpr std::size_t size = std::size_t{256} * 1024;

    /// Aligned as a block of `malloc`; null when too little is left. No pool owns it: the eight
    /// bytes before it are zero, as pool.h reads them.
    void* take(std::size_t blockSize) noexcept;
    void give(void* block) noexcept;
    bool owns(const void* block) const noexcept {
        const auto* byte = static_cast<const std::byte*>(block);
        return byte >= bytes_.data() && byte < bytes_.data() + size;
    }
    /// The size that a block of the reserve was asked with.
    static std::size_t sizeOf(const void* block) noexcept;

private:
    struct alignas(std::max_align_t) Header {
        std::uint64_t size;
        std::uint64_t owner;
    };

    alignas(std::max_align_t) std::array<std::byte, size> bytes_ = {};
    std::atomic_flag isBusy_ = ATOMIC_FLAG_INIT;
    std::size_t used_ = 0;
    std::size_t blocksInUse_ = 0;
};

}  // namespace rgen::memory
