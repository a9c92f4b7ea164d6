// The description table: which numbers have a text, and what the others get.
//
// SPDX-License-Identifier: MIT
#include "api/status_text.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "support/status_printer.h"

namespace rgen_test {
namespace {

const std::vector<rgen::Status>& describedStatuses() {
    static const std::vector<rgen::Status> statuses = {
#define RGEN_TEST_STATUS(name) name,
#include "every_status.inc"
#undef RGEN_TEST_STATUS
    };
    return statuses;
}

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
    for (const rgen::Status status : describedStatuses())
        expected.insert(statusHex(status));
    EXPECT_EQ(37U, expected.size());
    EXPECT_EQ(expected, described);
}

TEST(StatusText, EveryDescriptionIsDifferentAndKeepsItsPlace) {
    std::set<std::string> texts;
    for (const rgen::Status status : describedStatuses()) {
        texts.insert(rgen::statusText(status));
        EXPECT_EQ(rgen::statusText(status), rgen::statusText(status)) << statusHex(status);
    }
    EXPECT_EQ(describedStatuses().size(), texts.size());
}

TEST(StatusText, SpellingIsPartOfTheInterface) {
    EXPECT_STREQ("Given dir path is not exist", rgen::statusText(RGEN_E_DIR_NOT_FOUND));
    EXPECT_STREQ("Resulting intput dataset is empty", rgen::statusText(RGEN_E_EMPTY_INPUT));
    EXPECT_STREQ("An error occured during external program run",
                 rgen::statusText(RGEN_E_EXTERNAL_FAILED));
}

TEST(StatusText, OtherNumbersGetOneOfTwoTexts) {
    const struct {
        std::uint32_t number;
        const char* text;
    } rows[] = {
        {0x00000001, "Unknown code."},     {0x00000005, "Unknown code."},
        {0x3FFFFFFF, "Unknown code."},     {0x40000000, "Undescribed error"},
        {0x7FFFFFFF, "Undescribed error"}, {0x80000000, "Undescribed error"},
        {0x80000002, "Undescribed error"}, {0xBFFFFFFF, "Undescribed error"},
        {0xC0000000, "Undescribed error"}, {0xC0000016, "Undescribed error"},
        {0xC0010000, "Undescribed error"}, {0xC001000B, "Undescribed error"},
        {0xC0020000, "Undescribed error"}, {0xC0020004, "Undescribed error"},
        {0xFFFFFFFF, "Undescribed error"},
    };
    for (const auto& row : rows) {
        const auto status = static_cast<rgen::Status>(row.number);
        EXPECT_STREQ(row.text, rgen::statusText(status)) << statusHex(status);
    }
}

TEST(UnknownCodeText, TellsNegativeNumbersApart) {
    EXPECT_STREQ("Unknown message code", rgen::unknownCodeText(-1));
    EXPECT_STREQ("Unknown code.", rgen::unknownCodeText(1));
}

}  // namespace
}  // namespace rgen_test
