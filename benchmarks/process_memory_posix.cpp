// The memory of this process, from the proc file system.
//
// SPDX-License-Identifier: MIT
#include <fstream>
#include <string>

#include "process_memory.h"

namespace benchmarks {

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

}  // namespace benchmarks
