// Base class of objects whose allocation fails without an exception.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdlib>
#include <new>

namespace rgen::memory {

/// `new (std::nothrow)` of a derived class calls malloc. The C++ library's own form throws and
/// catches inside itself. In a C host that loads the library at run time, the first exception of a
/// thread needs memory, and the process ends when there is none.
struct MallocAllocated {
    static void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
        return std::malloc(size);
    }
    static void operator delete(void* object) noexcept { std::free(object); }
    static void operator delete(void* object, const std::nothrow_t& /*tag*/) noexcept {
        std::free(object);
    }
};

}  // namespace rgen::memory
