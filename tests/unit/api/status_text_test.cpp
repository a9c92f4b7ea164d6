// Which numbers have a description, and the texts for those that have none. The descriptions
// themselves are tested through the library (host/status_description_test.cpp).
//
// SPDX-License-Identifier: MIT
#include "api/status_text.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <string>

#include "support/every_status.h"
#include "support/status_printer.h"

namespace rgen_test {
namespace {

bool isDescribed(rgen::Status status) {
    const std::string text = rgen::statusText(status);
    return text != "Undescribed error" && text != "Unknown code." && text != "Unknown message code";
}

TEST(StatusText, ExactlyTheKnownStatusesAreDescribed) {
    std::set<std::string> described;
    for (const std::uint32_t group : {0x0000U, 0x4000U, 0x8000U, 0xC000U, 0xC001U, 0xC002U}) {
        for (std::uint32_t number = 0; number <= 0xFFFF; ++number) {
            const auto status = static_cast<rgen::Status>(group << 16U | number);
            if (isDescribed(status)) described.insert(statusHex(status));
        }
    }
    std::set<std::string> expected;
    for (const RgenDescribedStatus& row : everyStatus)
        expected.insert(statusHex(row.status));
    EXPECT_EQ(37U, expected.size());
    EXPECT_EQ(expected, described);
}

TEST(UnknownCodeText, TellsNegativeNumbersApart) {
    EXPECT_STREQ("Unknown message code", rgen::unknownCodeText(-1));
    EXPECT_STREQ("Unknown code.", rgen::unknownCodeText(1));
}

}  // namespace
}  // namespace rgen_test
