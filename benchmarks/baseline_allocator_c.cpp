// For builds without another allocator than the C heap.
//
// SPDX-License-Identifier: MIT
#include "baseline_allocator.h"
#include "report_benchmark.h"

namespace benchmarks {

void chooseAllocator(const std::string& name) {
    if (name != "c") fail("there is no allocator " + name);
}

}  // namespace benchmarks
