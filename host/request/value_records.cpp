// Records in an arena look like those of the create functions, but are freed with the arena only.
//
// SPDX-License-Identifier: MIT
#include "request/value_records.h"

#include <cstring>
#include <string>

#include "error/failures.h"
#include "request/host_text.h"
#include "text/character_check.h"
#include "text/escaping.h"

namespace rgenh {
namespace {

constexpr std::uint64_t greatestHint = 9;

/// The name of an entry for a message.
std::string shownName(const RgenAnsiString& name) {
    constexpr std::size_t longestShown = 60;
    const std::string_view text = name.data;
    return "\"" + withInvalidReplaced(text.substr(0, longestShown)) + "\": ";
}

/// Where an entry is and what is known of it.
struct EntryPlace {
    std::uint64_t index;
    bool isPair;
    /// Null until its name has been read.
    const RgenAnsiString& name;
};

/// Throws the ArgumentErrors of `make` again with the name and the index of the entry.
template <typename Make>
void atEntry(const EntryPlace& place, Make make) {
    try {
        make();
    } catch (const ArgumentError& failure) {
        std::string message;
        if (place.name.data != nullptr) message = shownName(place.name);
        throw ArgumentError(message + failure.what(), failure.argument(), place.index,
                            place.isPair);
    }
}

void requireShort(std::uint64_t size) {
    if (size > longestSize) throw ArgumentError("a value is longer than 4,294,967,295 bytes");
}

RgenAnsiString nameRecord(const RgenhValue& value, TextUse use, Arena& arena) {
    const std::string_view name = hostText(value.name, value.nameSize, "a name");
    requireShort(name.size());
    return makeText(use == TextUse::Report ? std::string(name) : storedName(name), arena);
}

/// Most texts contain no "&" and need no second copy.
RgenAnsiString reportText(std::string_view text, bool isMarkup, Arena& arena) {
    if (isMarkup || text.find('&') == std::string_view::npos) return makeText(text, arena);
    return makeText(escaped(text), arena);
}

RgenAnsiString textRecord(const RgenhValue& value, TextUse use, Arena& arena) {
    const std::string_view text = hostText(value.data, value.size, "a text");
    const bool isMarkup = value.type == RGENH_TYPE_MARKUP;
    if (use == TextUse::Report) return reportText(text, isMarkup, arena);
    return makeText(isMarkup ? storedMarkup(text) : storedText(text), arena);
}

RgenByteArray byteRecord(const RgenhValue& value, TextUse use, Arena& arena) {
    if (value.data == nullptr && value.size != 0) throw ArgumentError("a byte array is null");
    requireShort(value.size);
    // A persistent byte is stored as "AB ".
    if (use == TextUse::PersistentData && value.size > longestStoredText / 3) {
        throw ArgumentError("a byte array is too long for persistent data");
    }
    auto* const bytes = static_cast<std::uint8_t*>(arena.allocate(value.size + 1));
    if (value.size != 0) std::memcpy(bytes, value.data, value.size);
    return {static_cast<std::uint32_t>(value.size), bytes};
}

void fillContent(const RgenhValue& value, TextUse use, Arena& arena, RgenCVariant& record) {
    record.type = value.type;
    record.hint = value.hint < greatestHint ? value.hint : greatestHint;
    switch (value.type) {
        case RGEN_TYPE_INT64:
            record.value.int64Value = value.number;
            return;
        case RGEN_TYPE_HANDLE:
            record.value.handleValue = reinterpret_cast<void*>(value.number);
            return;
        case RGEN_TYPE_STRING:
        case RGENH_TYPE_MARKUP:
            record.type = RGEN_TYPE_STRING;
            record.hint = RGEN_HINT_GENERIC;
            record.value.stringValue = textRecord(value, use, arena);
            return;
        case RGEN_TYPE_BYTE_ARRAY:
            record.hint = RGEN_HINT_DUMP;
            record.value.byteArrayValue = byteRecord(value, use, arena);
            return;
        default:
            throw ArgumentError("a value has the unknown type " + std::to_string(value.type));
    }
}

void requireArray(const RgenhValue* values, std::uint64_t count, const char* what) {
    if (values == nullptr && count != 0) {
        throw ArgumentError(std::string("the array of ") + what + " is null");
    }
}

}  // namespace

RgenCVariantSet makeValues(const RgenhValue* values, std::uint64_t count, TextUse use,
                           Arena& arena) {
    requireArray(values, count, "values");
    // The dump of the library requires an array.
    auto* const records = arena.records<RgenCVariant>(count == 0 ? 1 : count);
    for (std::uint64_t i = 0; i < count; ++i) {
        atEntry({i, false, records[i].name}, [&] {
            records[i].name = nameRecord(values[i], use, arena);
            fillContent(values[i], use, arena, records[i]);
        });
    }
    return {records, count};
}

RgenCAnsiStringPairSet makePairs(const RgenhValue* pairs, std::uint64_t count, Arena& arena) {
    requireArray(pairs, count, "pairs");
    if (count == 0) return {};
    auto* const names = arena.records<RgenAnsiString>(count);
    auto* const texts = arena.records<RgenAnsiString>(count);
    for (std::uint64_t i = 0; i < count; ++i) {
        atEntry({i, true, names[i]}, [&] {
            names[i] = nameRecord(pairs[i], TextUse::Report, arena);
            if (pairs[i].type != RGEN_TYPE_STRING && pairs[i].type != RGENH_TYPE_MARKUP) {
                throw ArgumentError("a pair is not a text");
            }
            texts[i] = textRecord(pairs[i], TextUse::Report, arena);
        });
    }
    return {names, texts, count};
}

RgenAnsiString makeText(std::string_view text, Arena& arena) {
    requireShort(text.size());
    return {static_cast<std::uint32_t>(text.size()), arena.copyOf(text)};
}

}  // namespace rgenh
