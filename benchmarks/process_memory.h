// The memory of this process as the operating system counts it.
//
// SPDX-License-Identifier: MIT
#pragma once

namespace benchmarks {

struct ProcessMemory {
    long residentKib = 0;
    long peakKib = 0;
};

ProcessMemory readProcessMemory();

}  // namespace benchmarks
