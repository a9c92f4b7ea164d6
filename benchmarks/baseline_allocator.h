// The allocators that the baseline can give to the XML libraries.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace benchmarks {

/// Gives the named allocator to libxml2 when it is not the C heap; before any use of libxml2.
void chooseAllocator(const std::string& name);

}  // namespace benchmarks
