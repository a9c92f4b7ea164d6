// rgen_getStatusCodeDescription: every text, the two texts for unknown numbers, the null handle.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

#include "strata_repgenlib/rgen.h"
#include "support/host_records.h"
#include "support/status_printer.h"

namespace {

using rgen_test::Generator;
using rgen_test::statusHex;

struct DescriptionRow {
    RgenStatus status;
    std::uint32_t number;
    const char* text;
};

const DescriptionRow descriptions[] = {
    {RGEN_OK, 0x00000000U, "Operation completed successfully"},
    {RGEN_E_BAD_PARAMETER, 0xC0000001U, "Bad function parameter passed"},
    {RGEN_E_DIR_NOT_FOUND, 0xC0000002U, "Given dir path is not exist"},
    {RGEN_E_CREATE_DIR, 0xC0000003U, "Cannot create directory"},
    {RGEN_E_CREATE_CONFIG, 0xC0000004U, "Cannot create config file"},
    {RGEN_E_OPEN_CONFIG, 0xC0000005U, "Cannot open config file"},
    {RGEN_E_OPEN_PERSIST, 0xC0000006U, "Cannot open persistent data file"},
    {RGEN_E_EMPTY_INPUT, 0xC0000007U, "Resulting intput dataset is empty"},
    {RGEN_E_GUID_NOT_IN_CONFIG, 0xC0000008U, "Given guid(template) is not found in config"},
    {RGEN_E_TEMPLATE_NOT_FOUND, 0xC0000009U, "Template is not found in folder"},
    {RGEN_E_UNKNOWN_FORMAT, 0xC000000AU, "Given output format is unknown"},
    {RGEN_E_OVERWRITE_OUTPUT, 0xC000000BU, "Cannot overwrite output file"},
    {RGEN_E_CREATE_OUTPUT, 0xC000000CU, "Cannot create output file"},
    {RGEN_E_WRITE_OUTPUT, 0xC000000DU, "Cannot write to output file"},
    {RGEN_E_UNKNOWN_OUTPUT_MODE, 0xC000000EU, "Unknown output mode"},
    {RGEN_E_WRITE_ALL_OUTPUT, 0xC000000FU, "Cannot write all data to output file"},
    {RGEN_E_DELETE_PERSIST, 0xC0000010U, "Cannot delete persistent data file"},
    {RGEN_E_CREATE_PERSIST, 0xC0000011U, "Cannot create persistent data file"},
    {RGEN_E_RUN_EXTERNAL, 0xC0000012U, "Cannot run external program"},
    {RGEN_E_EXTERNAL_FAILED, 0xC0000013U, "An error occured during external program run"},
    {RGEN_E_OPEN_SIMULATION, 0xC0000014U, "Cannot open external simulation raw data file"},
    {RGEN_E_DELETE_DUMP, 0xC0000015U, "Cannot delete existing raw data dump file"},
    {RGEN_E_XPATH_DOCUMENT, 0xC0010001U, "Cannot create xpath document"},
    {RGEN_E_XPATH_CONTEXT, 0xC0010002U, "Cannot create xpath context"},
    {RGEN_E_XPATH_SEARCH, 0xC0010003U, "Cannot create xpath search"},
    {RGEN_E_NO_PERSIST_IN_CONFIG, 0xC0010004U, "No persistent data in config"},
    {RGEN_E_XPATH_NOT_NODE, 0xC0010005U, "Returned xpath result is not node"},
    {RGEN_E_XPATH_NODE_EMPTY, 0xC0010006U, "Xpath node found but empty"},
    {RGEN_E_NO_TYPE_MAP, 0xC0010007U, "No report type map is found in config"},
    {RGEN_E_NO_VALID_TYPE_MAP, 0xC0010008U, "No valid values in reports type map in config"},
    {RGEN_E_NO_PERSIST_VALUES, 0xC0010009U, "No values in persistent data map"},
    {RGEN_E_NO_VALID_PERSIST_VALUES, 0xC001000AU, "No valid values in persistent data map"},
    {RGEN_E_XSLT_PARSE, 0xC0020001U, "Cannot proceed xslt template file"},
    {RGEN_E_XSLT_APPLY, 0xC0020002U, "Cannot apply xslt template to xml"},
    {RGEN_E_XSLT_RESULT, 0xC0020003U, "Cannot make result xpath-xslt string"},
    {RGEN_E_UNKNOWN, 0xC000FFFFU, "Unknown error"},
    {RGEN_CANCELED, 0x80000001U, "Canceled by request"},
};

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

TEST(StatusDescription, TheTableHas37Entries) {
    EXPECT_EQ(37U, sizeof descriptions / sizeof descriptions[0]);
}

TEST(StatusDescription, EachNameHasItsNumber) {
    for (const DescriptionRow& row : descriptions) {
        EXPECT_EQ(statusHex(static_cast<RgenStatus>(row.number)), statusHex(row.status))
            << row.text;
    }
}

TEST(StatusDescription, EachStatusHasItsText) {
    const Generator generator;
    for (const DescriptionRow& row : descriptions) {
        EXPECT_STREQ(row.text, rgen_getStatusCodeDescription(generator.get(), row.status))
            << statusHex(row.status);
    }
}

TEST(StatusDescription, OnlyZeroIsNotNegative) {
    for (const DescriptionRow& row : descriptions) {
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
    for (const DescriptionRow& row : descriptions) {
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
    for (const DescriptionRow& row : descriptions) {
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
            for (const DescriptionRow& row : descriptions) {
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
