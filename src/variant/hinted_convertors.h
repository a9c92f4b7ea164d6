// One stateless convertor object for each kind of value: it converts the value to text according
// to its hint. Use ValueTexts to get the texts of values.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "variant/variant.h"

namespace hvariant_private {

class IHintedVariantValueConvertor {
public:
    /// Sets `result` to the text of `variant`. Never fails: for an invalid value (null, no value,
    /// hint Uninitialized, wrong kind) the text is "UNINITIALIZED_VARIANT_VALUE".
    virtual void convert(std::string& result, const rgen::Variant* variant,
                         rgen::VariantHint hint) const = 0;

protected:
    constexpr IHintedVariantValueConvertor() = default;
    ~IHintedVariantValueConvertor() = default;
};

template <typename T>
class HintedVariantValueConvertor final : public IHintedVariantValueConvertor {
public:
    constexpr HintedVariantValueConvertor() = default;
    void convert(std::string& result, const rgen::Variant* variant,
                 rgen::VariantHint hint) const override;
};

template <typename T>
inline constexpr HintedVariantValueConvertor<T> convertorFor;

extern template class HintedVariantValueConvertor<std::string>;
extern template class HintedVariantValueConvertor<std::int64_t>;
extern template class HintedVariantValueConvertor<std::vector<std::uint8_t>>;
extern template class HintedVariantValueConvertor<void*>;

}  // namespace hvariant_private

namespace rgen {

/// The display text of a value according to its hint; "UNINITIALIZED_VARIANT_VALUE" for an empty
/// one. Times and dates use the time zone that was adopted last.
std::string variantText(const Variant& variant);

/// The same for a value that is no longer needed: a text is moved, not copied.
std::string variantText(Variant&& variant);

/// The display texts of the values of one call of a host, in the time zone at that call. Adopting
/// the time zone costs more than a text, so it is done once, for the first time or date.
class ValueTexts {
public:
    /// As variantText.
    std::string of(const Variant& variant);
    std::string of(Variant&& variant);

private:
    void adoptZoneFor(const Variant& variant);

    bool zoneIsAdopted_ = false;
};

}  // namespace rgen
