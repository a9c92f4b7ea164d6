// How a conversion fails.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <stdexcept>
#include <string>

namespace vellum {

/// The documented exit codes.
enum class ExitCode {
    Done = 0,
    Usage = 2,
    Input = 3,
    Output = 4,
    EngineFailed = 5,
    TimeUp = 6,
    NoEngine = 7,
    Cancelled = 8,
    MemoryUp = 9
};

/// what() is one line: what, where, why and what to do.
class Failure : public std::runtime_error {
public:
    Failure(ExitCode code, const std::string& message)
        : std::runtime_error(message), exitCode(code) {}

    ExitCode exitCode;
};

}  // namespace vellum
