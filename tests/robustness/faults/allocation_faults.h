// Makes chosen allocations fail, and keeps account of the blocks of one stretch of a test.
//
// An allocation is a call of malloc, calloc or realloc from the library's objects, the static XML
// and Boost libraries and the test program (the linker sends them here, as its option --wrap says),
// or of operator new in any form, also from inside the C++ library. Only the thread that made the
// object is looked at.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_FAULTS_ALLOCATION_FAULTS_H
#define RGEN_TESTS_FAULTS_ALLOCATION_FAULTS_H

#include <cstddef>

namespace rgen_test {

enum class FailureForm {
    One,     // a single call fails
    AllFrom  // that call fails and all later ones do
};

// While it lives, allocations are counted, and the one with the given number fails, counted from 1.
// The number 0 lets all of them succeed. One object at a time.
class FailingAllocation {
public:
    explicit FailingAllocation(std::size_t number = 0, FailureForm form = FailureForm::One);
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    // The allocations so far, those that failed included.
    std::size_t count() const;
};

// While it lives, the blocks are known that were allocated meanwhile and are not yet released. One
// object at a time.
class BlockAccount {
public:
    BlockAccount();
    ~BlockAccount();
    BlockAccount(const BlockAccount&) = delete;
    BlockAccount& operator=(const BlockAccount&) = delete;

    std::size_t outstanding() const;
};

// While it lives, blocks do not enter the account.
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
