// What is written to a record is UTF-8 and is cut between two characters, whatever a host passed.
//
// SPDX-License-Identifier: MIT
#include "error/error_record.h"

#include <cstddef>
#include <cstdio>
#include <cstring>

#include "status/status_table.h"
#include "text/character_check.h"

namespace rgenh {
namespace {

static_assert(sizeof(RgenhError) == RGENH_ERROR_SIZE, "the constant is the size of the record");

/// Longer subjects are cut, so that the message has room for what went wrong.
constexpr std::size_t longestSubject = RGENH_MESSAGE_SIZE / 2;

/// Control characters, and characters at which programs begin a new line.
bool breaksLine(std::uint32_t codePoint) noexcept {
    return codePoint < 0x20 || (codePoint >= 0x7F && codePoint < 0xA0) || codePoint == 0x2028 ||
           codePoint == 0x2029;
}

std::string_view asIs(std::string_view text, const LeadingCharacter& character) noexcept {
    return character.codePoint ? text.substr(0, character.length) : "\xEF\xBF\xBD";
}

std::string_view onOneLine(std::string_view text, const LeadingCharacter& character) noexcept {
    return character.codePoint && breaksLine(*character.codePoint) ? " " : asIs(text, character);
}

/// Appends to a null-terminated text in a buffer of that capacity. `shown` returns what is written
/// for the first character of a text.
template <typename Shown>
void append(char* buffer, std::size_t capacity, std::string_view text, Shown shown) noexcept {
    std::size_t used = std::strlen(buffer);
    while (!text.empty()) {
        const LeadingCharacter character = leadingCharacter(text);
        const std::string_view part = shown(text, character);
        if (part.size() >= capacity - used) break;
        std::memcpy(buffer + used, part.data(), part.size());
        used += part.size();
        text.remove_prefix(character.length);
    }
    buffer[used] = '\0';
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
    append(record_->path, sizeof record_->path, path, asIs);
}

ErrorRecord& ErrorRecord::say(std::string_view text) noexcept {
    if (record_ == nullptr) return *this;
    append(record_->message, sizeof record_->message, text, onOneLine);
    return *this;
}

ErrorRecord& ErrorRecord::saySubject(std::string_view subject) noexcept {
    if (subject.size() <= longestSubject) return say(subject).say(": ");
    return say(subject.substr(0, longestSubject)).say("...: ");
}

void ErrorRecord::sayStatus(std::string_view subject, RgenStatus status) noexcept {
    if (!subject.empty()) saySubject(subject);
    char number[16] = {};
    std::snprintf(number, sizeof number, "0x%08X", static_cast<unsigned>(status));
    say(statusText(status)).say(" (").say(number);
    const StatusExplanation* const known = findStatus(status);
    if (known != nullptr) say(" ").say(known->name);
    say(")");
}

}  // namespace rgenh
