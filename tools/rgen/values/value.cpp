// Converts "NAME:HINT" and a text to a typed value.
//
// SPDX-License-Identifier: MIT
#include "values/value.h"

#include <algorithm>
#include <filesystem>
#include <limits>
#include <string_view>

#include "base/command_error.h"
#include "base/console.h"
#include "base/input_file.h"
#include "base/paths.h"
#include "base/suggestion.h"
#include "base/text_functions.h"
#include "values/literal_parser.h"

namespace cli {
namespace {

struct NamedHint {
    const char* name;
    repgen::ValueType type;
    repgen::Hint hint;
};

using repgen::Hint;
using repgen::ValueType;

/// The value is the path of a file that contains the text.
constexpr const char* textFileHint = "text@";

// If a hint has several names, the first one is printed.
constexpr NamedHint hints[] = {
    {"text", ValueType::Text, Hint::Generic},
    {textFileHint, ValueType::Text, Hint::Generic},
    {"int", ValueType::Integer, Hint::Generic},
    {"size", ValueType::Integer, Hint::Size},
    {"speed", ValueType::Integer, Hint::Speed},
    {"address", ValueType::Integer, Hint::Address},
    {"time", ValueType::Integer, Hint::Time},
    {"date", ValueType::Integer, Hint::Date},
    {"datetime", ValueType::Integer, Hint::DateTime},
    {"bytes", ValueType::ByteArray, Hint::Dump},
    {"generic", ValueType::Integer, Hint::Generic},
    {"dump", ValueType::ByteArray, Hint::Dump},
};

const NamedHint* findHint(const std::string& text) {
    const std::string name = lowerCase(text);
    const auto found = std::find_if(std::begin(hints), std::end(hints),
                                    [&name](const NamedHint& hint) { return name == hint.name; });
    return found == std::end(hints) ? nullptr : found;
}

bool isTimeHint(Hint hint) {
    return hint == Hint::Time || hint == Hint::Date || hint == Hint::DateTime;
}

/// The path of a file that a value names.
std::string placeOf(const std::string& path, const ValueReadOptions& options) {
    const bool isWhole = path.empty() || std::filesystem::u8path(path).has_root_path();
    return isWhole ? path : joinedPath(options.folder, path);
}

repgen::Bytes bytesOf(const std::string& text, const ValueReadOptions& options) {
    if (text.empty() || text[0] != '@') return parseBytes(text);
    const std::string path = text.substr(1);
    const std::string place = placeOf(path, options);
    if (options.filesNamed != nullptr) {
        options.filesNamed->push_back(place);
        return {};
    }
    const std::string content = readInputFile(place, "check the path behind @");
    if (content.size() > std::numeric_limits<std::uint32_t>::max()) {
        throw usageError("\"" + path + "\" is too large", "byte arrays hold less than 4 GiB");
    }
    return {content.begin(), content.end()};
}

repgen::Text textOf(const std::string& text, const ValueReadOptions& options) {
    if (!isPlainUtf8(text)) {
        throw usageError("the text is not valid UTF-8, or holds a zero character",
                         "bytes of any kind are values with the hint bytes");
    }
    return options.raw ? repgen::Text::markup(text) : repgen::Text(text);
}

/// Without a byte order mark and the line end of the last line, which editors add.
std::string textOfFile(const std::string& path, const ValueReadOptions& options) {
    const std::string place = placeOf(path, options);
    if (options.filesNamed != nullptr) {
        options.filesNamed->push_back(place);
        return {};
    }
    std::string content = readInputFile(place, "check the path given with text@");
    if (content.compare(0, 3, "\xEF\xBB\xBF") == 0) content.erase(0, 3);
    if (!isPlainUtf8(content)) {
        throw usageError("\"" + path + "\" is not UTF-8, or holds a zero character",
                         "save it as UTF-8");
    }
    if (!content.empty() && content.back() == '\n') content.pop_back();
    if (!content.empty() && content.back() == '\r') content.pop_back();
    return content;
}

/// The name and text of "NAME=TEXT", and the beginning of error messages about it.
struct Assignment {
    Assignment(const std::string& argument, const std::string& option)
        : place(option + " \"" + shortened(argument, 60) + "\": ") {
        const std::size_t equals = argument.find('=');
        if (equals == std::string::npos || equals == 0) {
            throw usageError(place + "NAME=VALUE is expected");
        }
        name = argument.substr(0, equals);
        text = argument.substr(equals + 1);
    }

    CommandError failure(const CommandError& error, const std::string& more = {}) const {
        return {error.exitCode, place + error.what(), error.hint + more};
    }

    std::string place;
    std::string name;
    std::string text;
};

void requireKnownHint(const Assignment& assignment) {
    try {
        splitNameAndHint(assignment.name);
    } catch (const CommandError& error) {
        throw assignment.failure(error, " (a name with a colon is followed by its hint: \"" +
                                            assignment.name + ":text=...\")");
    }
}

Value readArgument(const Assignment& assignment, const std::string& nameAndHint,
                   const ValueReadOptions& options) {
    try {
        return readValue(nameAndHint, assignment.text, "text", options);
    } catch (const CommandError& error) {
        throw assignment.failure(error);
    }
}

}  // namespace

void ValueSet::add(Value value) {
    if (values_.count(value.name) > 0) repeated_.insert(value.name);
    replace(std::move(value));
}

void ValueSet::noteRepeated(Console& console) const {
    for (const std::string& name : repeated_) {
        console.note("\"" + shortened(name) + "\" is given more than once; " +
                     values_.at(name).source + " counts");
    }
}

void ValueSet::replace(Value value) {
    std::string name = value.name;
    values_[std::move(name)] = std::move(value);
}

repgen::Values libraryValues(const ValueSet& set) {
    repgen::Values values;
    for (const auto& [name, value] : set.values())
        values.add(name, value.content);
    return values;
}

repgen::Texts libraryTexts(const ValueSet& set) {
    repgen::Texts texts;
    for (const auto& [name, value] : set.values())
        texts.add(name, value.content.markedText());
    return texts;
}

std::vector<std::string> hintNames() {
    std::vector<std::string> all;
    for (const NamedHint& hint : hints)
        all.emplace_back(hint.name);
    return all;
}

std::string hintName(const Value& value) {
    for (const NamedHint& hint : hints) {
        const bool isInteger = hint.type == ValueType::Integer;
        const bool isHint = !isInteger || hint.hint == value.content.hint();
        if (hint.type == value.content.type() && isHint) return hint.name;
    }
    return "int";
}

NameAndHint splitNameAndHint(const std::string& text) {
    const std::size_t colon = text.rfind(':');
    if (colon == std::string::npos) return {text, {}};
    NameAndHint parts{text.substr(0, colon), text.substr(colon + 1)};
    if (findHint(parts.hint) != nullptr) return parts;
    const std::string advice = didYouMean(parts.hint, hintNames(),
                                          "the hints are text, text@, int, size, "
                                          "speed, address, time, date, datetime and bytes");
    throw usageError("there is no hint \"" + parts.hint + "\"", advice);
}

Value readValue(const std::string& nameAndHint, const std::string& text,
                const std::string& defaultHint, const ValueReadOptions& options) {
    const NameAndHint parts = splitNameAndHint(nameAndHint);
    if (parts.name.empty()) throw usageError("the name is empty", "write NAME=VALUE");
    if (!isPlainUtf8(parts.name)) {
        throw usageError("the name is not valid UTF-8, or holds a zero character");
    }
    const NamedHint* hint = findHint(parts.hint.empty() ? defaultHint : parts.hint);
    Value value{parts.name, {}, options.source};
    if (hint->type == ValueType::Text) {
        const bool isFile = std::string_view(hint->name) == textFileHint;
        value.content = textOf(isFile ? textOfFile(text, options) : text, options);
    } else if (hint->type == ValueType::ByteArray) {
        value.content = bytesOf(text, options);
    } else if (isTimeHint(hint->hint)) {
        value.content = {parseTime(text), hint->hint};
    } else {
        value.content = {parseInteger(text, hint->hint == Hint::Address), hint->hint};
    }
    return value;
}

Value readAssignment(const std::string& argument, const std::string& option,
                     const ValueReadOptions& options) {
    const Assignment assignment(argument, option);
    requireKnownHint(assignment);
    return readArgument(assignment, assignment.name, options);
}

Value readPair(const std::string& argument, const std::string& option,
               const ValueReadOptions& options) {
    const Assignment assignment(argument, option);
    return readArgument(assignment, assignment.name + ":text", options);
}

}  // namespace cli
