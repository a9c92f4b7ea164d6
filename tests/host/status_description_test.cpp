// rgen_getStatusCodeDescription: every text, the two texts for unknown numbers, the null handle.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

#include "strata_repgenlib/rgen.h"
#include "support/every_status.h"
#include "support/host_records.h"
#include "support/status_printer.h"

namespace {

using rgen_test::Generator;
using rgen_test::statusHex;

struct UnknownRow {
    std::uint32_t number;
    const char* text;
};

const UnknownRow unknownNumbers[] = {
    {0x00000001U, "Unknown code."},     {0x00000005U, "Unknown code."},
    {0x00010002U, "Unknown code."},     {0x3FFFFFFFU, "Unknown code."},
    {0x40000000U, "Undescribed error"}, {0x40000001U, "Undescribed error"},
    {0x7FFFFFFFU, "Undescribed error"}, {0x80000000U, "Undescribed error"},
    {0x80000002U, "Undescribed error"}, {0xBFFFFFFFU, "Undescribed error"},
    {0xC0000000U, "Undescribed error"}, {0xC0000016U, "Undescribed error"},
    {0xC000FFFEU, "Undescribed error"}, {0xC0010000U, "Undescribed error"},
    {0xC001000BU, "Undescribed error"}, {0xC0020000U, "Undescribed error"},
    {0xC0020004U, "Undescribed error"}, {0xFFFFFFFFU, "Undescribed error"},
};

TEST(StatusDescription, EachNameHasItsNumber) {
    for (const RgenDescribedStatus& row : everyStatus) {
        EXPECT_EQ(statusHex(static_cast<RgenStatus>(row.number)), statusHex(row.status))
            << row.text;
    }
}

TEST(StatusDescription, EachStatusHasItsText) {
    const Generator generator;
    for (const RgenDescribedStatus& row : everyStatus) {
        EXPECT_STREQ(row.text, rgen_getStatusCodeDescription(generator.get(), row.status))
            << statusHex(row.status);
    }
}

TEST(StatusDescription, OnlyZeroIsNotNegative) {
    for (const RgenDescribedStatus& row : everyStatus) {
        EXPECT_EQ(row.number != 0, row.status < 0) << row.text;
    }
}

TEST(StatusDescription, UnknownNumbersAreToldApartByTheirTwoHighestBits) {
    const Generator generator;
    for (const UnknownRow& row : unknownNumbers) {
        const auto status = static_cast<RgenStatus>(row.number);
        EXPECT_STREQ(row.text, rgen_getStatusCodeDescription(generator.get(), status))
            << statusHex(status);
    }
}

TEST(StatusDescription, ANullHandleHasOneTextForEveryNumber) {
    for (const RgenDescribedStatus& row : everyStatus) {
        EXPECT_STREQ("bad function parameter", rgen_getStatusCodeDescription(nullptr, row.status));
    }
    for (const UnknownRow& row : unknownNumbers) {
        EXPECT_STREQ("bad function parameter",
                     rgen_getStatusCodeDescription(nullptr, static_cast<RgenStatus>(row.number)));
    }
}

TEST(StatusDescription, TheHandleIsNotLookedInto) {
    std::uint64_t notAGenerator[8] = {};
    const auto* handle = reinterpret_cast<const RgenReportGenerator*>(notAGenerator);
    EXPECT_STREQ("Canceled by request", rgen_getStatusCodeDescription(handle, RGEN_CANCELED));
}

TEST(StatusDescription, TheSameNumberGivesTheSamePointer) {
    const Generator generator;
    const Generator other;
    for (const RgenDescribedStatus& row : everyStatus) {
        EXPECT_EQ(
            static_cast<const void*>(rgen_getStatusCodeDescription(generator.get(), row.status)),
            static_cast<const void*>(rgen_getStatusCodeDescription(other.get(), row.status)))
            << row.text;
    }
    for (const UnknownRow& row : unknownNumbers) {
        const auto status = static_cast<RgenStatus>(row.number);
        EXPECT_EQ(static_cast<const void*>(rgen_getStatusCodeDescription(generator.get(), status)),
                  static_cast<const void*>(rgen_getStatusCodeDescription(generator.get(), status)));
    }
    EXPECT_EQ(static_cast<const void*>(rgen_getStatusCodeDescription(nullptr, RGEN_OK)),
              static_cast<const void*>(rgen_getStatusCodeDescription(nullptr, RGEN_CANCELED)));
}

TEST(StatusDescription, TheTextOutlivesTheGenerator) {
    const char* text = nullptr;
    {
        const Generator generator;
        text = rgen_getStatusCodeDescription(generator.get(), RGEN_E_EMPTY_INPUT);
    }
    EXPECT_STREQ("Resulting intput dataset is empty", text);
}

TEST(StatusDescription, ManyThreadsMayAskAtOnce) {
    const Generator generator;
    std::atomic<int> waiting{8};
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int index = 0; index < 8; ++index) {
        threads.emplace_back([&] {
            --waiting;
            while (waiting > 0) {
                std::this_thread::yield();
            }
            for (const RgenDescribedStatus& row : everyStatus) {
                const char* text = rgen_getStatusCodeDescription(generator.get(), row.status);
                wrong += std::string(text) == row.text ? 0 : 1;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(0, wrong);
}

}  // namespace
