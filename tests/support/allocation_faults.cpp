// The replacements of the allocation functions, and the account of blocks: a table with open
// addressing, which needs no memory of its own.
//
// SPDX-License-Identifier: MIT
#include "support/allocation_faults.h"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <new>

#include "support/test_platform.h"

extern "C" {

void* realMalloc(std::size_t size) __asm__("__real_malloc");
void* realCalloc(std::size_t count, std::size_t size) __asm__("__real_calloc");
void* realRealloc(void* block, std::size_t size) __asm__("__real_realloc");
void realFree(void* block) __asm__("__real_free");
void* wrappedMalloc(std::size_t size) __asm__("__wrap_malloc");
void* wrappedCalloc(std::size_t count, std::size_t size) __asm__("__wrap_calloc");
void* wrappedRealloc(void* block, std::size_t size) __asm__("__wrap_realloc");
void wrappedFree(void* block) __asm__("__wrap_free");

}  // extern "C"

namespace rgen_test {
namespace {

class BlockTable {
public:
    void add(void* block) {
        if (!isOpen || block == nullptr || thread != callingThread()) return;
        if (++count_ > capacity / 2) std::abort();
        places_[freePlace(block)] = block;
    }

    void remove(void* block) {
        if (count_ == 0 || block == nullptr || thread != callingThread()) return;
        std::size_t place = homeOf(block);
        for (; places_[place] != block; place = next(place)) {
            if (places_[place] == nullptr) return;
        }
        places_[place] = nullptr;
        --count_;
        // A later block may be there only because this place was taken.
        for (place = next(place); places_[place] != nullptr; place = next(place)) {
            void* moved = places_[place];
            places_[place] = nullptr;
            places_[freePlace(moved)] = moved;
        }
    }

    void clear() {
        places_.fill(nullptr);
        count_ = 0;
    }

    std::size_t count() const { return count_; }

    bool isOpen = false;
    unsigned long long thread = 0;

private:
    static constexpr std::size_t capacity = std::size_t{1} << 16U;

    static std::size_t homeOf(const void* block) {
        const auto number = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(block));
        return static_cast<std::size_t>((number * 0x9E3779B97F4A7C15U) >> 48U);
    }
    static std::size_t next(std::size_t place) { return (place + 1) % capacity; }

    std::size_t freePlace(const void* block) const {
        std::size_t place = homeOf(block);
        while (places_[place] != nullptr)
            place = next(place);
        return place;
    }

    std::array<void*, capacity> places_ = {};
    std::size_t count_ = 0;
};

BlockTable table;

void* noted(void* block) {
    table.add(block);
    return block;
}

// Never null for a request of no bytes: operator new has to return an address.
void* allocate(std::size_t size) {
    return failsNow(Call::New) ? nullptr : noted(realMalloc(size == 0 ? 1 : size));
}

// The address that the C library knows is stored right before the block.
void* allocateAligned(std::size_t size, std::align_val_t alignment) {
    const auto step = static_cast<std::size_t>(alignment);
    void* block = allocate(size + step + sizeof(void*));
    if (block == nullptr) return nullptr;
    const auto start = reinterpret_cast<std::uintptr_t>(block) + sizeof(void*);
    auto* aligned = reinterpret_cast<void**>((start + step - 1) / step * step);
    *(aligned - 1) = block;
    return aligned;
}

void releaseAligned(void* aligned) {
    if (aligned != nullptr) std::free(*(static_cast<void**>(aligned) - 1));
}

void* orBadAlloc(void* block) {
    if (block == nullptr) throw std::bad_alloc();
    return block;
}

}  // namespace

BlockAccount::BlockAccount() {
    table.thread = callingThread();
    table.isOpen = true;
}

BlockAccount::~BlockAccount() {
    table.isOpen = false;
    table.clear();
}

std::size_t BlockAccount::outstanding() const {
    return table.count();
}

UnaccountedStretch::UnaccountedStretch() : wasOpen_(table.isOpen) {
    table.isOpen = false;
}

UnaccountedStretch::~UnaccountedStretch() {
    table.isOpen = wasOpen_;
}

}  // namespace rgen_test

using rgen_test::allocate;
using rgen_test::allocateAligned;
using rgen_test::Call;
using rgen_test::failsNow;
using rgen_test::noted;
using rgen_test::orBadAlloc;
using rgen_test::releaseAligned;
using rgen_test::table;

extern "C" {

void* wrappedMalloc(std::size_t size) {
    return failsNow(Call::Malloc) ? nullptr : noted(realMalloc(size));
}

void* wrappedCalloc(std::size_t count, std::size_t size) {
    return failsNow(Call::Calloc) ? nullptr : noted(realCalloc(count, size));
}

void* wrappedRealloc(void* block, std::size_t size) {
    if (failsNow(Call::Realloc)) return nullptr;
    table.remove(block);
    void* moved = realRealloc(block, size);
    table.add(moved != nullptr ? moved : block);
    return moved;
}

void wrappedFree(void* block) {
    table.remove(block);
    realFree(block);
}

}  // extern "C"

void* operator new(std::size_t size) {
    return orBadAlloc(allocate(size));
}
void* operator new[](std::size_t size) {
    return operator new(size);
}
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
    return allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept {
    return operator new(size, tag);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    return orBadAlloc(allocateAligned(size, alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
    return operator new(size, alignment);
}
void* operator new(std::size_t size, std::align_val_t alignment,
                   const std::nothrow_t& /*tag*/) noexcept {
    return allocateAligned(size, alignment);
}
void* operator new[](std::size_t size, std::align_val_t alignment,
                     const std::nothrow_t& /*tag*/) noexcept {
    return allocateAligned(size, alignment);
}
void operator delete(void* block) noexcept {
    std::free(block);
}
void operator delete[](void* block) noexcept {
    std::free(block);
}
void operator delete(void* block, std::size_t /*size*/) noexcept {
    std::free(block);
}
void operator delete[](void* block, std::size_t /*size*/) noexcept {
    std::free(block);
}
void operator delete(void* block, const std::nothrow_t& /*tag*/) noexcept {
    std::free(block);
}
void operator delete[](void* block, const std::nothrow_t& /*tag*/) noexcept {
    std::free(block);
}
void operator delete(void* block, std::align_val_t /*alignment*/) noexcept {
    releaseAligned(block);
}
void operator delete[](void* block, std::align_val_t /*alignment*/) noexcept {
    releaseAligned(block);
}
void operator delete(void* block, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept {
    releaseAligned(block);
}
void operator delete[](void* block, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept {
    releaseAligned(block);
}
