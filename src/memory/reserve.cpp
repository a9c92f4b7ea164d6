// The reserve. It serves only until the next check for failed allocations, so it has no free lists.
//
// SPDX-License-Identifier: MIT
#include "memory/reserve.h"

#include <new>

#include "lock/spin_lock.h"

namespace rgen::memory {

void* Reserve::allocate(std::size_t size) noexcept {
    if (size > capacity) return nullptr;
    constexpr std::size_t unit = sizeof(Header);
    const std::size_t needed = unit + (size + unit - 1) / unit * unit;
    const sync::SpinLock lock(isBusy_);
    if (needed > capacity - used_) return nullptr;
    auto* header = ::new (bytes_.data() + used_) Header{size, 0};
    used_ += needed;
    ++blocksInUse_;
    return header + 1;
}

void Reserve::release(void* /*block*/) noexcept {
    const sync::SpinLock lock(isBusy_);
    if (--blocksInUse_ == 0) used_ = 0;
}

std::size_t Reserve::sizeOf(const void* block) noexcept {
    return (static_cast<const Header*>(block) - 1)->size;
}

}  // namespace rgen::memory
