// The reserve. It is too small for anything but the way to the next check, so it does without lists
// of free blocks.
//
// SPDX-License-Identifier: MIT
#include "memory/reserve.h"

#include <new>

#include "lock/spin_lock.h"

namespace rgen::memory {

void* Reserve::take(std::size_t blockSize) noexcept {
    if (blockSize > size) return nullptr;
    constexpr std::size_t unit = sizeof(Header);
    const std::size_t needed = unit + (blockSize + unit - 1) / unit * unit;
    const sync::SpinLock lock(isBusy_);
    if (needed > size - used_) return nullptr;
    auto* header = ::new (bytes_.data() + used_) Header{blockSize, 0};
    used_ += needed;
    ++blocksInUse_;
    return header + 1;
}

void Reserve::give(void* /*block*/) noexcept {
    const sync::SpinLock lock(isBusy_);
    if (--blocksInUse_ == 0) used_ = 0;
}

std::size_t Reserve::sizeOf(const void* block) noexcept {
    return (static_cast<const Header*>(block) - 1)->size;
}

}  // namespace rgen::memory
