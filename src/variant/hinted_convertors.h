// One stateless convertor object for each kind of value: it shows the value as text by its hint.
// ValueTexts is the door for everybody who needs the texts of values.
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
    /// Sets `result` to the text of `variant`. Never fails: an abnormal value (null, no value, hint
    /// Uninitialized, another kind than the convertor's) gives "UNINITIALIZED_VARIANT_VALUE".
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

/// The single instance of each convertor class.
template <typename T>
inline constexpr HintedVariantValueConvertor<T> convertorFor;

extern template class HintedVariantValueConvertor<std::string>;
extern template class HintedVariantValueConvertor<std::int64_t>;
extern template class HintedVariantValueConvertor<std::vector<std::uint8_t>>;
extern template class HintedVariantValueConvertor<void*>;

}  // namespace hvariant_private

namespace rgen {

/// The display text of a value under its own hint; "UNINITIALIZED_VARIANT_VALUE" for an empty one.
/// A time or date is shown in the time zone that was adopted last.
std::string variantText(const Variant& variant);

/// The same for a value that is not needed any more: a text is not copied.
std::string variantText(Variant&& variant);

/// The display texts of the values of one call of a host, in the time zone in force at that call:
/// the first time or date adopts it, which costs more than the text itself.
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
