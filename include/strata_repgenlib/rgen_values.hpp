/*
 * The values, requests and errors of rgen.hpp, which includes this header.
 *
 * SPDX-License-Identifier: MIT
 */
#pragma once

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <iterator>
#include <map>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "strata_repgenlib/rgen_host.h"

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
enum class TextForm : std::uint64_t { Plain = RGENH_PLAIN, Markup = RGENH_MARKUP };

/* ---- Errors --------------------------------------------------------------------------------- */

/** The name of a status, as in rgen_status.h: "RGEN_OK"; empty for a number without a name. */
inline std::string_view statusName(RgenStatus status) noexcept {
    return rgenh_getStatusName(status);
}

/** The library's description of a status in English; any number. */
inline const char* statusText(RgenStatus status) noexcept {
    return rgenh_getStatusText(status);
}

/** Any failure but exhausted memory; what() is a message for people in one line. */
class Error : public std::runtime_error {
public:
    /** From the error record of a call. */
    explicit Error(const RgenhError& record)
        : std::runtime_error(record.message), record_(std::make_shared<RgenhError>(record)) {}
    /** A wrong argument that this header finds. */
    explicit Error(const std::string& message)
        : std::runtime_error(message), record_(std::make_shared<RgenhError>()) {
        record_->kind = RGENH_ERROR_ARGUMENT;
        record_->status = RGEN_E_BAD_PARAMETER;
    }

    /** One of RgenhErrorKind. */
    int kind() const noexcept { return record_->kind; }
    /** The status, negative; see ERRORS in rgen_host.h. */
    RgenStatus status() const noexcept { return record_->status; }
    /** The name of the status: "RGEN_E_TEMPLATE_NOT_FOUND". */
    std::string_view name() const noexcept { return statusName(status()); }
    /** The library's description of the status in English. */
    std::string_view text() const noexcept { return statusText(status()); }
    /** What to do about the status, one sentence; empty if there is no advice. */
    std::string_view hint() const noexcept { return rgenh_getStatusNextStep(status()); }
    /** UTF-8 path that the error is about; empty if there is none. */
    std::string_view path() const noexcept { return record_->path; }
    /** The error number of the operating system; 0 if there is none. */
    std::int64_t systemError() const noexcept { return record_->systemError; }
    /** The position of the wrong argument of the function in rgen_host.h, from 1 on, or 0. */
    int argument() const noexcept { return record_->argument; }
    /** Whether the status is RGEN_CANCELED. */
    bool isCancellation() const noexcept { return status() == RGEN_CANCELED; }

private:
    // Shared, since copying an exception must not throw.
    std::shared_ptr<RgenhError> record_;
};

/** An Error of one kind. */
template <RgenhErrorKind Kind>
class ErrorOfKind : public Error {
public:
    using Error::Error;
};

/** The library reported a status of rgen_status.h, cancellation included. */
using StatusError = ErrorOfKind<RGENH_ERROR_STATUS>;
/** An argument is wrong. */
using ArgumentError = ErrorOfKind<RGENH_ERROR_ARGUMENT>;
/** A path or another text is not valid UTF-8. */
using EncodingError = ErrorOfKind<RGENH_ERROR_ENCODING>;
/** The file system refused for a reason without a status; see systemError(). */
using FileError = ErrorOfKind<RGENH_ERROR_FILE_SYSTEM>;

/** The converter made no pdf or an incomplete one. */
class ConversionError : public Error {
public:
    using Error::Error;
    /** The converter's message; empty if it left none. */
    std::string reason() const {
        // The message is "<path>: <problem>" or "<path>: <problem>: <reason>".
        const std::string_view message = what();
        const std::size_t end = message.find(": ", path().size() + 2);
        return std::string(message.substr((std::min)(end, message.size() - 2) + 2));
    }
};

/* ---- Implementation ------------------------------------------------------------------------- */

/** Implementation details; not for hosts. */
namespace detail {

/// The error record of one call. Only its size is initialised, since the call overwrites the rest.
struct ErrorRecord {
    ErrorRecord() noexcept { record.size = sizeof record; }

    [[noreturn]] void raise() const {
        if (record.kind == RGENH_ERROR_MEMORY) throw std::bad_alloc();
        if (record.kind == RGENH_ERROR_STATUS) throw StatusError(record);
        if (record.kind == RGENH_ERROR_CONVERSION) throw ConversionError(record);
        if (record.kind == RGENH_ERROR_FILE_SYSTEM) throw FileError(record);
        if (record.kind == RGENH_ERROR_ENCODING) throw EncodingError(record);
        if (record.kind == RGENH_ERROR_ARGUMENT) throw ArgumentError(record);
        throw Error(record);
    }

    RgenhError record;
};

/// char in C++17, char8_t from C++20 on.
using Utf8Letter = std::decay_t<decltype(u8""[0])>;
using Utf8View = std::basic_string_view<Utf8Letter>;
template <typename Source>
constexpr bool isPlainText = std::is_convertible_v<const Source&, std::string_view>;
template <typename Source>
constexpr bool isText = isPlainText<Source> || std::is_convertible_v<const Source&, Utf8View>;

template <typename Type, typename... Others>
constexpr bool isOneOf = (std::is_same_v<Type, Others> || ...);
template <typename Number>
constexpr bool isNumber = std::is_integral_v<Number> &&
                          !isOneOf<Number, bool, char, wchar_t, char16_t, char32_t, Utf8Letter>;

template <typename Range, typename = void>
constexpr bool isByteRange = false;
template <typename Range>
constexpr bool isByteRange<Range, std::void_t<decltype(std::data(std::declval<const Range&>())),
                                              decltype(std::size(std::declval<const Range&>()))>> =
    isOneOf<std::decay_t<decltype(*std::data(std::declval<const Range&>()))>, std::uint8_t,
            std::byte>;

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
        if (source == nullptr) throw ArgumentError("a text is a null pointer");
    }
    const std::conditional_t<isPlainText<Source>, std::string_view, Utf8View> view = source;
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

/// The text for a function that reads up to a zero byte.
inline const char* withoutZero(const std::string& text, const char* what) {
    if (text.find('\0') == std::string::npos) return text.c_str();
    throw ArgumentError(std::string(what) + " contains a zero byte");
}

}  // namespace detail

/* ---- Values --------------------------------------------------------------------------------- */

/** A report type's GUID. */
class Guid {
public:
    /** The GUID of zeros. */
    constexpr Guid() noexcept = default;

    /** From a record of rgen.h. */
    constexpr Guid(const RgenGuid& record) noexcept : record_(record) {}

    /**
     * Parses "5a0c6f1e-3b74-4e59-9d21-7c8e0f6a41b2", in upper or lower case, in braces or not;
     * throws an ArgumentError for another text. As a constant, constexpr Guid type("..."), such a
     * text does not compile.
     */
    constexpr explicit Guid(std::string_view text) : record_{} {
        if (!read(text)) throw ArgumentError("this is not a GUID");
    }

    /** As the constructor, but returns nullopt for an invalid text. */
    static constexpr std::optional<Guid> parse(std::string_view text) noexcept {
        Guid guid;
        return guid.read(text) ? std::optional<Guid>(guid) : std::nullopt;
    }

    /** The 36 characters, in lower case. */
    std::string text() const {
        char text[RGENH_GUID_TEXT_SIZE] = {};
        rgenh_formatGuid(&record_, text, nullptr);
        return text;
    }

    /** The record for functions of rgen.h. */
    constexpr const RgenGuid& record() const noexcept { return record_; }

    ///@{
    /** Compares all 16 bytes, in the order of the texts. */
    friend bool operator==(const Guid& a, const Guid& b) noexcept { return a.key() == b.key(); }
    friend bool operator!=(const Guid& a, const Guid& b) noexcept { return a.key() != b.key(); }
    friend bool operator<(const Guid& a, const Guid& b) noexcept { return a.key() < b.key(); }
    ///@}

private:
    std::tuple<std::uint32_t, std::uint16_t, std::uint16_t, std::string_view> key() const noexcept {
        const auto* const bytes = reinterpret_cast<const char*>(record_.data4);
        return {record_.data1, record_.data2, record_.data3, {bytes, sizeof record_.data4}};
    }

    constexpr bool read(std::string_view text) noexcept {
        constexpr std::string_view digits = "0123456789abcdefABCDEF";
        const bool isInBraces = text.size() == 38 && text[0] == '{' && text[37] == '}';
        if (isInBraces) text = text.substr(1, 36);
        if (text.size() != 36) return false;
        std::uint32_t bytes[16] = {};
        std::size_t digit = 0;
        for (std::size_t i = 0; i < text.size(); ++i) {
            const bool isDash = i == 8 || i == 13 || i == 18 || i == 23;
            const std::size_t value = digits.find(text[i]);
            if (isDash ? text[i] != '-' : value == std::string_view::npos) return false;
            if (isDash) continue;
            std::uint32_t& byte = bytes[digit++ / 2];
            byte = byte << 4U | static_cast<std::uint32_t>(value < 16 ? value : value - 6);
        }
        record_.data1 = bytes[0] << 24U | bytes[1] << 16U | bytes[2] << 8U | bytes[3];
        record_.data2 = static_cast<std::uint16_t>(bytes[4] << 8U | bytes[5]);
        record_.data3 = static_cast<std::uint16_t>(bytes[6] << 8U | bytes[7]);
        for (std::size_t i = 0; i < 8; ++i)
            record_.data4[i] = static_cast<std::uint8_t>(bytes[i + 8]);
        return true;
    }

    RgenGuid record_{};
};

/** The path of a file or folder; see TEXTS AND PATHS. */
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

/** A text of a value, pair or persistent entry. */
class Text {
public:
    Text() = default;
    /** A plain text, which appears in the report as it is. */
    template <typename Source, typename = std::enable_if_t<detail::isText<Source>>>
    Text(const Source& plain) : content_(detail::toUtf8(plain)) {}
    Text(std::nullptr_t) = delete;

    /**
     * XML content: "&#8364;" is a euro sign, a plain "&" is lost. In persistent data it is read
     * twice, see TEXTS in rgen.h.
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
    /** Compares content and form. */
    friend bool operator==(const Text& a, const Text& b) noexcept {
        return a.content_ == b.content_ && a.form_ == b.form_;
    }
    /** The opposite. */
    friend bool operator!=(const Text& a, const Text& b) noexcept { return !(a == b); }

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
    /** A plain text. */
    template <typename Source, std::enable_if_t<detail::isText<Source>, int> = 0>
    Value(const Source& text) : content_(Text(text)) {}
    Value(std::nullptr_t) = delete;

    /**
     * An integer of any width. Throws an ArgumentError for numbers above 2^63 - 1, except with
     * Hint::Address, which shows the bits of the number.
     */
    template <typename Number, std::enable_if_t<detail::isNumber<Number>, int> = 0>
    Value(Number number, Hint hint = Hint::Generic)
        : content_(static_cast<std::int64_t>(number)), hint_(hint) {
        if (std::is_unsigned_v<Number> && integer() < 0 && hint != Hint::Address) {
            throw ArgumentError("the number does not fit into 64 bits with a sign");
        }
    }

    /**
     * A point in time, shown as local date and time, or as one of them by Hint::Date or Time.
     * Throws an ArgumentError before 1970 and after the year 3000, which reports cannot show.
     */
    template <typename Duration>
    Value(std::chrono::time_point<std::chrono::system_clock, Duration> moment,
          Hint hint = Hint::DateTime)
        : content_(std::int64_t{
              std::chrono::floor<std::chrono::seconds>(moment).time_since_epoch().count()}),
          hint_(hint) {
        if (integer() < 0 || integer() > 32535215999) {
            throw ArgumentError("reports show times from 1970 to 3000 only");
        }
    }

    /** Bytes: a vector, array, span or view of std::uint8_t or std::byte; they are copied. */
    template <typename Range, std::enable_if_t<detail::isByteRange<Range>, char> = 0>
    Value(const Range& bytes) : content_(Bytes(std::size(bytes))), hint_(Hint::Dump) {
        std::transform(std::data(bytes), std::data(bytes) + std::size(bytes),
                       std::get<Bytes>(content_).data(),
                       [](auto byte) { return static_cast<std::uint8_t>(byte); });
    }

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
    /** The content; throws std::bad_variant_access if the value has another type. */
    std::int64_t integer() const { return std::get<std::int64_t>(content_); }
    const std::string& text() const { return std::get<Text>(content_).content(); }
    const Text& markedText() const { return std::get<Text>(content_); }
    const Bytes& bytes() const { return std::get<Bytes>(content_); }
    void* handle() const { return std::get<void*>(content_); }
    ///@}

    /** Compares content and hint. */
    friend bool operator==(const Value& a, const Value& b) {
        return a.content_ == b.content_ && a.hint_ == b.hint_;
    }
    /** The opposite. */
    friend bool operator!=(const Value& a, const Value& b) { return !(a == b); }

private:
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
        return add<std::initializer_list<Entry>&>(entries);
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
    ///@{
    /** As in std::map; map() returns the container itself. */
    const Item& at(std::string_view name) const { return map_.at(std::string(name)); }
    bool contains(std::string_view name) const { return map_.find(name) != map_.end(); }
    std::size_t size() const noexcept { return map_.size(); }
    bool empty() const noexcept { return map_.empty(); }
    auto begin() const noexcept { return map_.begin(); }
    auto end() const noexcept { return map_.end(); }
    const auto& map() const noexcept { return map_; }
    ///@}

private:
    std::map<std::string, Item, std::less<>> map_;
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

}  // namespace strata::repgen
