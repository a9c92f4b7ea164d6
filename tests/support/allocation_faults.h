// Keeps account of the blocks that one stretch of a test allocates. The allocations that are seen
// here, and that FailingAllocation makes fail, are the calls of malloc, calloc and realloc from the
// library's objects, the static XML and Boost libraries and the test program, and of operator new
// in any form, also from inside the C++ library.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_SUPPORT_ALLOCATION_FAULTS_H
#define RGEN_TESTS_SUPPORT_ALLOCATION_FAULTS_H

#include <cstddef>

#include "support/fault_injection.h"

namespace rgen_test {

// While it lives, the blocks are counted that its thread allocates and does not release. One object
// at a time.
class BlockAccount {
public:
    BlockAccount();
    ~BlockAccount();
    BlockAccount(const BlockAccount&) = delete;
    BlockAccount& operator=(const BlockAccount&) = delete;

    std::size_t outstanding() const;
};

// While it lives, the account does not see allocations.
class UnaccountedStretch {
public:
    UnaccountedStretch();
    ~UnaccountedStretch();
    UnaccountedStretch(const UnaccountedStretch&) = delete;
    UnaccountedStretch& operator=(const UnaccountedStretch&) = delete;

private:
    bool wasOpen_;
};

}  // namespace rgen_test

#endif
