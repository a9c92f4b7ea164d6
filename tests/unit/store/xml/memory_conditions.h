// Exhausted memory and a short stack, as the XML libraries meet them.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_UNIT_MEMORY_CONDITIONS_H
#define RGEN_TESTS_UNIT_MEMORY_CONDITIONS_H

#include "support/fault_injection.h"

namespace rgen_test {

// Outside of all pools a new block comes from realloc, which an optimising compiler may replace by
// malloc.
class NoMemory {
public:
    bool reached() const { return reallocFailure.reached() || mallocFailure.reached(); }

private:
    const FailingCall reallocFailure{Call::Realloc};
    const FailingCall mallocFailure{Call::Malloc};
};

// A stack that ends above its caller, so that the caller has too little of it.
inline const char* stackAbove() {
    return static_cast<const char*>(__builtin_frame_address(0)) + 1024;
}

}  // namespace rgen_test

#endif
