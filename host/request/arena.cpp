// Large requests get blocks of their own.
//
// SPDX-License-Identifier: MIT
#include "request/arena.h"

#include <cstring>
#include <utility>

namespace rgenh {
namespace {

constexpr std::size_t alignment = 16;
constexpr std::size_t blockSize = std::size_t{64} * 1024;

}  // namespace

void* Arena::allocate(std::size_t size) {
    const std::size_t needed = (size + alignment - 1) / alignment * alignment;
    if (needed > left_) {
        const std::size_t block = needed > blockSize / 4 ? needed : blockSize;
        std::unique_ptr<char[]> memory(new char[block]);
        char* const start = memory.get();
        blocks_.push_back(std::move(memory));
        if (block == needed) return start;
        next_ = start;
        left_ = block;
    }
    char* const result = next_;
    next_ += needed;
    left_ -= needed;
    return result;
}

char* Arena::copyOf(std::string_view text) {
    char* const copy = static_cast<char*>(allocate(text.size() + 1));
    copy[text.copy(copy, text.size())] = '\0';
    return copy;
}

void* Arena::zeroed(std::size_t size) {
    void* const memory = allocate(size);
    std::memset(memory, 0, size);
    return memory;
}

}  // namespace rgenh
