// The calls that make and free records. Before a create export fills a record, the record is freed,
// as the header asks.
//
// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstdint>
#include <iterator>

#include "call_sequence.h"

namespace rgen_fuzz {
namespace {

constexpr std::uint64_t overflowing = std::uint64_t{1} << 60U;

const std::uint8_t* toBytes(const std::string& text) {
    return reinterpret_cast<const std::uint8_t*>(text.data());
}

void createAnyValue(InputReader& reader, RgenCVariant& target) {
    const std::size_t type = reader.choice(4);
    const std::uint64_t hint = reader.number();
    const std::string name = reader.text();
    if (type == 0) {
        const auto number = static_cast<std::int64_t>(reader.number());
        require(rgen_createRgenCVariantInt64(name.c_str(), number, hint, &target) == 1, "no value");
    } else if (type == 1) {
        const std::string text = reader.text();
        require(rgen_createRgenCVariantString(name.c_str(), text.c_str(), hint, &target) == 1,
                "no value");
    } else if (type == 2) {
        const std::string bytes = reader.bytes();
        require(rgen_createRgenCVariantByteArray(name.c_str(), toBytes(bytes), bytes.size(), hint,
                                                 &target) == 1,
                "no value");
    } else {
        require(rgen_createRgenCVariantHandle(name.c_str(), &target, hint, &target) == 1,
                "no value");
    }
    const std::uint64_t fixedHint = type == 1 ? RGEN_HINT_GENERIC : RGEN_HINT_DUMP;
    const bool keepsHint = type == 0 || type == 3;
    require(target.hint == (keepsHint ? std::min<std::uint64_t>(hint, 9) : fixedHint),
            "another hint was stored");
    require(target.name.length == name.size() && target.name.data == name, "another name");
}

void replaceText(RgenAnsiString& record, const std::string& text) {
    rgen_freeRgenAnsiString(&record);
    require(rgen_createRgenAnsiString(text.c_str(), &record) == 1 && record.length == text.size(),
            "no text");
}

// Fills every entry of a new set.
void createValues(InputReader& reader, RgenCVariantSet& set) {
    const std::uint64_t count = reader.choice(6);
    if (rgen_createRgenCVariantSet(&set, count) == 0) return;
    std::for_each(set.items, set.items + set.count,
                  [&](RgenCVariant& item) { createAnyValue(reader, item); });
}

void createPairs(InputReader& reader, RgenCAnsiStringPairSet& set) {
    const std::uint64_t count = reader.choice(6);
    if (rgen_createRgenCAnsiStringpairSet(&set, count) == 0) return;
    for (std::uint64_t i = 0; i < set.count; ++i) {
        replaceText(set.keys[i], reader.text());
        replaceText(set.values[i], reader.text());
    }
}

}  // namespace

void CallSequence::fillRequest() {
    static const char* const formats[] = {"html", "txt", "pdf", "", "exe", "../x"};
    switch (reader_.choice(6)) {
        case 0:
            rgen_freeRgenCVariantSet(&input_.variants);
            input_.variants = {};
            createValues(reader_, input_.variants);
            break;
        case 1:
            rgen_freeRgenCAnsiStringSet(&input_.pairs);
            input_.pairs = {};
            createPairs(reader_, input_.pairs);
            break;
        case 2:
            input_.outputMode = reader_.choice(8) == 0 ? reader_.number() : reader_.choice(3);
            break;
        case 3:
            replaceText(input_.outputFormat, formats[reader_.choice(std::size(formats))]);
            break;
        case 4:
            replaceText(input_.outputPath, path());
            break;
        default:
            rgen_freeRgenCInputParams(&input_);
            break;
    }
    input_.templateGuid = *guid();
    // No program is started.
    input_.skipExternalConversion = 1;
}

void CallSequence::createSets() {
    require(rgen_createRgenCVariantSet(nullptr, 1) == 0, "a set at a null record");
    require(rgen_createRgenCAnsiStringpairSet(nullptr, 1) == 0, "a set at a null record");
    rgen_freeRgenCVariantSet(&values_);
    rgen_freeRgenCAnsiStringSet(&pairs_);
    values_ = {};
    pairs_ = {};
    if (reader_.choice(8) == 0) {
        const std::uint64_t count = overflowing + reader_.number() % overflowing;
        require(rgen_createRgenCVariantSet(&values_, count) == 0 && values_.count == 0 &&
                    values_.items == nullptr,
                "a set beyond all memory");
        require(rgen_createRgenCAnsiStringpairSet(&pairs_, count) == 0 && pairs_.count == 0 &&
                    pairs_.keys == nullptr && pairs_.values == nullptr,
                "pairs beyond all memory");
        return;
    }
    createValues(reader_, values_);
    createPairs(reader_, pairs_);
}

void CallSequence::createTexts() {
    replaceText(text_, reader_.text());
    rgen_freeRgenByteArray(&bytes_);
    const std::string bytes = reader_.bytes();
    require(rgen_createRgenByteArray(toBytes(bytes), bytes.size(), &bytes_) == 1 &&
                bytes_.size == bytes.size(),
            "no bytes");
}

void CallSequence::createValue() {
    rgen_freeRgenCVariant(&value_);
    createAnyValue(reader_, value_);
    require(rgen_createRgenCVariantInt64("n", 0, 0, nullptr) == 0 &&
                rgen_createRgenCVariantHandle("n", nullptr, 0, nullptr) == 0 &&
                rgen_createRgenCVariantString("n", "t", 0, nullptr) == 0 &&
                rgen_createRgenCVariantByteArray("n", nullptr, 0, 0, &value_) == 0,
            "a value at a null record, or of null bytes");
}

// Freeing twice is allowed: the first call empties the record.
void CallSequence::freeRecords() {
    switch (reader_.choice(8)) {
        case 0:
            rgen_freeRgenAnsiString(&text_);
            break;
        case 1:
            rgen_freeRgenByteArray(&bytes_);
            break;
        case 2:
            rgen_freeRgenCVariant(&value_);
            break;
        case 3:
            rgen_freeRgenCVariantSet(&values_);
            break;
        case 4:
            rgen_freeRgenCAnsiStringSet(&pairs_);
            break;
        case 5:
            rgen_freeRgenCInputParams(&input_);
            break;
        case 6:
            rgen_freeRgenAnsiString(nullptr);
            rgen_freeRgenByteArray(nullptr);
            rgen_freeRgenCVariant(nullptr);
            rgen_freeRgenCVariantSet(nullptr);
            rgen_freeRgenCAnsiStringSet(nullptr);
            rgen_freeRgenCInputParams(nullptr);
            break;
        default:
            freeAllRecords();
            break;
    }
    input_.skipExternalConversion = 1;
}

void CallSequence::freeAllRecords() {
    rgen_freeRgenAnsiString(&text_);
    rgen_freeRgenByteArray(&bytes_);
    rgen_freeRgenCVariant(&value_);
    rgen_freeRgenCVariantSet(&values_);
    rgen_freeRgenCAnsiStringSet(&pairs_);
    rgen_freeRgenCInputParams(&input_);
}

}  // namespace rgen_fuzz
