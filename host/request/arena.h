// Memory that is freed as a whole.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <string_view>
#include <vector>

namespace rgenh {

/// Allocates from large blocks; frees them when it is destroyed.
class Arena {
public:
    /// Aligned for every record of rgen.h; `size` is at most half of the address space. Throws
    /// std::bad_alloc.
    void* allocate(std::size_t size);

    /// A null-terminated copy.
    char* copyOf(std::string_view text);

    /// An array of zero-filled records.
    template <typename Record>
    Record* records(std::size_t count) {
        if (count > static_cast<std::size_t>(-1) / 2 / sizeof(Record)) throw std::bad_alloc();
        return static_cast<Record*>(zeroed(count * sizeof(Record)));
    }

private:
    void* zeroed(std::size_t size);

    std::vector<std::unique_ptr<char[]>> blocks_;
    char* next_ = nullptr;
    std::size_t left_ = 0;
};

}  // namespace rgenh
