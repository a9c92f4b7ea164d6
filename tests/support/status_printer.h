// Statuses as texts, so that a failed comparison shows "0xC0000001" instead of -1073741823.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_SUPPORT_STATUS_PRINTER_H
#define RGEN_TESTS_SUPPORT_STATUS_PRINTER_H

#include <cstdint>
#include <string>

#include "strata_repgenlib/rgen_status.h"

namespace rgen_test {

// "0x" and eight upper-case hexadecimal digits. Compare statuses through it:
// EXPECT_EQ(statusHex(RGEN_OK), statusHex(rgen_setDataDirPath(...))).
inline std::string statusHex(RgenStatus status) {
    static const char digits[] = "0123456789ABCDEF";
    const auto number = static_cast<std::uint32_t>(status);
    std::string text = "0x";
    for (int shift = 28; shift >= 0; shift -= 4) {
        text.push_back(digits[(number >> shift) & 0xFU]);
    }
    return text;
}

}  // namespace rgen_test

#endif
