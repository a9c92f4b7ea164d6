// A text that is too long is cut between two characters.
//
// SPDX-License-Identifier: MIT
#include "error/error_record.h"

#include <cstddef>
#include <cstdio>
#include <cstring>

#include "status/status_table.h"

namespace rgenh {
namespace {

static_assert(sizeof(RgenhError) == RGENH_ERROR_SIZE, "the constant is the size of the record");

bool continuesCharacter(char byte) noexcept {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// Appends to a null-terminated text in a buffer of that capacity.
void append(char* buffer, std::size_t capacity, std::string_view text) noexcept {
    const std::size_t used = std::strlen(buffer);
    std::size_t length = capacity - 1 - used;
    if (text.size() <= length) {
        length = text.size();
    } else {
        while (length > 0 && continuesCharacter(text[length]))
            --length;
    }
    std::memcpy(buffer + used, text.data(), length);
    buffer[used + length] = '\0';
}

void replaceControlCharacters(char* text) noexcept {
    for (; *text != '\0'; ++text) {
        if (static_cast<unsigned char>(*text) < 0x20 || *text == 0x7F) *text = ' ';
    }
}

}  // namespace

ErrorRecord::ErrorRecord(RgenhError* record) noexcept
    : record_(record), isUsable_(record == nullptr || record->size >= RGENH_ERROR_SIZE) {
    if (!isUsable_) record_ = nullptr;
    if (record_ == nullptr) return;
    record_->kind = RGENH_ERROR_NONE;
    record_->status = RGEN_OK;
    record_->systemError = 0;
    record_->argument = 0;
    record_->entryIsPair = 0;
    record_->entry = RGENH_NO_ENTRY;
    record_->path[0] = '\0';
    record_->message[0] = '\0';
}

RgenStatus ErrorRecord::fail(RgenhErrorKind kind, RgenStatus status) noexcept {
    if (record_ == nullptr) return status;
    record_->kind = kind;
    record_->status = status;
    return status;
}

RgenStatus ErrorRecord::failArgument(int argument) noexcept {
    setArgument(argument);
    return fail(RGENH_ERROR_ARGUMENT, RGEN_E_BAD_PARAMETER);
}

void ErrorRecord::setSystemError(std::int64_t number) noexcept {
    if (record_ != nullptr) record_->systemError = number;
}

void ErrorRecord::setArgument(int argument) noexcept {
    if (record_ != nullptr) record_->argument = argument;
}

void ErrorRecord::setEntry(std::uint64_t entry, bool isPair) noexcept {
    if (record_ == nullptr) return;
    record_->entry = entry;
    record_->entryIsPair = isPair ? 1 : 0;
}

void ErrorRecord::setPath(std::string_view path) noexcept {
    if (record_ == nullptr) return;
    record_->path[0] = '\0';
    append(record_->path, sizeof record_->path, path);
}

ErrorRecord& ErrorRecord::say(std::string_view text) noexcept {
    if (record_ == nullptr) return *this;
    const std::size_t used = std::strlen(record_->message);
    append(record_->message, sizeof record_->message, text);
    replaceControlCharacters(record_->message + used);
    return *this;
}

ErrorRecord& ErrorRecord::sayNumber(std::uint64_t number) noexcept {
    char digits[24] = {};
    std::snprintf(digits, sizeof digits, "%llu", static_cast<unsigned long long>(number));
    return say(digits);
}

void ErrorRecord::sayStatus(std::string_view subject, RgenStatus status) noexcept {
    if (!subject.empty()) say(subject).say(": ");
    char number[16] = {};
    std::snprintf(number, sizeof number, "0x%08X", static_cast<unsigned>(status));
    say(statusText(status)).say(" (").say(number);
    const StatusExplanation* const known = findStatus(status);
    if (known != nullptr) say(" ").say(known->name);
    say(")");
}

}  // namespace rgenh
