// The typed value with a hint that the library uses internally, and the map of named values.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "variant/value_operators.h"
#include "variant/variant_names.h"

namespace hvariant_private {
class IHintedVariantValueConvertor;
}

namespace rgen {

/// The numbers are internal; the records of the interface use different numbers.
enum class VariantKind : std::uint64_t { String = 0, Int64 = 1, ByteArray = 2, Handle = 3 };

using ByteVector = std::vector<std::uint8_t>;

/// In-place storage for one text, one byte vector, one integer or one handle.
struct VariantStorage {
    static constexpr std::size_t capacity =
        std::max({sizeof(std::string), sizeof(ByteVector), sizeof(std::int64_t), sizeof(void*)});

    alignas(std::max_align_t) std::byte bytes[capacity] = {};
};

/// A value of one of the four kinds, or nothing.
struct VariantValue {
    VariantValue() = default;
    VariantValue(const VariantValue& other);
    VariantValue(VariantValue&& other) noexcept;
    VariantValue& operator=(const VariantValue& other);
    VariantValue& operator=(VariantValue&& other) noexcept;
    ~VariantValue();

    /// Replaces the current value; the type determines the kind.
    VariantValue& operator=(std::string text);
    VariantValue& operator=(ByteVector bytes);
    VariantValue& operator=(std::int64_t number);
    VariantValue& operator=(void* handle);

    /// Destroys the current value, if any.
    void reset() noexcept;

    /// The current value; T must be the type of its kind.
    template <typename T>
    const T& as() const {
        return *std::launder(reinterpret_cast<const T*>(storage.bytes));
    }

    /// Moves the current value out; a moved-from value of the same kind stays.
    template <typename T>
    T take() {
        return std::move(*std::launder(reinterpret_cast<T*>(storage.bytes)));
    }

    VariantStorage storage;
    VariantKind kind = VariantKind::String;
    bool hasValue = false;
    /// The operator of the current kind; null without a value.
    const variant_private::IVariantValueOperator* valueOperator = nullptr;

private:
    template <typename T>
    VariantValue& hold(T value, VariantKind newKind);
    /// Call after a value was constructed in the storage.
    void setContent(VariantKind newKind, const variant_private::IVariantValueOperator* newOperator);
};

/// A value with its display hint and the convertor that makes its display text.
struct Variant {
    Variant() = default;
    /// With an unknown hint the Variant is empty; there is no error.
    Variant(std::string text, VariantHint wantedHint);
    Variant(ByteVector bytes, VariantHint wantedHint);
    Variant(std::int64_t number, VariantHint wantedHint);
    Variant(const Variant& other) = default;
    Variant(Variant&& other) = default;
    Variant& operator=(const Variant& other);
    Variant& operator=(Variant&& other) noexcept;
    ~Variant() = default;

    VariantHint hint = VariantHint::Uninitialized;
    VariantValue value;
    /// The convertor of the current kind; null in an empty Variant.
    const hvariant_private::IHintedVariantValueConvertor* convertor = nullptr;

private:
    template <typename T>
    void construct(T newValue, VariantHint wantedHint);
};

/// Values by name. A later value of the same name replaces the earlier one. Nothing may depend on
/// the iteration order.
using VariantMap = std::unordered_map<std::string, Variant>;

/// Named values in the order of the host's records, before they are stored in a map.
using NamedVariants = std::vector<std::pair<std::string, Variant>>;

}  // namespace rgen
