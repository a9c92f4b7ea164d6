// No exit code of an engine can be trusted: the file that it made and the clock decide.
//
// SPDX-License-Identifier: MIT
#include "engine/watchdog.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <system_error>

#include "base/failure.h"
#include "page/html_tags.h"
#include "process/this_process.h"
#include "text/utf8.h"

namespace vellum {
namespace {

namespace fs = std::filesystem;

constexpr std::chrono::milliseconds pollPause{50};
/// The memory is looked at in one of so many pauses: that takes longer than the other looks.
constexpr unsigned memoryRounds = 4;
/// So long a PDF must have been whole before a lingering engine is ended.
constexpr std::chrono::seconds settledTime{1};

volatile std::sig_atomic_t stopRequested = 0;

void requestStop(int) {
    stopRequested = 1;
}

/// The positive number in a variable, at most `most`; 0 when there is none.
long numberIn(const char* variable, long most) {
    const std::string text = tools::environmentVariable(variable).value_or("");
    return std::clamp(std::strtol(text.c_str(), nullptr, 10), 0L, most);
}

std::chrono::seconds deadlineFor(std::size_t pageSize) {
    constexpr long aDay = 86400;
    const long wanted = numberIn("VELLUM_TIMEOUT", aDay);
    if (wanted > 0) return std::chrono::seconds(wanted);
    constexpr std::size_t bytesPerSecond = 100'000;
    return std::chrono::seconds(60 + static_cast<long>(pageSize / bytesPerSecond));
}

/// In MiB. Half a thousand pages of tables are some 2 MB and took an engine 2.5 GB.
std::uint64_t memoryFor(std::size_t pageSize) {
    constexpr long most = 1'000'000'000;
    const long wanted = numberIn("VELLUM_MEMORY", most);
    if (wanted > 0) return static_cast<std::uint64_t>(wanted);
    constexpr std::uint64_t least = 2048;
    constexpr std::uint64_t greatest = 8192;
    constexpr std::size_t bytesPerMegabyte = 1000;
    return std::min<std::uint64_t>(least + pageSize / bytesPerMegabyte, greatest);
}

/// The last thing that an engine said. Lines in brackets are a browser's log, which says much even
/// when all is well; they count only when there is nothing else.
std::string lastWords(const fs::path& output) {
    std::ifstream file(output, std::ios::binary);
    std::string words;
    std::string log;
    for (std::string line; std::getline(file, line);) {
        const std::string text = trimmed(line);
        if (!text.empty()) (text[0] == '[' ? log : words) = text;
    }
    constexpr std::size_t longestQuote = 300;
    const std::string& last = words.empty() ? log : words;
    return last.empty() ? "it said nothing" : tools::utf8Prefix(last, longestQuote);
}

}  // namespace

Watch::Watch(fs::path input, Clock::time_point (*now)())
    : input_(std::move(input)),
      now_(now),
      start_(now()),
      deadline_(deadlineFor(0)),
      megabytes_(memoryFor(0)),
      settledSince_(start_) {}

void Watch::allowFor(std::size_t pageSize) {
    deadline_ = deadlineFor(pageSize);
    megabytes_ = memoryFor(pageSize);
}

std::uint64_t Watch::memoryLimit() const {
    constexpr std::uint64_t megabyte = 1048576;
    return megabytes_ * megabyte;
}

void Watch::requireNoCancel() const {
    std::error_code ignored;
    // The signal last: it costs nothing, so nothing can happen after it.
    if (fs::exists(input_, ignored) && stopRequested == 0) return;
    throw Failure(ExitCode::Cancelled, "cancelled");
}

void Watch::look() const {
    requireNoCancel();
    requireTime("the work on the page");
}

void Watch::requireTime(const std::string& who) const {
    if (now_() - start_ <= deadline_) return;
    throw Failure(ExitCode::TimeUp, who + " was still busy after " +
                                        std::to_string(deadline_.count()) +
                                        " s; set VELLUM_TIMEOUT to give it more time");
}

void Watch::run(const Engine& engine, tools::ChildProcess& process, const PartFile& part,
                const fs::path& said) {
    while (!process.wait(pollPause)) {
        requireNoCancel();
        if (hasSettled(part)) break;
        requireLimits(engine, process);
    }
    requireNoCancel();
    if (part.isComplete()) return;
    throw Failure(ExitCode::EngineFailed,
                  engine.name + (part.isBegun() ? " made no whole PDF: " : " made no PDF: ") +
                      lastWords(said) + "; try \"vellum --check\"");
}

void Watch::requireLimits(const Engine& engine, const tools::ChildProcess& process) {
    requireTime(engine.name);
    if (rounds_++ % memoryRounds != 0 || process.memory() <= memoryLimit()) return;
    throw Failure(ExitCode::MemoryUp, engine.name + " took more than " +
                                          std::to_string(megabytes_) +
                                          " MiB of memory; set VELLUM_MEMORY to give it more");
}

bool Watch::hasSettled(const PartFile& part) {
    const std::uintmax_t size = part.size();
    const bool isSame = size == lastSize_ && part.isComplete();
    if (!isSame) {
        lastSize_ = size;
        settledSince_ = now_();
    }
    return isSame && now_() - settledSince_ > settledTime;
}

void stopOnSignal(int signalNumber) {
    std::signal(signalNumber, requestStop);
}

}  // namespace vellum
