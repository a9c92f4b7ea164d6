// The figures of a process on Linux, from /proc.
//
// SPDX-License-Identifier: MIT
#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <system_error>

#include "support/process_figures.h"

namespace rgen_test {
namespace {

long entriesIn(const char* folder) {
    const std::filesystem::directory_iterator first(folder);
    return static_cast<long>(std::distance(first, std::filesystem::directory_iterator()));
}

// The state letter of a process whose parent is this one; nothing for any other.
std::string stateOfChild(const std::filesystem::path& process) {
    std::ifstream file(process / "stat");
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    // The program's name stands in brackets and may hold anything.
    std::istringstream fields(text.substr(std::min(text.size(), text.rfind(')') + 1)));
    std::string state;
    pid_t parent = 0;
    fields >> state >> parent;
    return parent == getpid() ? state : std::string();
}

std::string childStates() {
    std::string states;
    std::error_code ignored;
    for (const auto& process : std::filesystem::directory_iterator("/proc", ignored)) {
        const std::string name = process.path().filename().string();
        if (name.find_first_not_of("0123456789") == std::string::npos)
            states += stateOfChild(process.path());
    }
    return states;
}

}  // namespace

const long handlesOfLocks = 0;

long residentBytes() {
    malloc_trim(0);
    std::ifstream file("/proc/self/statm");
    long all = 0;
    long resident = 0;
    file >> all >> resident;
    return resident * sysconf(_SC_PAGESIZE);
}

long openHandles() {
    return entriesIn("/proc/self/fd");
}

long threadCount() {
    return entriesIn("/proc/self/task");
}

long endedChildren() {
    long count = 0;
    for (const char state : childStates())
        count += state == 'Z' ? 1 : 0;
    return count;
}

long allChildren() {
    return static_cast<long>(childStates().size());
}

}  // namespace rgen_test
