// The entry point that the fuzzing engine calls. CMake compiles it once for each target and names
// the target's function.
//
// SPDX-License-Identifier: MIT
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz_targets.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    rgen_fuzz::RGEN_FUZZ_TARGET(std::string(reinterpret_cast<const char*>(data), size));
    return 0;
}
