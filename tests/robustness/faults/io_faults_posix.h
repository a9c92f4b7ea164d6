// Makes chosen file operations fail.
//
// The test program defines the C library's functions that open, read, write, close, remove, create
// and examine files. They replace the C library's own for the whole process: the library's objects,
// the static libraries and libstdc++.so. Calls for the watched folder, on the thread that made the
// object, are counted; all others are passed on.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_FAULTS_IO_FAULTS_POSIX_H
#define RGEN_TESTS_FAULTS_IO_FAULTS_POSIX_H

#include <array>
#include <cstddef>
#include <string>

#include "support/fault_injection.h"

namespace rgen_test {

enum class IoCall { Open, Read, Write, Close, Remove, MakeFolder, Look, Seek };
constexpr std::size_t ioCallCount = 8;
const char* nameOf(IoCall call);

// What a failing call does: fails with an error number or, with the number `shortCount`, reads or
// writes no more than half.
constexpr int shortCount = 0;

struct IoFault {
    IoCall call = IoCall::Open;
    // Counted from 1; with 0 nothing fails.
    std::size_t number = 0;
    int error = shortCount;
    FailureForm form = FailureForm::One;
};

// While it lives, calls for what is inside `folder` are counted and one of them fails. One object
// at a time.
class FailingIo : public FailingCall {
public:
    FailingIo(const std::string& folder, const IoFault& fault);
    ~FailingIo();
    FailingIo(const FailingIo&) = delete;
    FailingIo& operator=(const FailingIo&) = delete;

    std::size_t count(IoCall call) const;
};

}  // namespace rgen_test

#endif
