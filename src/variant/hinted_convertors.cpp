// Display texts. Numbers and hex digits do not depend on a locale, nor do dates and times, unless
// the platform lets a time facet of the host write them.
//
// SPDX-License-Identifier: MIT
#include "variant/hinted_convertors.h"

#include <cstdio>
#include <ctime>
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

char digit(int number) {
    return static_cast<char>('0' + number % 10);
}

/// The day as two characters with a leading space, like "%e", which the C runtime of the Windows
/// build does not support.
std::string spacePaddedDay(int day) {
    return {day < 10 ? ' ' : digit(day / 10), digit(day)};
}

void appendTwoDigits(std::string& text, int number) {
    text += digit(number / 10);
    text += digit(number);
}

void appendField(std::string& text, const std::tm& brokenDown, char field) {
    constexpr int firstYear = 1900;
    const int year = firstYear + brokenDown.tm_year;
    switch (field) {
        case 'H':
            return appendTwoDigits(text, brokenDown.tm_hour);
        case 'M':
            return appendTwoDigits(text, brokenDown.tm_min);
        case 'S':
            return appendTwoDigits(text, brokenDown.tm_sec);
        case 'm':
            return appendTwoDigits(text, brokenDown.tm_mon + 1);
        default:
            appendTwoDigits(text, year / 100);
            return appendTwoDigits(text, year);
    }
}

/// Formats "%H", "%M", "%S", "%m" and "%Y" like the standard time facet in every locale.
void appendPlainly(std::string& text, const std::tm& brokenDown, std::string_view pattern) {
    bool isField = false;
    for (const char character : pattern) {
        if (isField) {
            appendField(text, brokenDown, character);
        } else if (character != '%') {
            text += character;
        }
        isField = character == '%';
    }
}

/// The day, if `showsDay` is set, followed by `pattern`.
std::string timeText(std::int64_t number, bool showsDay, std::string_view pattern) {
    std::tm brokenDown = {};
    if (!rgen::platform::localTime(number, brokenDown)) return badTimeText;
    std::string text = showsDay ? spacePaddedDay(brokenDown.tm_mday) : std::string();
    if (!rgen::platform::appendByHostFacet(text, brokenDown, pattern))
        appendPlainly(text, brokenDown, pattern);
    return text;
}

bool showsTime(const rgen::Variant& variant) {
    return variant.hint == VariantHint::Time || variant.hint == VariantHint::Date ||
           variant.hint == VariantHint::DateTime;
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
        // On purpose: a space follows every byte, the last one too.
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
    if (!variant.value.hasValue || variant.convertor == nullptr)
        return hvariant_private::uninitializedText;
    std::string text;
    variant.convertor->convert(text, &variant, variant.hint);
    return text;
}

std::string variantText(Variant&& variant) {
    const bool holdsText = variant.value.hasValue && variant.value.kind == VariantKind::String;
    const bool showsText = variant.hint != VariantHint::Uninitialized &&
                           variant.convertor == &hvariant_private::convertorFor<std::string>;
    if (holdsText && showsText) return variant.value.take<std::string>();
    return variantText(std::as_const(variant));
}

std::string ValueTexts::of(const Variant& variant) {
    adoptZoneFor(variant);
    return variantText(variant);
}

std::string ValueTexts::of(Variant&& variant) {
    adoptZoneFor(variant);
    return variantText(std::move(variant));
}

void ValueTexts::adoptZoneFor(const Variant& variant) {
    if (zoneIsAdopted_ || !hvariant_private::showsTime(variant)) return;
    platform::adoptTimeZone();
    zoneIsAdopted_ = true;
}

}  // namespace rgen
