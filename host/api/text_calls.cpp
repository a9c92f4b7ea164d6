// Texts, GUIDs, times and pdf files.
//
// SPDX-License-Identifier: MIT
#include <new>
#include <optional>
#include <string>

#include "api/call_checks.h"
#include "error/failures.h"
#include "pdf/pdf_check.h"
#include "request/host_text.h"
#include "request/request.h"
#include "strata_repgenlib/rgen_host.h"
#include "text/calendar_time.h"
#include "text/character_check.h"
#include "text/escaping.h"
#include "text/guid_text.h"
#include "text/references.h"

using namespace rgenh;

namespace {

RgenStatus createText(const std::string& text, RgenAnsiString& target) {
    if (text.size() > longestSize) throw std::bad_alloc();
    RgenAnsiString created = {};
    if (rgen_createRgenAnsiString(text.c_str(), &created) == 0) throw std::bad_alloc();
    target = created;
    return RGEN_OK;
}

void requireOneOf(std::uint64_t number, std::uint64_t last, const char* message, int argument) {
    if (number > last) throw ArgumentError(message, argument, ArgumentError::noEntry);
}

void requireForm(std::uint64_t form, int argument) {
    requireOneOf(form, RGENH_MARKUP, "form is not one of RgenhTextForm", argument);
}

std::string escapedFor(std::string_view text, std::uint64_t form, std::uint64_t use) {
    const bool isMarkup = form == RGENH_MARKUP;
    if (use == RGENH_FOR_PERSISTENT_DATA) return isMarkup ? storedMarkup(text) : storedText(text);
    if (isMarkup) return std::string(text);
    return escaped(text);
}

std::string escapedTranslation(std::string_view original, std::string_view translation,
                               std::uint64_t form) {
    if (original == translation) return std::string(translation);
    return form == RGENH_MARKUP ? checkedMarkup(translation)
                                : translationMarkup(original, translation);
}

void requireStorable(std::string_view text, std::uint64_t form) {
    const std::optional<InvalidCharacter> invalid = findInvalidCharacter(text);
    if (invalid) {
        throw ArgumentError("the text contains " + invalid->name + " at byte " +
                            std::to_string(invalid->offset));
    }
    static_cast<void>(escapedFor(text, form, RGENH_FOR_PERSISTENT_DATA));
}

}  // namespace

extern "C" {

RgenStatus RGEN_CALL rgenh_escapeText(const char* text, uint64_t size, uint64_t form, uint64_t use,
                                      RgenAnsiString* target, RgenhError* error) noexcept {
    return guarded(error, [&](ErrorRecord& record) -> RgenStatus {
        if (isNull({target, "target"}, 5, record)) return RGEN_E_BAD_PARAMETER;
        requireForm(form, 3);
        requireOneOf(use, RGENH_FOR_PERSISTENT_DATA, "use is not one of RgenhTextUse", 4);
        record.setArgument(1);
        const std::string content = escapedFor(hostText(text, size, "text"), form, use);
        record.setArgument(0);
        return createText(content, *target);
    });
}

RgenStatus RGEN_CALL rgenh_escapeTranslation(const char* original, const char* translation,
                                             uint64_t size, uint64_t form, RgenAnsiString* target,
                                             RgenhError* error) noexcept {
    return guarded(error, [&](ErrorRecord& record) -> RgenStatus {
        if (hasNull({{original, "original"}}, record)) return RGEN_E_BAD_PARAMETER;
        if (isNull({target, "target"}, 5, record)) return RGEN_E_BAD_PARAMETER;
        requireForm(form, 4);
        record.setArgument(2);
        const std::string_view text = hostText(translation, size, "translation");
        const std::string content = escapedTranslation(original, text, form);
        record.setArgument(0);
        return createText(content, *target);
    });
}

RgenStatus RGEN_CALL rgenh_unescapeText(const char* content, uint64_t size, RgenAnsiString* target,
                                        RgenhError* error) noexcept {
    return guarded(error, [&](ErrorRecord& record) -> RgenStatus {
        if (isNull({target, "target"}, 3, record)) return RGEN_E_BAD_PARAMETER;
        return createText(withoutReferences(hostText(content, size, "content", 1)), *target);
    });
}

int32_t RGEN_CALL rgenh_isStorable(const char* text, uint64_t size, uint64_t form,
                                   RgenhError* error) noexcept {
    bool isText = false;
    const RgenStatus status = guarded(error, [&](ErrorRecord& record) -> RgenStatus {
        if (size != 0 && isNull({text, "text"}, 1, record)) return RGEN_E_BAD_PARAMETER;
        requireForm(form, 3);
        isText = true;
        record.setArgument(1);
        requireStorable(hostText(text, size, "text"), form);
        record.setArgument(0);
        return 1;
    });
    return status == RGEN_E_BAD_PARAMETER && isText ? 0 : status;
}

RgenStatus RGEN_CALL rgenh_parseGuid(const char* text, uint64_t size, RgenGuid* guid,
                                     RgenhError* error) noexcept {
    return guarded(error, [&](ErrorRecord& record) -> RgenStatus {
        if (isNull({guid, "guid"}, 3, record)) return RGEN_E_BAD_PARAMETER;
        *guid = requiredGuid(hostText(text, size, "text", 1), 1);
        return RGEN_OK;
    });
}

RgenStatus RGEN_CALL rgenh_formatGuid(const RgenGuid* guid, char* text,
                                      RgenhError* error) noexcept {
    return guarded(error, [&](ErrorRecord& record) -> RgenStatus {
        if (hasNull({{guid, "guid"}, {text, "text"}}, record)) return RGEN_E_BAD_PARAMETER;
        const GuidText formatted(*guid);
        const std::string_view letters = formatted;
        text[letters.copy(text, RGENH_GUID_TEXT_SIZE - 1)] = '\0';
        return RGEN_OK;
    });
}

RgenStatus RGEN_CALL rgenh_parseTime(const char* text, uint64_t size, int64_t* seconds,
                                     RgenhError* error) noexcept {
    return guarded(error, [&](ErrorRecord& record) -> RgenStatus {
        if (isNull({seconds, "seconds"}, 3, record)) return RGEN_E_BAD_PARAMETER;
        record.setArgument(1);
        *seconds = parseTime(hostText(text, size, "text"));
        record.setArgument(0);
        return RGEN_OK;
    });
}

RgenStatus RGEN_CALL rgenh_verifyPdf(const char* path, RgenhError* error) noexcept {
    const PassedText texts[] = {{1, "path", path}, {}};
    return guarded(error, texts, [&](ErrorRecord& record) -> RgenStatus {
        if (hasNull({{path, "path"}}, record)) return RGEN_E_BAD_PARAMETER;
        verifyPdf(path);
        return RGEN_OK;
    });
}
}
