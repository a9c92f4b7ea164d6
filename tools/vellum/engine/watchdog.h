// Supervises a conversion: its time limit, the memory of the engine, and cancellation.
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

class Watchdog {
public:
    using Clock = std::chrono::steady_clock;

    /// Starts the clock. `input` is the page; tests replace `now`.
    explicit Watchdog(std::filesystem::path input, Clock::time_point (*now)() = &Clock::now);

    /// Sets the limits of time and memory for a page of so many bytes, unless VELLUM_TIMEOUT and
    /// VELLUM_MEMORY set them.
    void setLimits(std::size_t pageSize);

    /// In bytes.
    std::uint64_t memoryLimit() const;

    /// Throws a Failure when the conversion was cancelled: by a signal, or by the library, which
    /// then deletes the page.
    void requireNotCancelled() const;

    /// Throws a Failure when the conversion was cancelled or its time is up.
    void check() const;

    /// Waits for a complete PDF. The engine then has ended, or can be killed. Throws a Failure;
    /// `engineOutput` is the file with what the engine printed.
    void waitForPdf(const Engine& engine, tools::ChildProcess& process, const PartFile& part,
                    const std::filesystem::path& engineOutput);

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

/// Makes this signal cancel the running conversion.
void cancelOnSignal(int signalNumber);

}  // namespace vellum
