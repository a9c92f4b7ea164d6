// Display texts. Numbers and hex digits never depend on a locale; dates and times go through the
// time facet of the host's global C++ locale.
//
// SPDX-License-Identifier: MIT
#include "variant/hinted_convertors.h"

#include <cstdio>
#include <ctime>
#include <iterator>
#include <locale>
#include <sstream>
#include <string_view>
#include <utility>

#include "platform/platform.h"

namespace hvariant_private {
namespace {

using rgen::ByteVector;
using rgen::VariantHint;
using rgen::VariantKind;

constexpr const char* uninitializedText = "UNINITIALIZED_VARIANT_VALUE";
constexpr const char* unknownHintText = "INT64 STUB - UNKNOWN HINT!";
constexpr const char* badTimeText = "ERROR: BAD TIME_T INPUT";

template <typename T>
constexpr VariantKind kindOf = VariantKind::String;
template <>
constexpr VariantKind kindOf<std::int64_t> = VariantKind::Int64;
template <>
constexpr VariantKind kindOf<ByteVector> = VariantKind::ByteArray;
template <>
constexpr VariantKind kindOf<void*> = VariantKind::Handle;

std::string addressText(std::int64_t number) {
    char text[19] = {};
    std::snprintf(text, sizeof text, "0x%llx", static_cast<unsigned long long>(number));
    return text;
}

/// The day brought to two characters with a leading blank, as "%e" gives it where it is known: the
/// C runtime of the Windows build does not know it.
std::string blankPaddedDay(int day) {
    return {day < 10 ? ' ' : static_cast<char>('0' + day / 10), static_cast<char>('0' + day % 10)};
}

/// `pattern` is written behind the day when `showsDay` is set.
std::string timeText(std::int64_t number, bool showsDay, std::string_view pattern) {
    std::tm brokenDown = {};
    if (!rgen::platform::localTime(number, brokenDown)) return badTimeText;
    std::ostringstream stream;
    const auto& facet = std::use_facet<std::time_put<char>>(stream.getloc());
    facet.put(std::ostreambuf_iterator<char>(stream), stream, ' ', &brokenDown, pattern.data(),
              pattern.data() + pattern.size());
    return (showsDay ? blankPaddedDay(brokenDown.tm_mday) : std::string()) + stream.str();
}

std::string textOf(const std::string& text, VariantHint) {
    return text;
}

std::string textOf(std::int64_t number, VariantHint hint) {
    switch (hint) {
        case VariantHint::Generic:
        case VariantHint::Size:
        case VariantHint::Speed:
            return std::to_string(number);
        case VariantHint::Time:
            return timeText(number, false, "%H:%M:%S");
        case VariantHint::Date:
            return timeText(number, true, ".%m.%Y");
        case VariantHint::DateTime:
            return timeText(number, true, ".%m.%Y %H:%M:%S");
        case VariantHint::Address:
            return addressText(number);
        default:
            return unknownHintText;
    }
}

std::string textOf(const ByteVector& bytes, VariantHint) {
    constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    text.reserve(bytes.size() * 3);
    for (const std::uint8_t byte : bytes) {
        // On purpose: a blank follows every byte, the last one too.
        text.append({digits[byte >> 4U], digits[byte & 0x0FU], ' '});
    }
    return text;
}

std::string textOf(void* handle, VariantHint) {
    return std::to_string(reinterpret_cast<std::uintptr_t>(handle));
}

}  // namespace

template <typename T>
void HintedVariantValueConvertor<T>::convert(std::string& result, const rgen::Variant* variant,
                                             VariantHint hint) const {
    const bool showable = variant != nullptr && variant->value.hasValue &&
                          variant->hint != VariantHint::Uninitialized &&
                          variant->value.kind == kindOf<T>;
    result = showable ? textOf(variant->value.as<T>(), hint) : uninitializedText;
}

template class HintedVariantValueConvertor<std::string>;
template class HintedVariantValueConvertor<std::int64_t>;
template class HintedVariantValueConvertor<std::vector<std::uint8_t>>;
template class HintedVariantValueConvertor<void*>;

}  // namespace hvariant_private

namespace rgen {

std::string variantText(const Variant& variant) {
    std::string text = hvariant_private::uninitializedText;
    if (variant.value.hasValue && variant.convertor != nullptr) {
        variant.convertor->convert(text, &variant, variant.hint);
    }
    return text;
}

std::string variantText(Variant&& variant) {
    const bool holdsText = variant.value.hasValue && variant.value.kind == VariantKind::String;
    const bool showsText = variant.hint != VariantHint::Uninitialized &&
                           variant.convertor == &hvariant_private::convertorFor<std::string>;
    if (holdsText && showsText) return variant.value.take<std::string>();
    return variantText(std::as_const(variant));
}

}  // namespace rgen
