// Record conversions. Texts are null-terminated; the length fields of records that are passed in
// are ignored.
//
// SPDX-License-Identifier: MIT
#include "api/record_conversions.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>

namespace rgen {
namespace {

std::string toText(const RgenAnsiString& record) {
    return record.data == nullptr ? std::string() : std::string(record.data);
}

ByteVector toBytes(const RgenByteArray& record) {
    return record.data == nullptr ? ByteVector()
                                  : ByteVector(record.data, record.data + record.size);
}

/// Handles and unknown types are not passed to the library.
bool isSupported(const RgenCVariant& record) {
    return record.type == RGEN_TYPE_INT64 || record.type == RGEN_TYPE_STRING ||
           record.type == RGEN_TYPE_BYTE_ARRAY;
}

/// Empty for unsupported types.
Variant toVariant(const RgenCVariant& record) {
    const VariantHint hint = boundaryHint(record.hint);
    switch (record.type) {
        case RGEN_TYPE_INT64:
            return {record.value.int64Value, hint};
        case RGEN_TYPE_STRING:
            return {toText(record.value.stringValue), hint};
        case RGEN_TYPE_BYTE_ARRAY:
            return {toBytes(record.value.byteArrayValue), hint};
        default:
            return {};
    }
}

/// The hint of an integer or handle that is returned to the host.
std::uint64_t outgoingHint(const Variant& variant) {
    return static_cast<std::uint64_t>(boundaryHint(static_cast<std::uint64_t>(variant.hint)));
}

/// Fills a record from a value of any kind except Handle. For an empty byte vector, and for a
/// Variant without a value, the record is unchanged.
void fillVariant(const char* name, const Variant& variant, RgenCVariant& record) {
    if (!variant.value.hasValue) return;
    if (variant.value.kind == VariantKind::Int64) {
        rgen_createRgenCVariantInt64(name, variant.value.as<std::int64_t>(), outgoingHint(variant),
                                     &record);
    } else if (variant.value.kind == VariantKind::String) {
        rgen_createRgenCVariantString(name, variant.value.as<std::string>().c_str(),
                                      RGEN_HINT_GENERIC, &record);
    } else if (variant.value.kind == VariantKind::ByteArray) {
        const auto& bytes = variant.value.as<ByteVector>();
        if (bytes.empty()) return;
        rgen_createRgenCVariantByteArray(name, bytes.data(), bytes.size(), RGEN_HINT_DUMP, &record);
    }
}

/// False if there was no memory for the name or the content of a value.
bool isComplete(const RgenCVariant& record) {
    if (record.name.data == nullptr) return false;
    if (record.type == RGEN_TYPE_STRING) return record.value.stringValue.data != nullptr;
    if (record.type == RGEN_TYPE_BYTE_ARRAY) return record.value.byteArrayValue.data != nullptr;
    return true;
}

}  // namespace

Guid toGuid(const RgenGuid& guid) {
    Guid converted = {guid.data1, guid.data2, guid.data3, {}};
    std::copy(std::begin(guid.data4), std::end(guid.data4), converted.data4.begin());
    return converted;
}

NamedVariants toNamedVariants(const RgenCVariantSet& set) {
    NamedVariants values;
    if (set.items == nullptr) return values;
    const RgenCVariant* begin = set.items;
    const RgenCVariant* end = begin + set.count;
    values.reserve(static_cast<std::size_t>(std::count_if(begin, end, isSupported)));
    for (const RgenCVariant* record = begin; record != end; ++record) {
        Variant value = toVariant(*record);
        if (value.value.hasValue) values.emplace_back(toText(record->name), std::move(value));
    }
    return values;
}

VariantMap toVariantMap(const RgenCVariantSet& set) {
    VariantMap values;
    for (auto& [name, value] : toNamedVariants(set))
        values.insert_or_assign(std::move(name), std::move(value));
    return values;
}

PropertyMap toPropertyMap(const RgenCAnsiStringPairSet& set) {
    PropertyMap properties;
    if (set.keys == nullptr || set.values == nullptr) return properties;
    properties.reserve(set.count);
    for (std::uint64_t i = 0; i < set.count; ++i) {
        properties[toText(set.keys[i])] = toText(set.values[i]);
    }
    return properties;
}

InputParams toInputParams(const RgenCInputParams& input) {
    return {toNamedVariants(input.variants), toPropertyMap(input.pairs),
            toGuid(input.templateGuid),      input.outputMode,
            input.skipExternalConversion,    toText(input.outputFormat),
            toText(input.outputPath),        toText(input.converterBaseArg)};
}

void fillResult(const Variant& result, RgenCVariant* record) {
    // On purpose: every result has this name.
    constexpr const char* resultName = "Return stub name";
    if (record == nullptr || !result.value.hasValue) return;
    if (result.value.kind == VariantKind::Handle) {
        rgen_createRgenCVariantHandle(resultName, result.value.as<void*>(), outgoingHint(result),
                                      record);
    } else {
        fillVariant(resultName, result, *record);
    }
}

bool fillVariantSet(const VariantMap& values, RgenCVariantSet& set) {
    RgenCVariantSet made = {};
    if (rgen_createRgenCVariantSet(&made, values.size()) == 0) return false;
    bool isWhole = true;
    RgenCVariant* record = made.items;
    for (const auto& [name, value] : values) {
        fillVariant(name.c_str(), value, *record);
        // On purpose: an entry that cannot be converted stays a zero-filled record.
        isWhole = isWhole && (record->type == RGEN_TYPE_EMPTY || isComplete(*record));
        ++record;
    }
    if (!isWhole) rgen_freeRgenCVariantSet(&made);
    if (isWhole) set = made;
    return isWhole;
}

bool fillPairSet(const PropertyMap& properties, RgenCAnsiStringPairSet& set) {
    RgenCAnsiStringPairSet made = {};
    if (rgen_createRgenCAnsiStringpairSet(&made, properties.size()) == 0) return false;
    bool isWhole = true;
    std::size_t i = 0;
    for (const auto& [name, text] : properties) {
        isWhole = isWhole && rgen_createRgenAnsiString(name.c_str(), &made.keys[i]) != 0 &&
                  rgen_createRgenAnsiString(text.c_str(), &made.values[i]) != 0;
        ++i;
    }
    if (!isWhole) rgen_freeRgenCAnsiStringSet(&made);
    if (isWhole) set = made;
    return isWhole;
}

}  // namespace rgen
