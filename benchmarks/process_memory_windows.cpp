// The memory of this process, from the process status interface.
//
// SPDX-License-Identifier: MIT
#include <windows.h>

#include <psapi.h>

#include "process_memory.h"

namespace benchmarks {

ProcessMemory readProcessMemory() {
    ProcessMemory memory;
    PROCESS_MEMORY_COUNTERS counters{};
    if (K32GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters)) != 0) {
        memory.residentKib = static_cast<long>(counters.WorkingSetSize / 1024);
        memory.peakKib = static_cast<long>(counters.PeakWorkingSetSize / 1024);
    }
    return memory;
}

}  // namespace benchmarks
