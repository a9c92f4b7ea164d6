// Variant and VariantValue: construction, copies, moves, reset. Texts and byte arrays are long, so
// that the sanitizers see a lost or doubly freed buffer.
//
// SPDX-License-Identifier: MIT
#include "variant/variant.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "variant/hinted_convertors.h"

namespace rgen_test {
namespace {

using hvariant_private::convertorFor;
using rgen::ByteVector;
using rgen::Variant;
using rgen::VariantHint;
using rgen::VariantKind;
using rgen::VariantValue;
using rgen::variant_private::valueOperatorFor;

const std::string longText(100, 'x');
const ByteVector longBytes(100, 0xAB);
constexpr auto noSuchHint = static_cast<VariantHint>(9);

Variant handleVariant(void* handle) {
    Variant variant;
    variant.value = handle;
    variant.hint = VariantHint::Generic;
    variant.convertor = &convertorFor<void*>;
    return variant;
}

bool isZeroed(const VariantValue& value) {
    const auto& bytes = value.storage.bytes;
    return std::all_of(std::begin(bytes), std::end(bytes),
                       [](std::byte byte) { return byte == std::byte{0}; });
}

void expectEmpty(const Variant& variant) {
    EXPECT_EQ(VariantHint::Uninitialized, variant.hint);
    EXPECT_FALSE(variant.value.hasValue);
    EXPECT_EQ(nullptr, variant.value.valueOperator);
    EXPECT_EQ(nullptr, variant.convertor);
    EXPECT_TRUE(isZeroed(variant.value));
}

// One Variant of each kind and an empty one.
std::vector<Variant> oneOfEach() {
    static int target = 0;
    std::vector<Variant> variants;
    variants.emplace_back();
    variants.emplace_back(longText, VariantHint::Generic);
    variants.emplace_back(std::int64_t{-1}, VariantHint::Address);
    variants.emplace_back(longBytes, VariantHint::Dump);
    variants.push_back(handleVariant(&target));
    return variants;
}

void expectSame(const Variant& expected, const Variant& actual) {
    EXPECT_EQ(expected.hint, actual.hint);
    EXPECT_EQ(expected.convertor, actual.convertor);
    EXPECT_EQ(expected.value.hasValue, actual.value.hasValue);
    EXPECT_EQ(expected.value.valueOperator, actual.value.valueOperator);
    EXPECT_EQ(rgen::variantText(expected), rgen::variantText(actual));
    if (expected.value.hasValue) {
        EXPECT_EQ(expected.value.kind, actual.value.kind);
    }
}

TEST(VariantConstruction, WithoutArgumentsItIsEmpty) {
    expectEmpty(Variant());
}

TEST(VariantConstruction, EachTypeGetsItsKindOperatorAndConvertor) {
    const Variant text(longText, VariantHint::Date);
    EXPECT_EQ(VariantKind::String, text.value.kind);
    EXPECT_EQ(&valueOperatorFor<std::string>, text.value.valueOperator);
    EXPECT_EQ(&convertorFor<std::string>, text.convertor);
    EXPECT_EQ(VariantHint::Date, text.hint);
    EXPECT_EQ(longText, text.value.as<std::string>());

    const Variant number(std::int64_t{5}, VariantHint::Speed);
    EXPECT_EQ(VariantKind::Int64, number.value.kind);
    EXPECT_EQ(&valueOperatorFor<std::int64_t>, number.value.valueOperator);
    EXPECT_EQ(&convertorFor<std::int64_t>, number.convertor);
    EXPECT_EQ(5, number.value.as<std::int64_t>());

    const Variant bytes(longBytes, VariantHint::Dump);
    EXPECT_EQ(VariantKind::ByteArray, bytes.value.kind);
    EXPECT_EQ(&valueOperatorFor<ByteVector>, bytes.value.valueOperator);
    EXPECT_EQ(&convertorFor<ByteVector>, bytes.convertor);
    EXPECT_EQ(longBytes, bytes.value.as<ByteVector>());
}

TEST(VariantConstruction, KindsHaveTheirInternalNumbers) {
    EXPECT_EQ(0U, static_cast<std::uint64_t>(VariantKind::String));
    EXPECT_EQ(1U, static_cast<std::uint64_t>(VariantKind::Int64));
    EXPECT_EQ(2U, static_cast<std::uint64_t>(VariantKind::ByteArray));
    EXPECT_EQ(3U, static_cast<std::uint64_t>(VariantKind::Handle));
}

TEST(VariantConstruction, HintsUpToEightAreTaken) {
    for (std::uint64_t hint = 0; hint <= 8; ++hint) {
        const auto wanted = static_cast<VariantHint>(hint);
        for (const Variant& variant : {Variant(longText, wanted), Variant(longBytes, wanted),
                                       Variant(std::int64_t{1}, wanted)}) {
            EXPECT_TRUE(variant.value.hasValue) << hint;
            EXPECT_EQ(wanted, variant.hint) << hint;
        }
    }
}

TEST(VariantConstruction, LargerHintsLeaveItEmpty) {
    for (const std::uint64_t hint :
         {std::uint64_t{9}, std::uint64_t{10}, std::numeric_limits<std::uint64_t>::max()}) {
        const auto wanted = static_cast<VariantHint>(hint);
        expectEmpty(Variant(longText, wanted));
        expectEmpty(Variant(longBytes, wanted));
        expectEmpty(Variant(std::int64_t{1}, wanted));
    }
}

TEST(VariantCopy, EveryKindOntoEveryKind) {
    const std::vector<Variant> sources = oneOfEach();
    for (std::size_t from = 0; from < sources.size(); ++from) {
        for (std::size_t onto = 0; onto < sources.size(); ++onto) {
            SCOPED_TRACE(std::to_string(from) + " onto " + std::to_string(onto));
            Variant target = sources[onto];
            target = sources[from];
            expectSame(sources[from], target);
            expectSame(oneOfEach()[from], sources[from]);
        }
    }
}

TEST(VariantCopy, ConstructedCopyIsDeep) {
    for (const Variant& source : oneOfEach()) {
        const Variant copy(source);
        expectSame(source, copy);
    }
    const Variant text(longText, VariantHint::Generic);
    const Variant copy(text);
    EXPECT_NE(text.value.as<std::string>().data(), copy.value.as<std::string>().data());
}

TEST(VariantCopy, EmptyOneEmptiesHintAndConvertorToo) {
    Variant target(longText, VariantHint::Size);
    target = Variant(longText, noSuchHint);
    expectEmpty(target);
    Variant second(longBytes, VariantHint::Size);
    const Variant empty;
    second = empty;
    expectEmpty(second);
}

TEST(VariantCopy, OntoItselfChangesNothing) {
    const std::vector<Variant> expected = oneOfEach();
    std::vector<Variant> variants = oneOfEach();
    for (std::size_t i = 0; i < variants.size(); ++i) {
        const Variant& same = variants[i];
        variants[i] = same;
        expectSame(expected[i], variants[i]);
    }
}

TEST(VariantMove, EveryKindOntoEveryKind) {
    const std::vector<Variant> expected = oneOfEach();
    for (std::size_t from = 0; from < expected.size(); ++from) {
        for (std::size_t onto = 0; onto < expected.size(); ++onto) {
            SCOPED_TRACE(std::to_string(from) + " onto " + std::to_string(onto));
            Variant source = expected[from];
            Variant target = expected[onto];
            target = std::move(source);
            expectSame(expected[from], target);
        }
    }
}

TEST(VariantMove, SourceStaysAliveAndEmptied) {
    Variant source(longText, VariantHint::Generic);
    const char* buffer = source.value.as<std::string>().data();
    const Variant target(std::move(source));
    EXPECT_EQ(buffer, target.value.as<std::string>().data());
    EXPECT_TRUE(source.value.hasValue);  // NOLINT: what is left is the statement here.
    EXPECT_EQ("", source.value.as<std::string>());
    source = Variant(longBytes, VariantHint::Dump);
    EXPECT_EQ(longBytes, source.value.as<ByteVector>());
}

TEST(VariantMove, OntoItselfChangesNothing) {
    const std::vector<Variant> expected = oneOfEach();
    std::vector<Variant> variants = oneOfEach();
    for (std::size_t i = 0; i < variants.size(); ++i) {
        Variant& same = variants[i];
        variants[i] = std::move(same);
        expectSame(expected[i], variants[i]);
    }
}

TEST(VariantValueAssignment, EachTypeReplacesTheCurrentValue) {
    int target = 0;
    VariantValue value;
    value = longText;
    EXPECT_EQ(VariantKind::String, value.kind);
    EXPECT_EQ(longText, value.as<std::string>());
    value = longBytes;
    EXPECT_EQ(VariantKind::ByteArray, value.kind);
    EXPECT_EQ(&valueOperatorFor<ByteVector>, value.valueOperator);
    EXPECT_EQ(longBytes, value.as<ByteVector>());
    value = std::int64_t{-3};
    EXPECT_EQ(VariantKind::Int64, value.kind);
    EXPECT_EQ(-3, value.as<std::int64_t>());
    value = static_cast<void*>(&target);
    EXPECT_EQ(VariantKind::Handle, value.kind);
    EXPECT_EQ(&valueOperatorFor<void*>, value.valueOperator);
    EXPECT_EQ(&target, value.as<void*>());
    EXPECT_TRUE(value.hasValue);
}

TEST(VariantValueAssignment, EmptyOneEmptiesTheTarget) {
    VariantValue value;
    value = longText;
    const VariantValue empty;
    value = empty;
    EXPECT_FALSE(value.hasValue);
    EXPECT_EQ(nullptr, value.valueOperator);
    EXPECT_TRUE(isZeroed(value));
    value = longText;
    value = VariantValue();
    EXPECT_FALSE(value.hasValue);
}

TEST(VariantValueReset, EndsTheValueAndMayBeRepeated) {
    VariantValue value;
    value.reset();
    value = longBytes;
    value.reset();
    EXPECT_FALSE(value.hasValue);
    EXPECT_EQ(nullptr, value.valueOperator);
    EXPECT_TRUE(isZeroed(value));
    value.reset();
    value = longText;
    EXPECT_EQ(longText, value.as<std::string>());
}

TEST(VariantHandle, CopyingAndDestroyingDuplicateANumberOnly) {
    int target = 42;
    {
        const Variant handle = handleVariant(&target);
        const Variant copy = handle;
        EXPECT_EQ(&target, copy.value.as<void*>());
        EXPECT_EQ(&target, handle.value.as<void*>());
    }
    EXPECT_EQ(42, target);
}

TEST(VariantMapRules, SecondValueOfANameReplacesTheFirst) {
    rgen::VariantMap map;
    map["name"] = Variant(longText, VariantHint::Generic);
    map["name"] = Variant(std::int64_t{2}, VariantHint::Generic);
    map["Name"] = Variant(std::int64_t{3}, VariantHint::Generic);
    EXPECT_EQ(2U, map.size());
    EXPECT_EQ("2", rgen::variantText(map["name"]));
}

TEST(VariantAssignment, ValueAssignedToItselfStays) {
    for (const Variant& variant : oneOfEach()) {
        Variant assigned = variant;
        const VariantValue& same = assigned.value;
        assigned.value = same;
        expectSame(variant, assigned);
        assigned.value = std::move(const_cast<VariantValue&>(same));
        expectSame(variant, assigned);
    }
}

}  // namespace
}  // namespace rgen_test
