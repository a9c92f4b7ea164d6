// The typed, hinted value that travels inside the library, and the map of named values.
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

/// The numbers are internal; boundary records number the same kinds differently.
enum class VariantKind : std::uint64_t { String = 0, Int64 = 1, ByteArray = 2, Handle = 3 };

using ByteVector = std::vector<std::uint8_t>;

/// In-place room for exactly one text, one byte vector, one integer or one handle.
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

    /// Replaces the current value; the kind follows from the type.
    VariantValue& operator=(std::string text);
    VariantValue& operator=(ByteVector bytes);
    VariantValue& operator=(std::int64_t number);
    VariantValue& operator=(void* handle);

    /// Ends the current value, if any.
    void reset() noexcept;

    /// The live value; only for the kind that is held.
    template <typename T>
    const T& as() const {
        return *std::launder(reinterpret_cast<const T*>(storage.bytes));
    }

    /// Moves the live value out; what is left is a value of the same kind.
    template <typename T>
    T take() {
        return std::move(*std::launder(reinterpret_cast<T*>(storage.bytes)));
    }

    VariantStorage storage;
    VariantKind kind = VariantKind::String;
    bool hasValue = false;
    /// Of the kind that is held; null without a value.
    const variant_private::IVariantValueOperator* valueOperator = nullptr;

private:
    template <typename T>
    VariantValue& hold(T value, VariantKind newKind);
    /// Notes what the storage holds from now on.
    void nowHolds(VariantKind newKind, const variant_private::IVariantValueOperator* newOperator);
};

/// A value with the hint that says how it is shown and the convertor that shows it.
struct Variant {
    Variant() = default;
    /// A hint that is not known leaves the Variant empty, without any error.
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
    /// Of the kind that is held; null in an empty Variant.
    const hvariant_private::IHintedVariantValueConvertor* convertor = nullptr;

private:
    template <typename T>
    void construct(T newValue, VariantHint wantedHint);
};

/// Values by name. A later value of the same name replaces the earlier one. The traversal order is
/// the container's own; nothing may depend on it.
using VariantMap = std::unordered_map<std::string, Variant>;

/// Named values in the order in which a host gave them, on their way into a map.
using NamedVariants = std::vector<std::pair<std::string, Variant>>;

}  // namespace rgen
