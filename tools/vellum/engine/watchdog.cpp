// On purpose: the exit code of an engine is not examined, since some report success without a file.
// Only the file that it wrote and the clock count.
//
// SPDX-License-Identifier: MIT
#include "engine/watchdog.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <system_error>

#include "base/ascii.h"
#include "base/failure.h"
#include "process/this_process.h"
#include "text/utf8.h"

namespace vellum {
namespace {

namespace fs = std::filesystem;

constexpr std::chrono::milliseconds pollPause{50};
/// The memory is checked once in so many pauses, since that takes longer than the other checks.
constexpr unsigned memoryRounds = 4;
/// An engine that does not exit is killed when its PDF has been complete and unchanged for so long.
constexpr std::chrono::seconds settledTime{1};

volatile std::sig_atomic_t cancelRequested = 0;

void requestCancel(int) {
    cancelRequested = 1;
}

/// The positive number in an environment variable, limited to `most`; 0 when there is none.
long environmentNumber(const char* variable, long most) {
    const std::string text = tools::environmentVariable(variable).value_or("");
    return std::clamp(std::strtol(text.c_str(), nullptr, 10), 0L, most);
}

std::chrono::seconds deadlineFor(std::size_t pageSize) {
    constexpr long aDay = 86400;
    const long wanted = environmentNumber("VELLUM_TIMEOUT", aDay);
    if (wanted > 0) return std::chrono::seconds(wanted);
    constexpr std::size_t bytesPerSecond = 100'000;
    return std::chrono::seconds(60 + static_cast<long>(pageSize / bytesPerSecond));
}

/// In MiB. For 500 pages of tables, some 2 MB of HTML, an engine needed 2.5 GB.
std::uint64_t memoryFor(std::size_t pageSize) {
    constexpr long most = 1'000'000'000;
    const long wanted = environmentNumber("VELLUM_MEMORY", most);
    if (wanted > 0) return static_cast<std::uint64_t>(wanted);
    constexpr std::uint64_t least = 2048;
    constexpr std::uint64_t greatest = 8192;
    constexpr std::size_t bytesPerMegabyte = 1000;
    return std::min<std::uint64_t>(least + pageSize / bytesPerMegabyte, greatest);
}

/// The last line that an engine printed. Lines that start with "[" are a browser's log, which has
/// many lines even without an error; they count only when there is nothing else.
std::string lastLine(const fs::path& output) {
    std::ifstream file(output, std::ios::binary);
    std::string message;
    std::string log;
    for (std::string line; std::getline(file, line);) {
        const std::string text = trimmed(line);
        if (!text.empty()) (text[0] == '[' ? log : message) = text;
    }
    constexpr std::size_t longestQuote = 300;
    const std::string& last = message.empty() ? log : message;
    return last.empty() ? "it said nothing" : tools::utf8Prefix(last, longestQuote);
}

}  // namespace

Watchdog::Watchdog(fs::path input, Clock::time_point (*now)())
    : input_(std::move(input)),
      now_(now),
      start_(now()),
      deadline_(deadlineFor(0)),
      megabytes_(memoryFor(0)),
      settledSince_(start_) {}

void Watchdog::setLimits(std::size_t pageSize) {
    deadline_ = deadlineFor(pageSize);
    megabytes_ = memoryFor(pageSize);
}

std::uint64_t Watchdog::memoryLimit() const {
    constexpr std::uint64_t megabyte = 1048576;
    return megabytes_ * megabyte;
}

void Watchdog::requireNotCancelled() const {
    std::error_code ignored;
    // The signal is checked last, since the check of the file takes time in which one may arrive.
    if (fs::exists(input_, ignored) && cancelRequested == 0) return;
    throw Failure(ExitCode::Cancelled, "cancelled");
}

void Watchdog::check() const {
    requireNotCancelled();
    requireTime("the work on the page");
}

void Watchdog::requireTime(const std::string& who) const {
    if (now_() - start_ <= deadline_) return;
    throw Failure(ExitCode::Timeout, who + " was still busy after " +
                                         std::to_string(deadline_.count()) +
                                         " s; set VELLUM_TIMEOUT to give it more time");
}

void Watchdog::waitForPdf(const Engine& engine, tools::ChildProcess& process, const PartFile& part,
                          const fs::path& engineOutput) {
    while (!process.wait(pollPause)) {
        requireNotCancelled();
        if (hasSettled(part)) break;
        requireLimits(engine, process);
    }
    requireNotCancelled();
    if (part.isComplete()) return;
    throw Failure(ExitCode::EngineFailed,
                  engine.name + (part.isStarted() ? " made no whole PDF: " : " made no PDF: ") +
                      lastLine(engineOutput) + "; try \"vellum --check\"");
}

void Watchdog::requireLimits(const Engine& engine, const tools::ChildProcess& process) {
    requireTime(engine.name);
    if (rounds_++ % memoryRounds != 0 || process.memory() <= memoryLimit()) return;
    throw Failure(ExitCode::OutOfMemory, engine.name + " took more than " +
                                             std::to_string(megabytes_) +
                                             " MiB of memory; set VELLUM_MEMORY to give it more");
}

bool Watchdog::hasSettled(const PartFile& part) {
    const std::uintmax_t size = part.size();
    const bool isSame = size == lastSize_ && part.isComplete();
    if (!isSame) {
        lastSize_ = size;
        settledSince_ = now_();
    }
    return isSame && now_() - settledSince_ > settledTime;
}

void cancelOnSignal(int signalNumber) {
    std::signal(signalNumber, requestCancel);
}

}  // namespace vellum
