// Paths: the matcher of a path's end compared with a regular expression, and the
// strict UTF-8 of paths: any bytes either convert or throw the documented exception.
//
// SPDX-License-Identifier: MIT
#include <cstddef>
#include <stdexcept>

#include "fuzz_support.h"
#include "fuzz_targets.h"
#include "platform/platform.h"
#include "store/base/file_system.h"
#include "store/data_directory.h"
#include "support/expression_oracles.h"

namespace rgen_fuzz {
namespace {

constexpr std::size_t longestForExpression = 256;

bool converts(const std::string& path) {
    try {
        static_cast<void>(rgen::toNativePath(path));
        return true;
    } catch (const std::range_error&) {
        return false;
    }
}

}  // namespace

void fuzzPath(const std::string& input) {
    require(converts(input) == isUtf8(input), "UTF-8 is judged in another way", input);
    // Separators are the platform's before the rule is asked.
    const char separator = rgen::platform::pathSeparator;
    if (separator == '\\' && input.find('/') != std::string::npos) return;
    if (input.size() > longestForExpression) {
        static_cast<void>(rgen::endsInSeparator(input));
        return;
    }
    require(
        rgen::endsInSeparator(input) == rgen_test::endsInSeparatorByExpression(input, separator),
        "the path matcher and the expression differ", input);
}

}  // namespace rgen_fuzz
