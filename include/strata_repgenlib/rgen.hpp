/*
 * strata_repgenlib for C++17 and later: RAII types, exceptions and containers on top of rgen.h.
 * Header-only: it needs this header, rgen.h and the library.
 *
 *     namespace repgen = strata::repgen;
 *
 *     constexpr repgen::Guid acquisition("5a0c6f1e-3b74-4e59-9d21-7c8e0f6a41b2");
 *     repgen::Generator generator("reports");
 *     repgen::Request request{acquisition, "html"};
 *     request.values["Device"] = "Disk 1 & 2";
 *     request.values["Capacity"] = {500107862016, repgen::Hint::Size};
 *     request.values["Started"] = std::chrono::system_clock::now();
 *     generator.generateFile(request, "report.html");
 *
 * The contract of rgen.h holds; comments below refer to its headings. This header adds:
 *
 * TEXTS
 *   Texts are UTF-8, passed as any type that converts to std::string_view; from C++20 on also as
 *   char8_t texts. A text appears in a report unchanged: this header escapes "&" for the library,
 *   in persistent data twice. Text::markup() switches the escaping off for one text, which is then
 *   XML content in the sense of rgen.h. A text, name or path that contains a zero byte throws
 *   std::invalid_argument, since the library would cut it there.
 *
 * PATHS
 *   A Path is constructed from a std::filesystem::path or from a text, which is UTF-8 on every
 *   system. A relative path, that of the data directory included, is resolved against the current
 *   folder at the time of each call.
 *
 * ERRORS
 *   Every failure is an exception. A negative status becomes a StatusError, a conversion that
 *   produced no valid pdf a ConversionError. An exception of a translator leaves the generating
 *   call. The exceptions of the library itself (see EXCEPTIONS in rgen.h: std::bad_alloc,
 *   std::range_error, std::runtime_error and classes derived from it) pass through if host and
 *   library are built with the same compiler family: GCC or Clang with libstdc++ on Linux,
 *   MinGW-w64 on Windows. With another compiler on Windows they terminate the process. After any
 *   exception nothing has leaked and the generator can still be used.
 *
 * THREADS
 *   Several threads may use a Generator at once, as they may its handle; moving, destroying and
 *   assigning it requires that no other thread uses it. All other objects are plain values.
 *
 * SPDX-License-Identifier: MIT
 */
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <fstream>
#include <functional>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>
#include <thread>
#include <tuple>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "strata_repgenlib/rgen.h"

namespace strata::repgen {

/** The bytes of a value or of a report. */
using Bytes = std::vector<std::uint8_t>;

/** How a 64-bit integer is shown in a report; the numbers are those of RgenHint. */
enum class Hint : std::uint64_t {
    Uninitialized = RGEN_HINT_UNINITIALIZED, /**< Counts as Generic. */
    Generic = RGEN_HINT_GENERIC,             /**< Signed decimal. */
    Time = RGEN_HINT_TIME,                   /**< Seconds since 1970 UTC, as local "23:59:59". */
    Date = RGEN_HINT_DATE,                   /**< Same, local date " 1.01.1970". */
    DateTime = RGEN_HINT_DATE_TIME,          /**< Same, " 1.01.1970 23:59:59". */
    Size = RGEN_HINT_SIZE,                   /**< Signed decimal. */
    Address = RGEN_HINT_ADDRESS,             /**< "0x" and lower-case hexadecimal digits. */
    Speed = RGEN_HINT_SPEED,                 /**< Signed decimal. */
    Dump = RGEN_HINT_DUMP                    /**< Bytes that the library returns. */
};

/** The type of a Value; the numbers are those of RgenVariantType. */
enum class ValueType : std::uint64_t {
    Integer = RGEN_TYPE_INT64,
    Text = RGEN_TYPE_STRING,
    ByteArray = RGEN_TYPE_BYTE_ARRAY,
    Handle = RGEN_TYPE_HANDLE
};

/** Whether a text is to be escaped (Plain) or is XML content already (Markup). */
enum class TextForm { Plain, Markup };

/* ---- Statuses ------------------------------------------------------------------------------- */

/**
 * The symbolic name of a status, as in rgen_status.h.
 *
 * @param status  Any number.
 * @return        "RGEN_OK", "RGEN_E_BAD_PARAMETER" and so on; empty for a number without a name.
 *
 * Threads: any. Exceptions: none.
 */
inline std::string_view statusName(RgenStatus status) noexcept {
    struct Entry {
        RgenStatus status;
        std::string_view name;
    };
    static constexpr Entry entries[] = {
        {RGEN_OK, "RGEN_OK"},
        {RGEN_E_BAD_PARAMETER, "RGEN_E_BAD_PARAMETER"},
        {RGEN_E_DIR_NOT_FOUND, "RGEN_E_DIR_NOT_FOUND"},
        {RGEN_E_CREATE_DIR, "RGEN_E_CREATE_DIR"},
        {RGEN_E_CREATE_CONFIG, "RGEN_E_CREATE_CONFIG"},
        {RGEN_E_OPEN_CONFIG, "RGEN_E_OPEN_CONFIG"},
        {RGEN_E_OPEN_PERSIST, "RGEN_E_OPEN_PERSIST"},
        {RGEN_E_EMPTY_INPUT, "RGEN_E_EMPTY_INPUT"},
        {RGEN_E_GUID_NOT_IN_CONFIG, "RGEN_E_GUID_NOT_IN_CONFIG"},
        {RGEN_E_TEMPLATE_NOT_FOUND, "RGEN_E_TEMPLATE_NOT_FOUND"},
        {RGEN_E_UNKNOWN_FORMAT, "RGEN_E_UNKNOWN_FORMAT"},
        {RGEN_E_OVERWRITE_OUTPUT, "RGEN_E_OVERWRITE_OUTPUT"},
        {RGEN_E_CREATE_OUTPUT, "RGEN_E_CREATE_OUTPUT"},
        {RGEN_E_WRITE_OUTPUT, "RGEN_E_WRITE_OUTPUT"},
        {RGEN_E_UNKNOWN_OUTPUT_MODE, "RGEN_E_UNKNOWN_OUTPUT_MODE"},
        {RGEN_E_WRITE_ALL_OUTPUT, "RGEN_E_WRITE_ALL_OUTPUT"},
        {RGEN_E_DELETE_PERSIST, "RGEN_E_DELETE_PERSIST"},
        {RGEN_E_CREATE_PERSIST, "RGEN_E_CREATE_PERSIST"},
        {RGEN_E_RUN_EXTERNAL, "RGEN_E_RUN_EXTERNAL"},
        {RGEN_E_EXTERNAL_FAILED, "RGEN_E_EXTERNAL_FAILED"},
        {RGEN_E_OPEN_SIMULATION, "RGEN_E_OPEN_SIMULATION"},
        {RGEN_E_DELETE_DUMP, "RGEN_E_DELETE_DUMP"},
        {RGEN_E_XPATH_DOCUMENT, "RGEN_E_XPATH_DOCUMENT"},
        {RGEN_E_XPATH_CONTEXT, "RGEN_E_XPATH_CONTEXT"},
        {RGEN_E_XPATH_SEARCH, "RGEN_E_XPATH_SEARCH"},
        {RGEN_E_NO_PERSIST_IN_CONFIG, "RGEN_E_NO_PERSIST_IN_CONFIG"},
        {RGEN_E_XPATH_NOT_NODE, "RGEN_E_XPATH_NOT_NODE"},
        {RGEN_E_XPATH_NODE_EMPTY, "RGEN_E_XPATH_NODE_EMPTY"},
        {RGEN_E_NO_TYPE_MAP, "RGEN_E_NO_TYPE_MAP"},
        {RGEN_E_NO_VALID_TYPE_MAP, "RGEN_E_NO_VALID_TYPE_MAP"},
        {RGEN_E_NO_PERSIST_VALUES, "RGEN_E_NO_PERSIST_VALUES"},
        {RGEN_E_NO_VALID_PERSIST_VALUES, "RGEN_E_NO_VALID_PERSIST_VALUES"},
        {RGEN_E_XSLT_PARSE, "RGEN_E_XSLT_PARSE"},
        {RGEN_E_XSLT_APPLY, "RGEN_E_XSLT_APPLY"},
        {RGEN_E_XSLT_RESULT, "RGEN_E_XSLT_RESULT"},
        {RGEN_E_UNKNOWN, "RGEN_E_UNKNOWN"},
        {RGEN_CANCELED, "RGEN_CANCELED"},
    };
    for (const Entry& entry : entries) {
        if (entry.status == status) return entry.name;
    }
    return {};
}

/**
 * A failure that the library reported. An example of what(): "report.html: Template is not found in
 * folder (0xC0000009 RGEN_E_TEMPLATE_NOT_FOUND)".
 */
class StatusError : public std::runtime_error {
public:
    /**
     * @param subject  The file or report type of the call, for what().
     * @param status   The status.
     * @param text     The library's description of it, valid as long as the library is loaded; see
     *                 Generator::statusText.
     */
    StatusError(std::string_view subject, RgenStatus status, const char* text)
        : std::runtime_error(message(subject, status, text)), status_(status), text_(text) {}

    /** The status: negative, one of rgen_status.h. */
    RgenStatus status() const noexcept { return status_; }

    /** Its symbolic name, "RGEN_E_TEMPLATE_NOT_FOUND"; see statusName. */
    std::string_view name() const noexcept { return statusName(status_); }

    /** The library's description in English. */
    std::string_view text() const noexcept { return text_; }

    /** Whether the status is RGEN_CANCELED. */
    bool isCancellation() const noexcept { return name() == "RGEN_CANCELED"; }

private:
    static std::string message(std::string_view subject, RgenStatus status, const char* text) {
        char number[16] = {};
        std::snprintf(number, sizeof number, "0x%08X", static_cast<unsigned>(status));
        const std::string_view name = statusName(status);
        std::string full(subject);
        full.append(": ").append(text).append(" (").append(number);
        if (!name.empty()) full.append(" ").append(name);
        return full + ")";
    }

    RgenStatus status_;
    const char* text_;
};

/** The library reported success, but the converter wrote no pdf or an incomplete one. */
class ConversionError : public std::runtime_error {
public:
    /**
     * @param path     UTF-8 path of the requested file.
     * @param problem  What is wrong with it.
     * @param reason   The converter's message, may be empty.
     */
    ConversionError(const std::string& path, const std::string& problem, std::string reason)
        : std::runtime_error(path + ": " + problem + (reason.empty() ? "" : ": " + reason)),
          reason_(std::make_shared<std::string>(std::move(reason))) {}

    /** The text of "<path>.error.txt"; empty if the converter wrote none. */
    const std::string& reason() const noexcept { return *reason_; }

private:
    std::shared_ptr<const std::string> reason_;
};

/* ---- Implementation ------------------------------------------------------------------------- */

/** Implementation details; not for hosts. */
namespace detail {

template <typename Source>
using ElementOf = std::decay_t<decltype(std::declval<const Source&>()[0])>;

template <typename Letter>
constexpr bool isByte = std::is_same_v<Letter, unsigned char> || std::is_same_v<Letter, std::byte>;

/// char and, from C++20 on, char8_t, which has no name in C++17.
template <typename Letter>
constexpr bool isLetter = std::is_integral_v<Letter> && sizeof(Letter) == 1 && !isByte<Letter> &&
                          !std::is_same_v<Letter, signed char> && !std::is_same_v<Letter, bool>;

template <typename Letter, typename Source, bool = isLetter<Letter>>
constexpr bool isViewable = false;
template <typename Letter, typename Source>
constexpr bool isViewable<Letter, Source, true> =
    std::is_convertible_v<const Source&, std::basic_string_view<Letter>>;

template <typename Source, typename = void>
constexpr bool isText = false;
template <typename Source>
constexpr bool isText<Source, std::void_t<ElementOf<Source>>> =
    isViewable<ElementOf<Source>, Source>;

template <typename Number>
constexpr bool isNumber =
    std::is_integral_v<Number> && !std::is_same_v<Number, bool> && !std::is_same_v<Number, char> &&
    !std::is_same_v<Number, wchar_t> && !std::is_same_v<Number, char16_t> &&
    !std::is_same_v<Number, char32_t> && (!isLetter<Number> || std::is_same_v<Number, signed char>);

template <typename Range, typename = void>
constexpr bool isByteRange = false;
template <typename Range>
constexpr bool isByteRange<Range, std::void_t<decltype(std::data(std::declval<const Range&>())),
                                              decltype(std::size(std::declval<const Range&>()))>> =
    isByte<std::decay_t<decltype(*std::data(std::declval<const Range&>()))>>;

template <typename Range>
using EntryOf = decltype(*std::begin(std::declval<Range&>()));

template <typename Entry>
constexpr bool hasTwoParts = std::tuple_size<std::decay_t<Entry>>::value == 2;

/// A range whose entries have two parts: a name and something that converts to Item. The range is
/// not const, since some views can be iterated only when they are not.
template <typename Range, typename Item, typename = void>
constexpr bool isRangeOf = false;
template <typename Range, typename Item>
constexpr bool isRangeOf<Range, Item,
                         std::void_t<decltype(std::get<1>(std::declval<EntryOf<Range>>())),
                                     decltype(std::end(std::declval<Range&>())),
                                     std::enable_if_t<hasTwoParts<EntryOf<Range>>>>> =
    std::is_convertible_v<decltype(std::get<1>(std::declval<EntryOf<Range>>())), Item>;

template <typename Source>
std::string toUtf8(const Source& source) {
    if constexpr (std::is_pointer_v<Source>) {
        if (source == nullptr) throw std::invalid_argument("a text is a null pointer");
    }
    const std::basic_string_view<ElementOf<Source>> view = source;
    return {reinterpret_cast<const char*>(view.data()), view.size()};
}

/// `Native` is the result type of u8string(). It is a template parameter so that the branch of the
/// other language version is not compiled.
template <typename Native = decltype(std::filesystem::path().u8string())>
std::filesystem::path pathOf(const std::string& utf8) {
    const Native native(utf8.begin(), utf8.end());
    if constexpr (std::is_same_v<Native, std::string>) {
        return std::filesystem::u8path(native);
    } else {
        return std::filesystem::path(native);
    }
}

inline const std::string& withoutZero(const std::string& text, const char* what) {
    if (text.find('\0') == std::string::npos) return text;
    throw std::invalid_argument(std::string(what) + " holds a zero byte");
}

inline std::string replaced(std::string_view text, char letter, std::string_view replacement) {
    std::string result;
    result.reserve(text.size());
    for (const char each : text) {
        if (each == letter) {
            result += replacement;
        } else {
            result += each;
        }
    }
    return result;
}

inline std::string escaped(std::string_view text) {
    return replaced(text, '&', "&amp;");
}

/// A text of a template must not contain "]]>".
inline std::string withoutSectionEnds(std::string text) {
    for (std::size_t at = text.find("]]>"); at != std::string::npos; at = text.find("]]>", at))
        text.replace(at + 2, 1, "&gt;");
    return text;
}

/// Whether XML may contain the character.
constexpr bool isXmlCharacter(std::uint32_t character) noexcept {
    if (character < 0x20) return character == '\t' || character == '\n' || character == '\r';
    const bool isSurrogate = character >= 0xD800 && character <= 0xDFFF;
    return character <= 0x10FFFF && !isSurrogate && character != 0xFFFE && character != 0xFFFF;
}

/// The first character of a text: its bytes, and whether XML may contain it.
struct LeadingCharacter {
    std::size_t length;
    bool isForXml;
};

/// A byte that is not part of valid UTF-8 counts as a character of its own.
inline LeadingCharacter leadingCharacter(std::string_view rest) {
    constexpr std::uint32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const auto byteAt = [rest](std::size_t at) { return static_cast<unsigned char>(rest[at]); };
    const std::uint32_t lead = byteAt(0);
    if (lead < 0x80) return {1, isXmlCharacter(lead)};
    std::size_t length = 2;
    if (lead >= 0xE0) length = lead >= 0xF0 ? 4 : 3;
    if (lead < 0xC0 || lead >= 0xF8 || rest.size() < length) return {1, false};
    std::uint32_t character = lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byteAt(i) & 0xC0U) != 0x80U) return {1, false};
        character = character << 6U | (byteAt(i) & 0x3FU);
    }
    return {length, character >= smallest[length] && isXmlCharacter(character)};
}

/// Replaces characters that XML cannot contain by U+FFFD: a single one of them in persistent data
/// or in a template would make the library lose all references after it.
inline std::string storable(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const LeadingCharacter next = leadingCharacter(text);
        result += next.isForXml ? text.substr(0, next.length) : "\xEF\xBF\xBD";
        text.remove_prefix(next.length);
    }
    return result;
}

/// For persistent data, which the library reads twice. It also removes leading and trailing white
/// space, so that is written as references.
inline std::string escapedTwice(const std::string& text) {
    constexpr std::string_view blanks = " \t\r\n";
    const std::size_t start = (std::min)(text.find_first_not_of(blanks), text.size());
    const std::size_t end = (std::max)(start, text.find_last_not_of(blanks) + 1);
    const auto references = [](std::string_view part) {
        std::string result;
        for (const char blank : part)
            result += "&amp;#" + std::to_string(static_cast<int>(blank)) + ";";
        return result;
    };
    const std::string_view view = text;
    return references(view.substr(0, start)) + escaped(escaped(view.substr(start, end - start))) +
           references(view.substr(end));
}

inline std::string utf8Character(std::uint32_t character) {
    const auto byte = [character](unsigned shift, unsigned mark) {
        return static_cast<char>(mark | ((character >> shift) & 0x3FU));
    };
    if (character < 0x80) return {static_cast<char>(character)};
    if (character < 0x800) return {static_cast<char>(0xC0U | (character >> 6U)), byte(0, 0x80)};
    if (character < 0x10000) {
        return {static_cast<char>(0xE0U | (character >> 12U)), byte(6, 0x80), byte(0, 0x80)};
    }
    return {static_cast<char>(0xF0U | (character >> 18U)), byte(12, 0x80), byte(6, 0x80),
            byte(0, 0x80)};
}

/// The value of a digit of that base, or the base if the character is not such a digit.
constexpr std::uint32_t digitOf(char letter, std::uint32_t base) noexcept {
    std::uint32_t digit = base;
    if (letter >= '0' && letter <= '9') digit = static_cast<std::uint32_t>(letter - '0');
    if (letter >= 'a' && letter <= 'f') digit = static_cast<std::uint32_t>(letter - 'a') + 10;
    if (letter >= 'A' && letter <= 'F') digit = static_cast<std::uint32_t>(letter - 'A') + 10;
    return digit < base ? digit : base;
}

/// The number of "#65" or "#x41", at most 0x110000; nothing if it is not a number.
inline std::optional<std::uint32_t> referencedNumber(std::string_view name) {
    const bool isHex = name.size() > 1 && name[1] == 'x';
    const std::uint32_t base = isHex ? 16 : 10;
    const std::string_view digits = name.substr(isHex ? 2 : 1);
    if (digits.empty()) return std::nullopt;
    std::uint32_t number = 0;
    for (const char letter : digits) {
        const std::uint32_t digit = digitOf(letter, base);
        if (digit == base) return std::nullopt;
        number = (std::min<std::uint32_t>)(number * base + digit, 0x110000);
    }
    return number;
}

/// The character of "#65" or "#x41"; empty if the number is not a character.
inline std::string numericReference(std::string_view name) {
    const std::uint32_t number = referencedNumber(name).value_or(0);
    const bool isSurrogate = number >= 0xD800 && number <= 0xDFFF;
    if (number == 0 || number > 0x10FFFF || isSurrogate) return {};
    return utf8Character(number);
}

inline std::string referencedText(std::string_view name) {
    if (name == "amp") return "&";
    if (name == "lt") return "<";
    if (name == "gt") return ">";
    if (name == "quot") return "\"";
    if (name == "apos") return "'";
    return !name.empty() && name[0] == '#' ? numericReference(name) : std::string();
}

/// The reference at the start of `rest`, such as "&amp;"; empty if there is none.
inline std::string_view referenceAt(std::string_view rest) {
    constexpr std::size_t longestReference = 12;
    const std::size_t end = rest.substr(0, longestReference).find(';');
    return end == std::string_view::npos ? std::string_view() : rest.substr(0, end + 1);
}

/// Replaces the references in XML content by their characters; any other "&" stays.
inline std::string withoutReferences(std::string_view content) {
    std::string text;
    while (!content.empty()) {
        const std::size_t plain = (std::min)(content.find('&'), content.size());
        text += content.substr(0, plain);
        content.remove_prefix(plain);
        const std::string_view reference = referenceAt(content);
        const std::string meant =
            reference.empty() ? "" : referencedText(reference.substr(1, reference.size() - 2));
        const std::size_t read = meant.empty() ? 1 : reference.size();
        text += meant.empty() ? content.substr(0, 1) : std::string_view(meant);
        content.remove_prefix((std::min)(read, content.size()));
    }
    return text;
}

/// The reference at the start of `rest`, such as "&amp;", or "&" alone if there is none.
inline std::string_view ampersandAt(std::string_view rest) {
    const bool isNumeric = rest.size() > 1 && rest[1] == '#';
    const std::size_t nameStart = isNumeric ? 2 : 1;
    const std::size_t end = rest.find_first_of("&;#< \t\r\n", nameStart);
    if (end == std::string_view::npos || rest[end] != ';' || end == nameStart) {
        return rest.substr(0, 1);
    }
    const std::string_view name = rest.substr(1, end - 1);
    return isNumeric && !referencedNumber(name) ? rest.substr(0, 1) : rest.substr(0, end + 1);
}

/// The form in which a document may contain a reference; empty if XML does not know it.
inline std::string heldReference(std::string_view reference) {
    if (reference.size() == 1) return {};
    const std::string_view name = reference.substr(1, reference.size() - 2);
    if (name[0] != '#') return referencedText(name).empty() ? "" : std::string(reference);
    return isXmlCharacter(*referencedNumber(name)) ? std::string(reference) : "&#xFFFD;";
}

/// Replaces each reference in a text, or "&" alone, by the result of `meant`. Its arguments are the
/// reference and the number of bytes from there to the end of the text.
template <typename Meant>
std::string mapAmpersands(std::string_view text, Meant meant) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t start = text.find('&'); start != std::string_view::npos;
         start = text.find('&')) {
        result += text.substr(0, start);
        text.remove_prefix(start);
        const std::string_view reference = ampersandAt(text);
        result += meant(reference, text.size());
        text.remove_prefix(reference.size());
    }
    return result.append(text);
}

/// Returns markup that damages nothing after it; throws for references that XML does not know. For
/// the library a name ends at the next ";", whatever is in between; without one only "&" is lost.
inline std::string checkedMarkup(const std::string& content, const char* what) {
    const std::string text = storable(content);
    const std::size_t lastEnd = text.rfind(';') + 1;
    return mapAmpersands(text, [&](std::string_view reference, std::size_t left) {
        std::string held = heldReference(reference);
        const std::size_t start = text.size() - left;
        const bool isNumeric = left > 1 && text[start + 1] == '#';
        if (!held.empty() || isNumeric || start >= lastEnd) {
            return held.empty() ? std::string(reference) : held;
        }
        const std::size_t length = (std::min<std::size_t>)(80, text.find(';', start) + 1 - start);
        throw std::invalid_argument(std::string(what) + " holds the unknown reference " +
                                    text.substr(start, length));
    });
}

/// Escapes a translation, which becomes part of a template. Markup characters stay only if the
/// original has them, too; nothing in the result can damage the rest of the template.
inline std::string asMarkup(std::string_view original, std::string translation) {
    const auto has = [original](std::string_view part) {
        return original.find(part) != std::string_view::npos;
    };
    translation = storable(translation);
    if (!has("&")) translation = escaped(translation);
    translation = mapAmpersands(translation, [](std::string_view reference, std::size_t /*left*/) {
        const std::string held = heldReference(reference);
        return held.empty() ? "&amp;" + std::string(reference.substr(1)) : held;
    });
    if (!has("<")) translation = replaced(translation, '<', "&lt;");
    if (!has(">")) translation = replaced(translation, '>', "&gt;");
    // If the translation has a CDATA section, its end must stay.
    if (translation.find("<![CDATA[") == std::string::npos) {
        translation = withoutSectionEnds(std::move(translation));
    }
    // A marked text contains double quotes, so an attribute with it is delimited by apostrophes.
    if (!has("'")) translation = replaced(translation, '\'', "&#39;");
    return translation;
}

/// Reads up to `length` bytes of a file from position `start`.
inline std::string partOf(std::ifstream& file, std::streamoff start, std::size_t length) {
    std::string part(length, '\0');
    file.clear();
    file.seekg(start);
    file.read(part.data(), static_cast<std::streamsize>(length));
    part.resize(static_cast<std::size_t>((std::max<std::streamsize>)(0, file.gcount())));
    return part;
}

/// Whether the file begins with "%PDF-" and has "%%EOF" in its last 1024 bytes.
inline bool isWholePdf(std::ifstream& file) {
    constexpr std::size_t searched = 1024;
    file.seekg(0, std::ios::end);
    const std::streamoff size = file.tellg();
    const std::streamoff tail = (std::max<std::streamoff>)(0, size - std::streamoff{searched});
    return partOf(file, 0, 5) == "%PDF-" &&
           partOf(file, tail, searched).find("%%EOF") != std::string::npos;
}

/// Throws for a double quote, which would break the converter's command line, and removes the error
/// text of an earlier conversion, which would be mistaken for one of this conversion. Failure to
/// remove it is ignored.
inline void prepareConversion(const std::string& path, const std::string& base) {
    if (path.find('"') != std::string::npos || base.find('"') != std::string::npos) {
        throw std::invalid_argument("the path or base of a pdf holds a double quote");
    }
    try {
        std::error_code ignored;
        const std::filesystem::path note = pathOf(path + ".error.txt");
        if (std::filesystem::is_regular_file(note, ignored)) {
            std::filesystem::remove(note, ignored);
        }
    } catch (const std::system_error&) {
        // The path is not valid UTF-8, which the library reports.
    }
}

/// Checks the converter's output after a successful generation.
inline void verifyPdf(const std::string& path) {
    constexpr std::size_t longestReason = 65536;
    std::ifstream note(pathOf(path + ".error.txt"), std::ios::binary);
    const bool hasNote = note.is_open();
    std::string reason = hasNote ? partOf(note, 0, longestReason) : std::string();
    while (!reason.empty() && (reason.back() == '\n' || reason.back() == '\r'))
        reason.pop_back();
    std::ifstream file(pathOf(path), std::ios::binary);
    if (!file) throw ConversionError(path, "the converter made no file", reason);
    if (!isWholePdf(file)) {
        throw ConversionError(path, "the converter's file is not a whole pdf", reason);
    }
    // The pdf may be a page about the failure. prepareConversion removed any older error text.
    if (hasNote) throw ConversionError(path, "the converter failed", reason);
}

// The only part that depends on the operating system. The function is declared here so that hosts
// need no system header.
#if defined(_WIN32)
extern "C" __declspec(dllimport) int __stdcall CloseHandle(void* handle);
inline void closeHandle(void* handle) noexcept {
    CloseHandle(handle);
}
#else
extern "C" int close(int descriptor);
inline void closeHandle(void* handle) noexcept {
    close(static_cast<int>(reinterpret_cast<std::intptr_t>(handle)));
}
#endif

inline void release(RgenAnsiString& record) noexcept {
    rgen_freeRgenAnsiString(&record);
}
inline void release(RgenByteArray& record) noexcept {
    rgen_freeRgenByteArray(&record);
}
inline void release(RgenCVariant& record) noexcept {
    rgen_freeRgenCVariant(&record);
}
inline void release(RgenCVariantSet& record) noexcept {
    rgen_freeRgenCVariantSet(&record);
}
inline void release(RgenCAnsiStringPairSet& record) noexcept {
    rgen_freeRgenCAnsiStringSet(&record);
}
inline void release(RgenCInputParams& record) noexcept {
    rgen_freeRgenCInputParams(&record);
}

}  // namespace detail

/* ---- Values --------------------------------------------------------------------------------- */

/**
 * Owns a record of rgen.h and its buffers, for calls that this header does not wrap. The record is
 * zero-filled at first and freed with the matching function of rgen.h. Movable, not copyable.
 *
 *     Owned<RgenCVariant> result;
 *     rgen_generateReport(generator.handle(), &input, result.get());
 */
template <typename Record>
class Owned {
public:
    Owned() noexcept = default;
    ~Owned() { detail::release(record_); }
    Owned(const Owned&) = delete;
    Owned& operator=(const Owned&) = delete;
    /** Moves the content; `other` is empty afterwards. */
    Owned(Owned&& other) noexcept : record_(std::exchange(other.record_, Record{})) {}
    /** Frees the current content, then moves that of `other`. */
    Owned& operator=(Owned&& other) noexcept {
        if (this != &other) {
            detail::release(record_);
            record_ = std::exchange(other.record_, Record{});
        }
        return *this;
    }

    ///@{
    /** Access to the record, which this object still owns. */
    Record* get() noexcept { return &record_; }
    const Record* get() const noexcept { return &record_; }
    Record& operator*() noexcept { return record_; }
    const Record& operator*() const noexcept { return record_; }
    Record* operator->() noexcept { return &record_; }
    const Record* operator->() const noexcept { return &record_; }
    ///@}

private:
    Record record_{};
};

/** A report type's GUID. */
class Guid {
public:
    /** The GUID of zeros. */
    constexpr Guid() noexcept = default;

    /** From a record of rgen.h. */
    constexpr Guid(const RgenGuid& record) noexcept : record_(record) {}

    /**
     * Parses "5a0c6f1e-3b74-4e59-9d21-7c8e0f6a41b2", in upper or lower case, with or without
     * braces. As a constant, constexpr Guid type("..."), an invalid text does not compile.
     *
     * Exceptions: std::invalid_argument for an invalid text.
     */
    constexpr explicit Guid(std::string_view text) : record_{} {
        if (!read(text)) throw std::invalid_argument("this is no GUID");
    }

    /** As the constructor, but returns nullopt for an invalid text. Exceptions: none. */
    static constexpr std::optional<Guid> parse(std::string_view text) noexcept {
        Guid guid;
        return guid.read(text) ? std::optional<Guid>(guid) : std::nullopt;
    }

    /** The 36 characters, in lower case. */
    std::string text() const {
        std::string text(shape);
        std::size_t digit = 0;
        for (char& letter : text) {
            if (letter == 'x') letter = "0123456789abcdef"[nibble(digit++)];
        }
        return text;
    }

    /** The record for functions of rgen.h. */
    constexpr const RgenGuid& record() const noexcept { return record_; }

    ///@{
    /** Compares all 16 bytes. */
    friend bool operator==(const Guid& left, const Guid& right) noexcept {
        return std::memcmp(&left.record_, &right.record_, sizeof left.record_) == 0;
    }
    friend bool operator!=(const Guid& left, const Guid& right) noexcept {
        return !(left == right);
    }
    ///@}
    /** The order of the texts. */
    friend bool operator<(const Guid& left, const Guid& right) noexcept {
        for (std::size_t digit = 0; digit < digits; ++digit) {
            if (left.nibble(digit) != right.nibble(digit)) {
                return left.nibble(digit) < right.nibble(digit);
            }
        }
        return false;
    }

private:
    static constexpr std::string_view shape = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";
    static constexpr std::size_t digits = 32;

    constexpr bool read(std::string_view text) noexcept {
        const bool isInBraces =
            text.size() == shape.size() + 2 && text[0] == '{' && text[text.size() - 1] == '}';
        if (isInBraces) text = text.substr(1, shape.size());
        if (text.size() != shape.size()) return false;
        std::size_t digit = 0;
        for (std::size_t i = 0; i < shape.size(); ++i) {
            const std::uint32_t value = detail::digitOf(text[i], 16);
            if (shape[i] == '-' ? text[i] != '-' : value == 16) return false;
            if (shape[i] == 'x') put(digit++, value);
        }
        return true;
    }

    /// Stores one digit of the text form; digit 0 is the first.
    constexpr void put(std::size_t digit, std::uint32_t value) noexcept {
        if (digit < 8) {
            record_.data1 = record_.data1 * 16U + value;
        } else if (digit < 12) {
            record_.data2 = static_cast<std::uint16_t>(record_.data2 * 16U + value);
        } else if (digit < 16) {
            record_.data3 = static_cast<std::uint16_t>(record_.data3 * 16U + value);
        } else {
            std::uint8_t& byte = record_.data4[(digit - 16) / 2];
            byte = static_cast<std::uint8_t>(byte * 16U + value);
        }
    }

    constexpr std::uint32_t nibble(std::size_t digit) const noexcept {
        if (digit < 8) return record_.data1 >> (4 * (7 - digit)) & 15U;
        if (digit < 12)
            return static_cast<std::uint32_t>(record_.data2) >> (4 * (11 - digit)) & 15U;
        if (digit < 16)
            return static_cast<std::uint32_t>(record_.data3) >> (4 * (15 - digit)) & 15U;
        const std::uint32_t byte = record_.data4[(digit - 16) / 2];
        return (digit % 2 == 0 ? byte >> 4U : byte) & 15U;
    }

    RgenGuid record_{};
};

/** The path of a file or folder; see PATHS. */
class Path {
public:
    /** From a UTF-8 text, or from anything else that converts to std::filesystem::path. */
    template <typename Source, typename = std::enable_if_t<
                                   !std::is_same_v<Source, Path> &&
                                   (detail::isText<Source> ||
                                    std::is_constructible_v<std::filesystem::path, const Source&>)>>
    Path(const Source& source) {
        if constexpr (detail::isText<Source>) {
            utf8_ = detail::toUtf8(source);
        } else {
            utf8_ = detail::toUtf8(std::filesystem::path(source).u8string());
        }
        detail::withoutZero(utf8_, "a path");
    }

    Path(std::nullptr_t) = delete;

    /** The path in UTF-8, as it is passed to the library. */
    const std::string& utf8() const noexcept { return utf8_; }

    /** The path as std::filesystem::path. */
    std::filesystem::path native() const { return detail::pathOf(utf8_); }

private:
    std::string utf8_;
};

/** A text of a value, pair or persistent entry; see TEXTS. */
class Text {
public:
    Text() = default;

    /** A plain text, which appears in the report unchanged. */
    template <typename Source, typename = std::enable_if_t<detail::isText<Source>>>
    Text(const Source& plain) : content_(detail::toUtf8(plain)) {}

    Text(std::nullptr_t) = delete;

    /**
     * XML content, passed to the library unchanged: "&#8364;" is a euro sign, a plain "&" is lost.
     * Persistent data is read twice, see TEXTS in rgen.h.
     */
    template <typename Source, typename = std::enable_if_t<detail::isText<Source>>>
    static Text markup(const Source& content) {
        Text text(content);
        text.form_ = TextForm::Markup;
        return text;
    }

    /** The text, not escaped. */
    const std::string& content() const noexcept { return content_; }
    /** Plain or Markup. */
    TextForm form() const noexcept { return form_; }

    ///@{
    /** Compares content and form. */
    friend bool operator==(const Text& left, const Text& right) noexcept {
        return left.content_ == right.content_ && left.form_ == right.form_;
    }
    friend bool operator!=(const Text& left, const Text& right) noexcept {
        return !(left == right);
    }
    ///@}

private:
    std::string content_;
    TextForm form_ = TextForm::Plain;
};

/**
 * A typed value: text, integer, time, bytes or handle.
 *
 *     Value("text")                      Value(42)
 *     Value(4096, Hint::Address)         Value(std::chrono::system_clock::now())
 *     Value(Bytes{1, 2})                 Value::handle(pointer)
 *     Value(Text::markup("&#8364;"))
 *
 * A bool or a single character does not convert to Value: neither has a display form.
 */
class Value {
public:
    /** The empty text. */
    Value() = default;

    /** A text in either form. */
    Value(Text text) : content_(std::move(text)) {}

    /** A plain text, which appears in the report unchanged. */
    template <typename Source, std::enable_if_t<detail::isText<Source>, int> = 0>
    Value(const Source& text) : content_(Text(text)) {}

    Value(std::nullptr_t) = delete;

    /**
     * An integer of any width.
     *
     * Exceptions: std::out_of_range for numbers above 2^63 - 1, except with Hint::Address, which
     * shows the bits of the number.
     */
    template <typename Number, std::enable_if_t<detail::isNumber<Number>, int> = 0>
    Value(Number number, Hint hint = Hint::Generic)
        : content_(toInteger(number, hint)), hint_(hint) {}

    /** A point in time, shown as local date and time, or as one of them by Hint::Date or Time. */
    template <typename Duration>
    Value(std::chrono::time_point<std::chrono::system_clock, Duration> moment,
          Hint hint = Hint::DateTime)
        : content_(std::int64_t{
              std::chrono::floor<std::chrono::seconds>(moment).time_since_epoch().count()}),
          hint_(hint) {}

    /** Bytes: a vector, array, span or view of std::uint8_t or std::byte; they are copied. */
    template <typename Range, std::enable_if_t<detail::isByteRange<Range>, char> = 0>
    Value(const Range& bytes)
        : content_(toBytes(std::data(bytes), std::size(bytes))), hint_(Hint::Dump) {}

    /** A handle. Reports, dumps and persistent data do not contain it; it is never closed. */
    static Value handle(void* handle, Hint hint = Hint::Generic) {
        Value value;
        value.content_ = handle;
        value.hint_ = hint;
        return value;
    }

    /** The type of the content. */
    ValueType type() const noexcept {
        constexpr ValueType types[] = {ValueType::Text, ValueType::Integer, ValueType::ByteArray,
                                       ValueType::Handle};
        return types[content_.index()];
    }
    /** For a text always Generic, for bytes Dump. */
    Hint hint() const noexcept { return hint_; }

    ///@{
    /** The content. Exceptions: std::bad_variant_access if the value has another type. */
    std::int64_t integer() const { return std::get<std::int64_t>(content_); }
    const std::string& text() const { return std::get<Text>(content_).content(); }
    const Text& markedText() const { return std::get<Text>(content_); }
    const Bytes& bytes() const { return std::get<Bytes>(content_); }
    void* handle() const { return std::get<void*>(content_); }
    ///@}

    ///@{
    /** Compares content and hint. */
    friend bool operator==(const Value& left, const Value& right) {
        return left.content_ == right.content_ && left.hint_ == right.hint_;
    }
    friend bool operator!=(const Value& left, const Value& right) { return !(left == right); }
    ///@}

private:
    template <typename Number>
    static std::int64_t toInteger(Number number, Hint hint) {
        constexpr auto greatest =
            static_cast<std::uint64_t>((std::numeric_limits<std::int64_t>::max)());
        if constexpr (std::is_unsigned_v<Number>) {
            if (std::uint64_t{number} > greatest && hint != Hint::Address) {
                throw std::out_of_range("the number does not fit into 64 bits with a sign");
            }
        }
        return static_cast<std::int64_t>(number);
    }

    template <typename Byte>
    static Bytes toBytes(const Byte* bytes, std::size_t size) {
        const auto* const start = reinterpret_cast<const std::uint8_t*>(bytes);
        return size == 0 ? Bytes() : Bytes(start, start + size);
    }

    std::variant<Text, std::int64_t, Bytes, void*> content_;
    Hint hint_ = Hint::Generic;
};

/**
 * Named items, sorted by name: the Values and Texts of a request. Of two items with the same name
 * the later is used. Names are plain texts.
 *
 *     Values values = {{"Device", "Disk 1"}, {"Size", {512, Hint::Size}}};
 *     values["Sector"] = bytes;
 *     values.add(std::map<std::string, int>{{"Heads", 16}, {"Cylinders", 1024}});
 */
template <typename Item>
class Named {
public:
    /** The underlying container. */
    using Map = std::map<std::string, Item, std::less<>>;
    /** A name and its item. */
    using Entry = std::pair<std::string, Item>;

    Named() = default;

    /** From a list of entries. */
    Named(std::initializer_list<Entry> entries) { add(entries); }

    /** From any range of pairs: a name and something that converts to Item. */
    template <typename Range, std::enable_if_t<!std::is_same_v<std::decay_t<Range>, Named> &&
                                                   detail::isRangeOf<Range, Item>,
                                               int> = 0>
    Named(Range&& entries) {
        add(entries);
    }

    /** Adds the entries of a range: a map, a view, or a vector of pairs or two-element tuples. */
    template <typename Range, std::enable_if_t<detail::isRangeOf<Range, Item>, int> = 0>
    Named& add(Range&& entries) {
        for (auto&& entry : entries)
            add(std::get<0>(entry), std::get<1>(entry));
        return *this;
    }

    /** Adds the entries of a list. */
    Named& add(std::initializer_list<Entry> entries) {
        for (const Entry& entry : entries)
            add(entry.first, entry.second);
        return *this;
    }

    /** Adds an item; replaces an item with the same name. */
    template <typename Name, std::enable_if_t<detail::isText<Name>, int> = 0>
    Named& add(const Name& name, Item item) {
        map_.insert_or_assign(detail::toUtf8(name), std::move(item));
        return *this;
    }

    /** The item with that name; inserts an empty one if there is none. */
    template <typename Name, std::enable_if_t<detail::isText<Name>, int> = 0>
    Item& operator[](const Name& name) {
        return map_[detail::toUtf8(name)];
    }

    /** The item with that name. Exceptions: std::out_of_range if there is none. */
    const Item& at(std::string_view name) const {
        const auto found = map_.find(name);
        if (found == map_.end()) throw std::out_of_range("nothing is named " + std::string(name));
        return found->second;
    }

    ///@{
    /** As in std::map; map() returns the container itself. */
    bool contains(std::string_view name) const { return map_.find(name) != map_.end(); }
    std::size_t size() const noexcept { return map_.size(); }
    bool empty() const noexcept { return map_.empty(); }
    auto begin() const noexcept { return map_.begin(); }
    auto end() const noexcept { return map_.end(); }
    const Map& map() const noexcept { return map_; }
    ///@}

private:
    Map map_;
};

/** Values by name. */
using Values = Named<Value>;
/** Texts by name. */
using Texts = Named<Text>;

/**
 * The input of a report. A request can be used again, also by several threads at once.
 *
 *     Request request{type, "txt", {{"Device", "Disk 1"}}};
 */
struct Request {
    /** The report type. */
    Guid type{};
    /** "html", "pdf" or "txt"; also the name of the template's folder. */
    std::string format = "html";
    /** Typed values; they replace pairs and persistent data of the same name. */
    Values values{};
    /** Name/text pairs; they replace persistent data of the same name. */
    Texts pairs{};
    /** False: a "pdf" report is the unconverted output of the template. */
    bool convert = true;
    /** UTF-8; passed to the converter as its base. It must not contain a double quote. */
    std::string converterBase{};
};

/**
 * The open file of Generator::generateOpenFile, which the system deletes when it is closed.
 * Movable, not copyable.
 */
class OpenFile {
public:
    OpenFile() noexcept = default;
    /** Takes ownership of the handle. */
    explicit OpenFile(void* handle) noexcept : handle_(handle), isOpen_(true) {}
    ~OpenFile() { close(); }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    /** Moves the file; `other` is closed afterwards. */
    OpenFile(OpenFile&& other) noexcept
        : handle_(other.handle_), isOpen_(std::exchange(other.isOpen_, false)) {}
    /** Closes the current file, then moves that of `other`. */
    OpenFile& operator=(OpenFile&& other) noexcept {
        if (this != &other) {
            close();
            handle_ = other.handle_;
            isOpen_ = std::exchange(other.isOpen_, false);
        }
        return *this;
    }

    ///@{
    /** Whether there is an open file. */
    bool isOpen() const noexcept { return isOpen_; }
    explicit operator bool() const noexcept { return isOpen_; }
    ///@}

    /** Windows: the HANDLE, write-only. Linux: the descriptor as a pointer. */
    void* get() const noexcept { return handle_; }

    /** Linux: the descriptor. Its file offset is at the end of the report: seek before reading. */
    int descriptor() const noexcept {
        return static_cast<int>(reinterpret_cast<std::intptr_t>(handle_));
    }

    /** Returns the handle and its ownership; the caller closes it. */
    void* release() noexcept {
        isOpen_ = false;
        return handle_;
    }

    /** Closes the file, which deletes it; does nothing if it is not open. */
    void close() noexcept {
        if (std::exchange(isOpen_, false)) detail::closeHandle(handle_);
    }

private:
    void* handle_ = nullptr;
    bool isOpen_ = false;
};

/* ---- Records -------------------------------------------------------------------------------- */

namespace detail {

inline void require(bool isThere) {
    if (!isThere) throw std::bad_alloc();
}

inline void createText(const std::string& text, RgenAnsiString& record) {
    require(rgen_createRgenAnsiString(text.c_str(), &record) != 0);
}

/// Where a text is used: in a report, which reads it once, or in persistent data, read twice.
enum class Target { Report, Store };

/// The library silently cuts a longer persistent text.
constexpr std::size_t longestStored = 10000000;
/// The library loses a persistent name that is too long in its file, where a byte takes up to six.
constexpr std::size_t longestStoredName = 1000000;

inline void requireStorable(bool isShortEnough, const char* what) {
    if (isShortEnough) return;
    throw std::invalid_argument(std::string(what) + " is too long for persistent data");
}

inline std::string nameFor(const std::string& name, Target target) {
    withoutZero(name, "a name");
    if (target == Target::Report) return name;
    std::string stored = storable(name);
    requireStorable(stored.size() <= longestStoredName, "a name");
    return stored;
}

/// The limit applies to the text after the first of the two readings: "&" counts as "&amp;".
inline std::string contentForStore(const Text& text) {
    std::string content = text.form() == TextForm::Markup ? checkedMarkup(text.content(), "a text")
                                                          : escapedTwice(storable(text.content()));
    requireStorable(
        content.size() <= longestStored || withoutReferences(content).size() <= longestStored,
        "a text");
    return content;
}

inline std::string contentFor(const Text& text, Target target) {
    withoutZero(text.content(), "a text");
    if (target == Target::Store) return contentForStore(text);
    return text.form() == TextForm::Markup ? text.content() : escaped(text.content());
}

inline void createBytes(const char* name, const Bytes& bytes, Target target, RgenCVariant& record) {
    // A persistent byte is stored as "AB ".
    requireStorable(target == Target::Report || bytes.size() <= longestStored / 3, "a byte array");
    // The library requires a non-null pointer even for no bytes.
    static constexpr std::uint8_t nothing = 0;
    const std::uint8_t* const start = bytes.empty() ? &nothing : bytes.data();
    rgen_createRgenCVariantByteArray(name, start, bytes.size(), RGEN_HINT_DUMP, &record);
    require(bytes.empty() || record.value.byteArrayValue.data != nullptr);
}

/// Checks the name itself: the create functions return 1 even if memory for it is exhausted.
inline void createValue(const std::string& name, const Value& value, Target target,
                        RgenCVariant& record) {
    const std::string used = nameFor(name, target);
    const char* const key = used.c_str();
    const auto hint = static_cast<std::uint64_t>(value.hint());
    if (value.type() == ValueType::Integer) {
        rgen_createRgenCVariantInt64(key, value.integer(), hint, &record);
    } else if (value.type() == ValueType::Handle) {
        rgen_createRgenCVariantHandle(key, value.handle(), hint, &record);
    } else if (value.type() == ValueType::Text) {
        const std::string content = contentFor(value.markedText(), target);
        rgen_createRgenCVariantString(key, content.c_str(), hint, &record);
        require(record.value.stringValue.data != nullptr);
    } else {
        createBytes(key, value.bytes(), target, record);
    }
    require(record.name.data != nullptr);
}

/// Creates an array even for no values: the dump requires one.
inline void createValues(const Values& values, Target target, RgenCVariantSet& set) {
    require(rgen_createRgenCVariantSet(&set, (std::max<std::size_t>)(1, values.size())) != 0);
    RgenCVariant* record = set.items;
    for (const auto& [name, value] : values)
        createValue(name, value, target, *record++);
    set.count = values.size();
}

inline void createPairs(const Texts& pairs, Target target, RgenCAnsiStringPairSet& set) {
    if (pairs.empty()) return;
    require(rgen_createRgenCAnsiStringpairSet(&set, pairs.size()) != 0);
    std::size_t index = 0;
    for (const auto& [name, text] : pairs) {
        createText(nameFor(name, target), set.keys[index]);
        createText(contentFor(text, target), set.values[index]);
        ++index;
    }
}

inline Owned<RgenCInputParams> toRecord(const Request& request, RgenOutputMode mode,
                                        const std::string& output) {
    Owned<RgenCInputParams> record;
    createValues(request.values, Target::Report, record->variants);
    createPairs(request.pairs, Target::Report, record->pairs);
    record->templateGuid = request.type.record();
    record->outputMode = static_cast<std::uint64_t>(mode);
    record->skipExternalConversion = request.convert ? 0 : 1;
    createText(withoutZero(request.format, "a format"), record->outputFormat);
    createText(output, record->outputPath);
    createText(withoutZero(request.converterBase, "a converter base"), record->converterBaseArg);
    return record;
}

inline std::string textOf(const RgenAnsiString& record) {
    require(record.data != nullptr);
    return {record.data, record.length};
}

inline Bytes bytesOf(const RgenByteArray& record) {
    require(record.data != nullptr);
    return {record.data, record.data + record.size};
}

inline Value valueOf(const RgenCVariant& record) {
    if (record.type == RGEN_TYPE_INT64) {
        return {record.value.int64Value, static_cast<Hint>(record.hint)};
    }
    if (record.type == RGEN_TYPE_BYTE_ARRAY) return bytesOf(record.value.byteArrayValue);
    return textOf(record.value.stringValue);
}

/// Exceptions of translators, by generating thread. A thread has an entry from the start of a call
/// to its end, so that storing an exception needs no memory.
class ThrownExceptions {
public:
    void open() {
        const std::lock_guard lock(mutex_);
        thrown_[std::this_thread::get_id()] = nullptr;
    }
    bool isEmpty() {
        const std::lock_guard lock(mutex_);
        const auto entry = thrown_.find(std::this_thread::get_id());
        return entry == thrown_.end() || !entry->second;
    }
    void store(std::exception_ptr exception) {
        const std::lock_guard lock(mutex_);
        const auto entry = thrown_.find(std::this_thread::get_id());
        if (entry != thrown_.end()) entry->second = std::move(exception);
    }
    std::exception_ptr close() {
        const std::lock_guard lock(mutex_);
        const auto entry = thrown_.find(std::this_thread::get_id());
        if (entry == thrown_.end()) return nullptr;
        std::exception_ptr exception = entry->second;
        thrown_.erase(entry);
        return exception;
    }

private:
    std::mutex mutex_;
    std::map<std::thread::id, std::exception_ptr> thrown_;
};

/// The entry of one call in ThrownExceptions.
class ThrownInCall {
public:
    explicit ThrownInCall(ThrownExceptions& exceptions) : exceptions_(exceptions) {
        exceptions_.open();
    }
    ~ThrownInCall() { exceptions_.close(); }
    ThrownInCall(const ThrownInCall&) = delete;
    ThrownInCall& operator=(const ThrownInCall&) = delete;

    void rethrow() {
        const std::exception_ptr exception = exceptions_.close();
        if (exception) std::rethrow_exception(exception);
    }

private:
    ThrownExceptions& exceptions_;
};

/// A translator and its last result, which the library copies before the next call.
struct Translation {
    std::function<std::string(std::string_view)> translate;
    TextForm form;
    ThrownExceptions& exceptions;
    std::string text;

    static const char* RGEN_CALL call(const char* text, void* context) noexcept {
        auto& self = *static_cast<Translation*>(context);
        if (!self.exceptions.isEmpty()) return text;
        try {
            self.text = self.translate(text);
            withoutZero(self.text, "a translation");
            if (self.text == text) return text;
            self.text = self.form == TextForm::Plain ? asMarkup(text, std::move(self.text))
                                                     : checkedMarkup(self.text, "a translation");
            return self.text.c_str();
        } catch (...) {
            self.exceptions.store(std::current_exception());
            return text;
        }
    }

    static const char* RGEN_CALL same(const char* text, void* /*context*/) noexcept { return text; }
};

/// On the heap, since the translate callback has pointers into it, which must survive a move.
struct GeneratorState {
    GeneratorState() : handle(rgen_newReportGenerator()) { require(handle != nullptr); }
    ~GeneratorState() { rgen_freeReportGenerator(handle); }
    GeneratorState(const GeneratorState&) = delete;
    GeneratorState& operator=(const GeneratorState&) = delete;

    ThrownExceptions exceptions;
    std::mutex settings;
    std::unique_ptr<Translation> translation;
    RgenReportGenerator* handle;
};

}  // namespace detail

/* ---- Generator ------------------------------------------------------------------------------ */

/**
 * A report generator. Movable, not copyable; a moved-from generator can only be assigned or
 * destroyed.
 *
 * Threads: see THREADS, and THREADS AND THE LOCK in rgen.h for which calls wait for which.
 * Exceptions: "those of the library" below refers to ERRORS.
 */
class Generator {
public:
    /**
     * A generator without a data directory: call setDataDir before anything else.
     *
     * Exceptions: std::bad_alloc.
     */
    Generator() : state_(std::make_unique<detail::GeneratorState>()) {}

    /** A generator with the data directory "<folder>/.rgen"; see setDataDir. */
    explicit Generator(const Path& folder) : Generator() { setDataDir(folder); }

    /** The handle for functions of rgen.h; the generator owns it. */
    RgenReportGenerator* handle() const noexcept { return state_->handle; }

    /**
     * Sets the folder that contains the generator's data directory ".rgen".
     *
     * @param folder  An existing folder; this function creates nothing.
     *
     * Exceptions: StatusError with RGEN_E_DIR_NOT_FOUND (the previous data directory stays in
     * use); those of the library.
     */
    void setDataDir(const Path& folder) {
        check(rgen_setDataDirPath(handle(), folder.utf8().c_str()), folder.utf8());
    }

    /**
     * Sets the translator of the marked texts of templates, for generations that reach their
     * translation after this call.
     *
     * @param translator  A callable that takes a std::string_view or std::string, the marked text
     *                    as written in the template, and returns a text of any type, which is
     *                    copied at once. It is stored until the next one is set, and called on the
     *                    generating threads, by one at a time. It must not call this generator; see
     *                    THE CALLBACK in rgen.h.
     * @param form        Plain: each of "&", "<", ">" and "'" is escaped in a translation unless
     *                    the original contains it, too. "]]>" (unless the translation has a CDATA
     *                    section) and an "&" that starts no reference of XML are always escaped.
     *                    "{" and "}" are not: in attributes of the template they delimit an XPath
     *                    expression. Markup: the translation becomes part of the template
     *                    unchanged; a reference that XML does not know throws
     *                    std::invalid_argument. In both forms characters that XML cannot contain
     *                    become U+FFFD; a text that is returned unchanged stays unchanged.
     *
     * If the translator throws, this and all further texts of the report stay untranslated, and the
     * generating call throws the exception at its end, when an output file may already exist.
     *
     * Threads: waits while a transformation runs on this generator.
     * Exceptions: std::bad_alloc; those of the library.
     */
    template <typename Translator>
    void setTranslator(Translator translator, TextForm form = TextForm::Plain) {
        // std::function requires a copyable callable; this one may be move-only.
        auto kept = std::make_shared<Translator>(std::move(translator));
        auto translate = [kept = std::move(kept)](std::string_view text) {
            if constexpr (std::is_invocable_v<Translator&, std::string_view>) {
                return detail::toUtf8((*kept)(text));
            } else {
                return detail::toUtf8((*kept)(std::string(text)));
            }
        };
        std::unique_ptr<detail::Translation> next(
            new detail::Translation{std::move(translate), form, state_->exceptions, {}});
        const std::lock_guard lock(state_->settings);
        rgen_setTranslateFunction(handle(), detail::Translation::call, next.get());
        std::swap(state_->translation, next);
    }

    /** Removes the translator: marked texts stay unchanged. Otherwise as setTranslator. */
    void clearTranslator() {
        const std::lock_guard lock(state_->settings);
        rgen_setTranslateFunction(handle(), detail::Translation::same, nullptr);
        state_->translation.reset();
    }

    /**
     * Generates a report as a file; an existing one is replaced.
     *
     * For "pdf" the converter runs, unless request.convert is false. Since the library ignores its
     * exit code, this function checks the file: it must begin with "%PDF-" and have "%%EOF" in its
     * last 1024 bytes. An "<output>.error.txt" of an earlier conversion is removed first.
     *
     * @param request  The input of the report.
     * @param output   The file. For a "pdf" that is converted it must not contain a double quote.
     * @return         The path of the file.
     *
     * Exceptions: StatusError with the statuses of rgen_generateReport; ConversionError;
     * std::invalid_argument (see TEXTS; a double quote in the path or the base of a "pdf" that is
     * converted); those of the translator; those of the library.
     */
    std::filesystem::path generateFile(const Request& request, const Path& output) {
        const bool isConverted = request.format == "pdf" && request.convert;
        if (isConverted) detail::prepareConversion(output.utf8(), request.converterBase);
        generate(request, RGEN_OUTPUT_FILE, output.utf8());
        if (isConverted) detail::verifyPdf(output.utf8());
        return output.native();
    }

    /**
     * Generates a report in memory, without conversion.
     *
     * @param request  The input of the report.
     * @return         The bytes of the report.
     *
     * Exceptions: as generateFile, except ConversionError.
     */
    Bytes generateBytes(const Request& request) {
        const Owned<RgenCVariant> result = generate(request, RGEN_OUTPUT_BYTES, {});
        return result->type == RGEN_TYPE_BYTE_ARRAY ? detail::bytesOf(result->value.byteArrayValue)
                                                    : Bytes();
    }

    /**
     * Generates a report as a file that the system deletes when it is closed, without conversion.
     *
     * @param request  The input of the report.
     * @param output   The file. Windows reads the path in the ANSI code page: use ASCII only.
     * @return         The open file; on Linux its name has been removed already.
     *
     * Exceptions: as generateFile, except ConversionError.
     */
    OpenFile generateOpenFile(const Request& request, const Path& output) {
        const Owned<RgenCVariant> result =
            generate(request, RGEN_OUTPUT_DELETE_ON_CLOSE, output.utf8());
        detail::require(result->type == RGEN_TYPE_HANDLE);
        return OpenFile(result->value.handleValue);
    }

    /**
     * Asks all generations that run on this generator to stop. They throw a StatusError whose
     * isCancellation() is true, unless they are past their last check.
     *
     * Threads: for a thread other than the generating one; waits while a transformation runs.
     * Exceptions: those of the library.
     */
    void cancel() { rgen_cancel(handle(), nullptr); }

    /** As cancel(), for the generations of one report type. */
    void cancel(const Guid& type) { rgen_cancel(handle(), &type.record()); }

    /**
     * Reads the persistent data of a report type.
     *
     * Returns the texts that were passed to setPersistentData, as reports show them. Entries
     * without a name or text are skipped, and names have no leading or trailing white space.
     * Control characters (except tab, carriage return and line feed), U+FFFE, U+FFFF and invalid
     * UTF-8 are returned as U+FFFD.
     *
     * @param type  The report type.
     * @return      Names and texts; empty if the file contains none.
     *
     * Exceptions: StatusError with RGEN_E_OPEN_PERSIST if nothing was stored yet or the file cannot
     * be read, or with one of the CONFIGURATION STATUSES; those of the library.
     */
    std::map<std::string, std::string> persistentData(const Guid& type) const {
        Owned<RgenCAnsiStringPairSet> pairs;
        const RgenStatus status = rgen_getPersistentData(handle(), &type.record(), pairs.get());
        std::map<std::string, std::string> texts;
        const std::string_view name = statusName(status);
        if (name == "RGEN_E_NO_PERSIST_VALUES" || name == "RGEN_E_NO_VALID_PERSIST_VALUES") {
            return texts;
        }
        check(status, type.text());
        detail::require(pairs->count != 0);
        for (std::uint64_t i = 0; i < pairs->count; ++i) {
            texts[detail::textOf(pairs->keys[i])] =
                detail::withoutReferences(detail::textOf(pairs->values[i]));
        }
        return texts;
    }

    /**
     * Replaces the persistent data of a report type; there is no merging.
     *
     * @param type   The report type.
     * @param texts  Names and texts. A Text::markup is read twice before it appears in a report.
     *               Characters that XML cannot contain become U+FFFD.
     *
     * Exceptions: StatusError with the statuses of rgen_setPersistentDataFromAnsiStringPairSet;
     * std::invalid_argument (see TEXTS), also for a text of more than 10,000,000 bytes ("&" and
     * each leading or trailing white space character count as five) or a name of more than
     * 1,000,000, which the library would cut or lose, and for a Text::markup with a reference that
     * XML does not know, which would damage other entries; those of the library.
     */
    void setPersistentData(const Guid& type, const Texts& texts) {
        Owned<RgenCAnsiStringPairSet> pairs;
        detail::createPairs(texts, detail::Target::Store, *pairs);
        check(rgen_setPersistentDataFromAnsiStringPairSet(handle(), &type.record(), pairs.get()),
              type.text());
    }

    /**
     * Replaces the persistent data of a report type with the display texts of typed values; types,
     * hints and handles are not stored. All else is as in setPersistentData.
     */
    void setPersistentValues(const Guid& type, const Values& values) {
        Owned<RgenCVariantSet> set;
        detail::createValues(values, detail::Target::Store, *set);
        check(rgen_setPersistentDataFromCVariantSet(handle(), &type.record(), set.get()),
              type.text());
    }

    /**
     * Writes values as an XML file of names and display texts, without handles.
     *
     * @param values  The values.
     * @param output  The file, which is replaced.
     *
     * Exceptions: StatusError with RGEN_E_DELETE_DUMP or RGEN_E_CREATE_PERSIST;
     * std::invalid_argument (see TEXTS); those of the library.
     */
    void dump(const Values& values, const Path& output) {
        Owned<RgenCInputParams> input;
        detail::createValues(values, detail::Target::Report, input->variants);
        check(rgen_dumpRawInputDataToFile(handle(), input.get(), output.utf8().c_str()),
              output.utf8());
    }

    /**
     * Reads typed values from an XML file, for a host that runs with simulated input. The format is
     * described at rgen_getSimulatedRawDataFromFile. For an invalid byte array the library writes
     * one line to standard output.
     *
     * @param input  The file.
     * @return       The values; empty if the file is missing, cannot be read, or contains no valid
     *               property. The library has no status for these.
     *
     * Exceptions: those of the library.
     */
    Values simulatedInput(const Path& input) const {
        Owned<RgenCVariantSet> set;
        Values values;
        if (rgen_getSimulatedRawDataFromFile(handle(), input.utf8().c_str(), set.get()) == 0) {
            return values;
        }
        for (std::uint64_t i = 0; i < set->count; ++i) {
            const RgenCVariant& record = set->items[i];
            if (record.type != RGEN_TYPE_EMPTY) {
                values.add(detail::textOf(record.name), detail::valueOf(record));
            }
        }
        return values;
    }

    /**
     * Describes a status in English.
     *
     * @param status  Any number.
     * @return        A text that is valid as long as the library is loaded.
     *
     * Exceptions: std::bad_alloc.
     */
    const char* statusText(RgenStatus status) const {
        return rgen_getStatusCodeDescription(handle(), status);
    }

private:
    void check(RgenStatus status, std::string_view subject) const {
        if (status < 0) throw StatusError(subject, status, statusText(status));
    }

    Owned<RgenCVariant> generate(const Request& request, RgenOutputMode mode,
                                 const std::string& output) {
        const Owned<RgenCInputParams> input = detail::toRecord(request, mode, output);
        Owned<RgenCVariant> result;
        detail::ThrownInCall thrown(state_->exceptions);
        const RgenStatus status = rgen_generateReport(handle(), input.get(), result.get());
        // Closes the handle if an exception follows, since the host then never receives it.
        OpenFile unwanted =
            result->type == RGEN_TYPE_HANDLE ? OpenFile(result->value.handleValue) : OpenFile();
        thrown.rethrow();
        check(status, output.empty() ? request.type.text() : output);
        unwanted.release();
        return result;
    }

    std::unique_ptr<detail::GeneratorState> state_;
};

}  // namespace strata::repgen
