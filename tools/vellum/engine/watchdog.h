// The clock, the cancellation and the watch over an engine. They count from the start of a
// conversion.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>

#include "engine/engines.h"
#include "engine/output_file.h"
#include "process/child_process.h"

namespace vellum {

class Watch {
public:
    using Clock = std::chrono::steady_clock;

    /// `input` is the page. Tests have a clock of their own.
    explicit Watch(std::filesystem::path input, Clock::time_point (*now)() = &Clock::now);

    /// Gives a page of so many bytes the time and the engine the memory that it needs, unless
    /// VELLUM_TIMEOUT and VELLUM_MEMORY say otherwise.
    void allowFor(std::size_t pageSize);

    /// In bytes.
    std::uint64_t memoryLimit() const;

    /// The library removes the page's file when its generation is cancelled. Raises a Failure then.
    void requireNoCancel() const;

    /// The same, and raises a Failure when the time is up. For work that no engine does.
    void look() const;

    /// Returns when the PDF is there and the engine has ended, or may be ended. Raises a Failure.
    void run(const Engine& engine, tools::ChildProcess& process, const PartFile& part,
             const std::filesystem::path& said);

private:
    void requireLimits(const Engine& engine, const tools::ChildProcess& process);
    bool hasSettled(const PartFile& part);
    void requireTime(const std::string& who) const;

    std::filesystem::path input_;
    Clock::time_point (*now_)();
    Clock::time_point start_;
    std::chrono::seconds deadline_;
    std::uint64_t megabytes_;
    unsigned rounds_ = 0;
    std::uintmax_t lastSize_ = 0;
    Clock::time_point settledSince_;
};

/// Lets a signal cancel the conversion that runs.
void stopOnSignal(int signalNumber);

}  // namespace vellum
