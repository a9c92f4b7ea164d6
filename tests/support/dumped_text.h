// The display text of one value, as a host sees it in a dump.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_SUPPORT_DUMPED_TEXT_H
#define RGEN_TESTS_SUPPORT_DUMPED_TEXT_H

#include <cstdint>
#include <string>

#include "support/host_records.h"

namespace rgen_test {

// The text of the one value "n" of this input.
std::string dumpedText(InputParams& input);

std::string dumpedText(std::int64_t number, std::uint64_t hint);

}  // namespace rgen_test

#endif
