// How a command fails: the exit code, one line for people, and the library's status where there is
// one.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/json_document.h"
#include "strata_repgenlib/rgen.h"

namespace cli {

/// The documented exit codes.
enum class ExitCode {
    Done = 0,
    Refused = 1,
    Usage = 2,
    /// A check found a mistake, or a difference.
    Findings = 3,
    Unverified = 4,
    Environment = 5,
    Interrupted = 130,
    /// What a shell reports for a program that SIGPIPE ended.
    ClosedPipe = 141
};

/// What a check found about the reason of a failure.
struct Diagnosis {
    /// For people, printed after the error.
    std::string lines;
    /// The member "findings" of the JSON document.
    std::vector<JsonDocument> findings;
};

/// The failure of a command. what() says what, where and why; the hint says what to do.
class CommandError : public std::runtime_error {
public:
    CommandError(ExitCode code, const std::string& message, std::string advice = {})
        : std::runtime_error(message), exitCode(code), hint(std::move(advice)) {}

    ExitCode exitCode;
    /// May be empty.
    std::string hint;
    /// The command whose arguments are wrong, "persist get"; may be empty.
    std::string command;
    /// Set when the library reported the failure.
    std::optional<RgenStatus> status;
    /// May be null.
    std::shared_ptr<const Diagnosis> diagnosis;
};

/// Arguments, or files given with them, that cannot be used.
inline CommandError usageError(const std::string& message, std::string advice = {}) {
    return {ExitCode::Usage, message, std::move(advice)};
}

/// The same, about the arguments of one command.
inline CommandError usageErrorOf(const std::string& command, const std::string& message,
                                 const std::string& advice) {
    CommandError error = usageError(message, advice);
    error.command = command;
    return error;
}

}  // namespace cli
