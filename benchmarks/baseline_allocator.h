// The allocators that the baseline can use for the XML libraries.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace benchmarks {

/// Sets the allocator of libxml2 unless it is the C heap. To be called before any use of libxml2.
void chooseAllocator(const std::string& name);

}  // namespace benchmarks
