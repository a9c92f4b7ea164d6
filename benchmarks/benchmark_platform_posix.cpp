// The benchmarks on Linux.
//
// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <pthread.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <stdexcept>

#include "benchmark_platform.h"

namespace benchmarks {
namespace {

void require(bool done, const char* what, const std::string& path) {
    if (!done) throw std::runtime_error(std::string(what) + " " + path);
}

constexpr std::size_t stackSize = std::size_t{8} * 1024 * 1024;
constexpr std::size_t pageSize = 4096;
constexpr unsigned char pattern = 0xA5;

void* runWork(void* work) {
    (*static_cast<const std::function<void()>*>(work))();
    return nullptr;
}

/// Runs `work` on a thread whose stack is filled with a pattern, and returns how much of the stack
/// was overwritten; -1 when the thread cannot be started.
long overwrittenStack(std::function<void()> work) {
    const std::unique_ptr<void, decltype(&std::free)> stack(std::aligned_alloc(pageSize, stackSize),
                                                            std::free);
    auto* const lowest = static_cast<unsigned char*>(stack.get());
    if (lowest == nullptr) return -1;
    std::fill_n(lowest, stackSize, pattern);
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstack(&attributes, lowest, stackSize);
    pthread_t thread{};
    const bool started = pthread_create(&thread, &attributes, runWork, &work) == 0;
    if (started) pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
    if (!started) return -1;
    const auto* const used = std::find_if(lowest, lowest + stackSize,
                                          [](unsigned char byte) { return byte != pattern; });
    return static_cast<long>(lowest + stackSize - used);
}

std::size_t findByView(std::string_view text, std::string_view wanted) {
    return text.find(wanted);
}

std::size_t findByMemmem(std::string_view text, std::string_view wanted) {
    const void* found = memmem(text.data(), text.size(), wanted.data(), wanted.size());
    if (found == nullptr) return std::string_view::npos;
    return static_cast<std::size_t>(static_cast<const char*>(found) - text.data());
}

}  // namespace

void requireExists(const std::string& path) {
    struct stat properties {};
    require(stat(path.c_str(), &properties) == 0, "there is no", path);
}

std::string readWholeFile(const std::string& path) {
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    require(file >= 0, "cannot open", path);
    struct stat properties {};
    require(fstat(file, &properties) == 0, "cannot query", path);
    std::string bytes(static_cast<std::size_t>(properties.st_size), '\0');
    const ssize_t count = read(file, bytes.data(), bytes.size());
    require(count == properties.st_size, "cannot read", path);
    close(file);
    return bytes;
}

void replaceFile(const std::string& path, const std::vector<unsigned char>& bytes) {
    struct stat properties {};
    if (stat(path.c_str(), &properties) == 0) {
        require(unlink(path.c_str()) == 0, "cannot remove", path);
    }
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    require(file >= 0, "cannot create", path);
    const ssize_t count = write(file, bytes.data(), bytes.size());
    require(count == static_cast<ssize_t>(bytes.size()), "cannot write", path);
    require(close(file) == 0, "cannot close", path);
}

ProcessMemory readProcessMemory() {
    ProcessMemory memory;
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.rfind("VmRSS:", 0) == 0) memory.residentKib = std::stol(line.substr(6));
        if (line.rfind("VmHWM:", 0) == 0) memory.peakKib = std::stol(line.substr(6));
    }
    return memory;
}

long stackUsedBy(const std::function<void()>& work) {
    const long idle = overwrittenStack([] {});
    const long busy = overwrittenStack(work);
    return idle < 0 || busy < 0 ? -1 : std::max(busy - idle, 0L);
}

std::vector<PlainSearch> plainSearches() {
    return {{"find", findByView}, {"memmem", findByMemmem}};
}

}  // namespace benchmarks
