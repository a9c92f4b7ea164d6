// The fourteen exports that create and free boundary records. They access their arguments only.
//
// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "strata_repgenlib/rgen.h"

namespace {

/// Allocates at least one byte, so that null always means exhausted memory.
void* allocateBytes(std::uint64_t size) {
    return std::malloc(static_cast<std::size_t>(std::max<std::uint64_t>(size, 1)));
}

/// Zero-filled; a product of count and record size that overflows is an allocation failure.
template <typename Record>
Record* allocateRecords(std::uint64_t count) {
    return static_cast<Record*>(std::calloc(static_cast<std::size_t>(count), sizeof(Record)));
}

void freeTexts(RgenAnsiString*& texts, std::uint64_t count) {
    if (texts == nullptr) return;
    for (std::uint64_t i = 0; i < count; ++i)
        rgen_freeRgenAnsiString(&texts[i]);
    std::free(texts);
    texts = nullptr;
}

/// Sets name, type and hint; the value is zero.
void startVariant(RgenCVariant& target, const char* name, RgenVariantType type,
                  std::uint64_t hint) {
    target = {};
    rgen_createRgenAnsiString(name, &target.name);
    target.type = type;
    target.hint = hint;
}

/// On purpose: a hint after the last known one is stored as the number that follows the last one.
std::uint64_t storedHint(std::uint64_t hint) {
    constexpr std::uint64_t hintCount = RGEN_HINT_DUMP + 1;
    return std::min(hint, hintCount);
}

}  // namespace

int32_t rgen_createRgenAnsiString(const char* text, RgenAnsiString* target) {
    const std::size_t length = std::strlen(text);
    *target = {};
    target->data = static_cast<char*>(allocateBytes(length + 1));
    if (target->data == nullptr) return 0;
    std::memcpy(target->data, text, length + 1);
    // On purpose: only the low 32 bits of the length are stored, the whole text is copied.
    target->length = static_cast<std::uint32_t>(length);
    return 1;
}

int32_t rgen_createRgenByteArray(const uint8_t* bytes, uint64_t size, RgenByteArray* target) {
    *target = {};
    target->data = static_cast<std::uint8_t*>(allocateBytes(size));
    if (target->data == nullptr) return 0;
    if (size > 0) std::memcpy(target->data, bytes, static_cast<std::size_t>(size));
    // On purpose: only the low 32 bits of the count are stored, all bytes are copied.
    target->size = static_cast<std::uint32_t>(size);
    return 1;
}

int32_t rgen_createRgenCAnsiStringpairSet(RgenCAnsiStringPairSet* target, uint64_t count) {
    if (target == nullptr || count == 0) return 0;
    *target = {};
    auto* keys = allocateRecords<RgenAnsiString>(count);
    auto* values = allocateRecords<RgenAnsiString>(count);
    if (keys == nullptr || values == nullptr) {
        std::free(keys);
        std::free(values);
        return 0;
    }
    *target = {keys, values, count};
    return 1;
}

int32_t rgen_createRgenCVariantSet(RgenCVariantSet* target, uint64_t count) {
    if (target == nullptr || count == 0) return 0;
    *target = {};
    target->items = allocateRecords<RgenCVariant>(count);
    if (target->items == nullptr) return 0;
    target->count = count;
    return 1;
}

int32_t rgen_createRgenCVariantInt64(const char* name, int64_t value, uint64_t hint,
                                     RgenCVariant* target) {
    if (target == nullptr) return 0;
    startVariant(*target, name, RGEN_TYPE_INT64, storedHint(hint));
    target->value.int64Value = value;
    return 1;
}

int32_t rgen_createRgenCVariantHandle(const char* name, void* handle, uint64_t hint,
                                      RgenCVariant* target) {
    if (target == nullptr) return 0;
    startVariant(*target, name, RGEN_TYPE_HANDLE, storedHint(hint));
    target->value.handleValue = handle;
    return 1;
}

int32_t rgen_createRgenCVariantString(const char* name, const char* text, uint64_t /*hint*/,
                                      RgenCVariant* target) {
    if (target == nullptr) return 0;
    // On purpose: the hint argument is ignored, a text is always Generic.
    startVariant(*target, name, RGEN_TYPE_STRING, RGEN_HINT_GENERIC);
    // On purpose: if memory is exhausted, a value without its name still counts as created, a value
    // without its text does not.
    return rgen_createRgenAnsiString(text, &target->value.stringValue);
}

int32_t rgen_createRgenCVariantByteArray(const char* name, const uint8_t* bytes, uint64_t size,
                                         uint64_t /*hint*/, RgenCVariant* target) {
    if (target == nullptr || bytes == nullptr) return 0;
    // On purpose: the hint argument is ignored, bytes are always a Dump.
    startVariant(*target, name, RGEN_TYPE_BYTE_ARRAY, RGEN_HINT_DUMP);
    return rgen_createRgenByteArray(bytes, size, &target->value.byteArrayValue);
}

void rgen_freeRgenAnsiString(RgenAnsiString* record) {
    if (record == nullptr) return;
    std::free(record->data);
    *record = {};
}

void rgen_freeRgenByteArray(RgenByteArray* record) {
    if (record == nullptr) return;
    std::free(record->data);
    *record = {};
}

void rgen_freeRgenCVariant(RgenCVariant* record) {
    if (record == nullptr) return;
    rgen_freeRgenAnsiString(&record->name);
    switch (record->type) {
        case RGEN_TYPE_STRING:
            rgen_freeRgenAnsiString(&record->value.stringValue);
            break;
        case RGEN_TYPE_BYTE_ARRAY:
            rgen_freeRgenByteArray(&record->value.byteArrayValue);
            break;
        default:
            // On purpose: a handle is set to zero, not closed.
            record->value.int64Value = 0;
            break;
    }
    record->type = RGEN_TYPE_EMPTY;
    record->hint = RGEN_HINT_UNINITIALIZED;
}

void rgen_freeRgenCVariantSet(RgenCVariantSet* set) {
    // On purpose: if items is null, count is unchanged.
    if (set == nullptr || set->items == nullptr) return;
    for (std::uint64_t i = 0; i < set->count; ++i)
        rgen_freeRgenCVariant(&set->items[i]);
    std::free(set->items);
    *set = {};
}

void rgen_freeRgenCAnsiStringSet(RgenCAnsiStringPairSet* set) {
    if (set == nullptr) return;
    freeTexts(set->keys, set->count);
    freeTexts(set->values, set->count);
    set->count = 0;
}

void rgen_freeRgenCInputParams(RgenCInputParams* input) {
    if (input == nullptr) return;
    rgen_freeRgenCVariantSet(&input->variants);
    rgen_freeRgenCAnsiStringSet(&input->pairs);
    rgen_freeRgenAnsiString(&input->outputFormat);
    rgen_freeRgenAnsiString(&input->outputPath);
    rgen_freeRgenAnsiString(&input->converterBaseArg);
    std::memset(input, 0, sizeof *input);
}
