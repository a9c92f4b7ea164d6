// The exception that ends a conversion, and the exit codes.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <stdexcept>
#include <string>

namespace vellum {

/// docs/vellum.md and the manual page list them.
enum class ExitCode {
    Done = 0,
    Usage = 2,
    Input = 3,
    Output = 4,
    EngineFailed = 5,
    Timeout = 6,
    NoEngine = 7,
    Cancelled = 8,
    OutOfMemory = 9
};

/// what() is one line that says what failed, where, why and what to do.
class Failure : public std::runtime_error {
public:
    Failure(ExitCode code, const std::string& message)
        : std::runtime_error(message), exitCode(code) {}

    ExitCode exitCode;
};

}  // namespace vellum
