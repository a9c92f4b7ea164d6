// Hints, their names, the hint rules of the boundary and the names of kinds.
//
// SPDX-License-Identifier: MIT
#include "variant/variant_names.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

namespace rgen_test {
namespace {

using rgen::VariantHint;

std::uint64_t numberOf(VariantHint hint) {
    return static_cast<std::uint64_t>(hint);
}

TEST(HintFromName, EveryNameGivesItsNumber) {
    const struct {
        const char* name;
        std::uint64_t number;
    } rows[] = {{"Uninitialized", 0}, {"Generic", 1}, {"Time", 2},  {"Date", 3}, {"DateTime", 4},
                {"Size", 5},          {"Address", 6}, {"Speed", 7}, {"Dump", 8}};
    for (const auto& row : rows) {
        EXPECT_EQ(row.number, numberOf(rgen::hintFromName(row.name))) << row.name;
    }
}

TEST(HintFromName, EveryOtherTextGivesZero) {
    for (const std::string name :
         {"", "generic", "GENERIC", " Generic", "Generic ", "Generi", "Generics", "date",
          "Datetime", "DateTime2", "1", "UNINITIALIZED"}) {
        EXPECT_EQ(0U, numberOf(rgen::hintFromName(name))) << name;
    }
    EXPECT_EQ(0U, numberOf(rgen::hintFromName(std::string("Dump\0", 5))));
}

TEST(IsKnownHint, NineHintsAreKnown) {
    for (std::uint64_t hint = 0; hint <= 8; ++hint) {
        EXPECT_TRUE(rgen::isKnownHint(static_cast<VariantHint>(hint))) << hint;
    }
    for (const std::uint64_t hint :
         {std::uint64_t{9}, std::uint64_t{200}, std::numeric_limits<std::uint64_t>::max()}) {
        EXPECT_FALSE(rgen::isKnownHint(static_cast<VariantHint>(hint))) << hint;
    }
}

TEST(BoundaryHint, TimeToSpeedAreKeptAndTheOthersAreGeneric) {
    const struct {
        std::uint64_t given;
        std::uint64_t expected;
    } rows[] = {{0, 1}, {1, 1}, {2, 2},  {3, 3},
                {4, 4}, {5, 5}, {6, 6},  {7, 7},
                {8, 1}, {9, 1}, {10, 1}, {std::numeric_limits<std::uint64_t>::max(), 1}};
    for (const auto& row : rows) {
        EXPECT_EQ(row.expected, numberOf(rgen::boundaryHint(row.given))) << row.given;
    }
}

TEST(CanonicalTypeName, ThreeNamesAreKnown) {
    EXPECT_EQ("std::string", rgen::canonicalTypeName("string"));
    EXPECT_EQ("int64_t", rgen::canonicalTypeName("int64"));
    EXPECT_EQ("std::vector<uint8_t>", rgen::canonicalTypeName("byte_array"));
}

TEST(CanonicalTypeName, EveryOtherTextGivesTheEmptyText) {
    for (const std::string name :
         {"", "String", "STRING", "string ", " string", "std::string", "int64_t", "Int64", "int",
          "BYTE_ARRAY", "byte array", "std::vector<uint8_t>", "handle", "void*"}) {
        EXPECT_EQ("", rgen::canonicalTypeName(name)) << name;
    }
}

}  // namespace
}  // namespace rgen_test
