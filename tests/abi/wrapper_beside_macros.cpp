// The C++ wrapper in a source that has the macros of a system's header: windows.h defines both,
// unless it is told not to. The standard headers are included first, since they undefine the
// macros.
//
// SPDX-License-Identifier: MIT
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <limits>
#include <map>
#include <mutex>
#include <optional>
#include <thread>
#include <variant>

#define min(a, b) (((a) < (b)) ? (a) : (b))
#define max(a, b) (((a) > (b)) ? (a) : (b))

#include "strata_repgenlib/rgen.hpp"

namespace rgen_test {

strata::repgen::Value valueBesideMacros(std::uint64_t number) {
    return {max(min(number, 2U), 1U), strata::repgen::Hint::Size};
}

}  // namespace rgen_test
