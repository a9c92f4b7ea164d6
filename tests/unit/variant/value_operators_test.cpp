// The four operators on raw storage.
//
// SPDX-License-Identifier: MIT
#include "variant/value_operators.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

#include "variant/variant.h"

namespace rgen_test {
namespace {

using rgen::VariantStorage;
using rgen::variant_private::IVariantValueOperator;
using rgen::variant_private::valueOperatorFor;

// Long enough to live on the heap.
const std::string longText(100, 'x');

template <typename T>
T& valueIn(VariantStorage& storage) {
    return *std::launder(reinterpret_cast<T*>(storage.bytes));
}

template <typename T>
void expectCopyAndMove(const T& value, const T& movedFrom) {
    const IVariantValueOperator& theOperator = valueOperatorFor<T>;
    VariantStorage source;
    VariantStorage copied;
    VariantStorage moved;
    ::new (static_cast<void*>(source.bytes)) T(value);
    theOperator.copy(copied.bytes, source.bytes);
    EXPECT_EQ(value, valueIn<T>(copied));
    EXPECT_EQ(value, valueIn<T>(source));
    theOperator.move(moved.bytes, source.bytes);
    EXPECT_EQ(value, valueIn<T>(moved));
    EXPECT_EQ(movedFrom, valueIn<T>(source));
    EXPECT_EQ(value, valueIn<T>(copied));
    for (VariantStorage* storage : {&source, &copied, &moved}) {
        theOperator.destroy(storage->bytes);
    }
}

TEST(ValueOperator, TextIsCopiedDeeplyAndMovedOut) {
    expectCopyAndMove<std::string>(longText, std::string());
    expectCopyAndMove<std::string>("short", std::string());
    expectCopyAndMove<std::string>(std::string("a\0b", 3), std::string());
    expectCopyAndMove<std::string>(std::string(), std::string());
}

TEST(ValueOperator, BytesAreCopiedDeeplyAndMovedOut) {
    using Bytes = std::vector<std::uint8_t>;
    expectCopyAndMove<Bytes>(Bytes(100, 0xAB), Bytes());
    expectCopyAndMove<Bytes>(Bytes(), Bytes());
}

TEST(ValueOperator, NumberIsCopied) {
    for (const std::int64_t number : {std::int64_t{0}, std::numeric_limits<std::int64_t>::min(),
                                      std::numeric_limits<std::int64_t>::max()}) {
        expectCopyAndMove<std::int64_t>(number, number);
    }
}

TEST(ValueOperator, HandleIsCopiedAsANumber) {
    int target = 42;
    expectCopyAndMove<void*>(&target, &target);
    EXPECT_EQ(42, target);
}

TEST(ValueOperator, MovingTakesTheBufferOver) {
    VariantStorage source;
    VariantStorage moved;
    ::new (static_cast<void*>(source.bytes)) std::string(longText);
    const char* buffer = valueIn<std::string>(source).data();
    valueOperatorFor<std::string>.move(moved.bytes, source.bytes);
    EXPECT_EQ(buffer, valueIn<std::string>(moved).data());
    valueOperatorFor<std::string>.destroy(source.bytes);
    valueOperatorFor<std::string>.destroy(moved.bytes);
}

TEST(ValueOperator, StorageHasRoomForEveryKind) {
    EXPECT_GE(sizeof(VariantStorage), sizeof(std::string));
    EXPECT_GE(sizeof(VariantStorage), sizeof(std::vector<std::uint8_t>));
    EXPECT_GE(alignof(VariantStorage), alignof(std::string));
    EXPECT_FALSE(std::has_virtual_destructor_v<IVariantValueOperator>);
}

}  // namespace
}  // namespace rgen_test
