// JSON data files are read as a stream of parser events, because only the stream has line, column
// and all digits of a number. Entry points: readDataFile, readJsonValues.
//
// SPDX-License-Identifier: MIT
#include "data/data_file.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <nlohmann/json.hpp>
#include <set>

#include "base/command_error.h"
#include "base/console.h"
#include "base/input_file.h"
#include "base/json_error_text.h"
#include "base/paths.h"
#include "base/xml_text.h"
#include "data/value_names.h"
#include "data/xml_documents.h"
#include "library/library_calls.h"

namespace cli {
namespace {

using nlohmann::json;

/// An iterator over the text that makes its position visible to the event handler.
class CountingIterator {
public:
    // NOLINTBEGIN(readability-identifier-naming): names that the standard library looks for.
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;
    // NOLINTEND(readability-identifier-naming)

    CountingIterator(const char* place, const char** furthest)
        : place_(place), furthest_(furthest) {}

    reference operator*() const { return *place_; }
    CountingIterator& operator++() {
        *furthest_ = ++place_;
        return *this;
    }
    CountingIterator operator++(int) {
        CountingIterator before = *this;
        ++*this;
        return before;
    }
    bool operator==(const CountingIterator& other) const { return place_ == other.place_; }
    bool operator!=(const CountingIterator& other) const { return place_ != other.place_; }

private:
    const char* place_;
    const char** furthest_;
};

class ValueEvents : public nlohmann::json_sax<json> {
public:
    ValueEvents(const std::string& text, const std::string& place, const ValueReadOptions& reading)
        : furthest(text.data()), text_(text), place_(place), reading_(reading) {}

    bool null() override {
        requireObject();
        names_.beginEntry();
        return true;
    }
    bool boolean(bool value) override { return add(value ? "true" : "false", "text", 't'); }
    bool number_integer(number_integer_t value) override { return number(std::to_string(value)); }
    bool number_unsigned(number_unsigned_t value) override { return number(std::to_string(value)); }
    bool number_float(number_float_t, const string_t& digits) override { return number(digits); }
    bool string(string_t& value) override { return add(value, "text", '"'); }
    bool binary(binary_t&) override { return false; }
    bool start_object(std::size_t) override {
        return open([this] { names_.openObject(); });
    }
    bool end_object() override { return close(); }
    bool start_array(std::size_t) override {
        requireObject();
        return open([this] { names_.openList(); });
    }
    bool end_array() override { return close(); }
    bool key(string_t& value) override {
        try {
            names_.setKey(value);
        } catch (const CommandError& error) {
            throw usageError(at(start('"')) + error.what() + " in \"" + shortened(value) + "\"",
                             error.hint);
        }
        return true;
    }
    bool parse_error(std::size_t offset, const std::string&,
                     const nlohmann::detail::exception& error) override {
        const std::size_t place = offset == 0 ? 0 : offset - 1;
        const std::size_t line = lineOfLastComma(text_, place);
        throw usageError(
            at(place) + "not JSON: " + jsonErrorText(error.what()),
            line == 0 ? "correct the file" : "remove the comma in line " + std::to_string(line));
    }

    std::vector<Value> values;
    /// After the last character that the parser has read.
    const char* furthest;

private:
    std::string at(std::size_t offset) const {
        return placeText(place_, positionOf(text_, offset)) + ": ";
    }

    std::size_t offsetOfFurthest() const {
        return std::min(static_cast<std::size_t>(furthest - text_.data()), text_.size());
    }

    /// The start of the token that was just read: the opening quote of a text, the first character
    /// of any other token.
    std::size_t start(char quote) const {
        std::size_t end = offsetOfFurthest();
        if (quote == '"') {
            end = text_.rfind('"', end == 0 ? 0 : end - 1);
            for (std::size_t open = end; open != 0 && open != std::string::npos;) {
                open = text_.rfind('"', open - 1);
                if (open == std::string::npos || !isEscaped(open)) return open;
            }
            return end;
        }
        const auto isTokenCharacter = [](char letter) {
            return std::isalnum(static_cast<unsigned char>(letter)) != 0 || letter == '+' ||
                   letter == '-' || letter == '.';
        };
        if (end > 0 && !isTokenCharacter(text_[end - 1])) --end;
        while (end > 0 && isTokenCharacter(text_[end - 1]))
            --end;
        return end;
    }

    bool isEscaped(std::size_t quote) const {
        std::size_t slashes = 0;
        while (slashes < quote && text_[quote - slashes - 1] == '\\')
            ++slashes;
        return slashes % 2 == 1;
    }

    void requireObject() const {
        if (names_.isOpen()) return;
        throw usageError(at(0) + "a JSON object is expected", "write { \"NAME\": \"TEXT\", ... }");
    }

    template <typename Open>
    bool open(Open openLevel) {
        try {
            openLevel();
        } catch (const CommandError& error) {
            throw usageError(at(offsetOfFurthest() - 1) + error.what(), error.hint);
        }
        return true;
    }

    bool close() {
        names_.close();
        return true;
    }

    /// A fraction is a text.
    bool number(const std::string& digits) {
        if (digits.find_first_of("eE") == std::string::npos) {
            return add(digits, digits.find('.') == std::string::npos ? "int" : "text", 'n');
        }
        requireObject();
        names_.beginEntry();
        throw usageError(placeOfEntry(start('n')) + digits + " has an exponent", inQuotes);
    }

    /// `token` is a quote for a text.
    bool add(const std::string& text, const std::string& defaultHint, char token) {
        requireObject();
        names_.beginEntry();
        try {
            values.push_back(readValue(names_.nameAndHint(), text, defaultHint, reading_));
        } catch (const CommandError& error) {
            const std::string what = error.what();
            const bool isTooLarge = what.find("does not fit into 64 bits") != std::string::npos;
            throw CommandError(error.exitCode,
                               placeOfEntry(start(token)) +
                                   (isTooLarge ? text + " does not fit into 64 bits" : what),
                               isTooLarge ? inQuotes : error.hint);
        }
        return true;
    }

    std::string placeOfEntry(std::size_t offset) const {
        return at(offset) + "\"" + shortened(names_.name()) + "\": ";
    }

    static constexpr const char* inQuotes = "write it in quotes to hand it over as text";

    const std::string& text_;
    const std::string& place_;
    const ValueReadOptions& reading_;
    ValueNames names_{/*haveHints=*/true};
};

bool looksLikeXml(const std::string& content) {
    const std::size_t first = content.find_first_not_of("\xEF\xBB\xBF \t\r\n");
    return first != std::string::npos && content[first] == '<';
}

/// Notes the properties of a file that the library skipped.
void noteSkipped(const std::string& path, const std::set<std::string>& taken, Console& console) {
    std::string skipped;
    std::size_t count = 0;
    for (const std::string& name : propertyNames(path)) {
        if (taken.count(name) > 0) continue;
        skipped += count++ == 0 ? "" : ", ";
        skipped += name.empty() ? "(without a name)" : name;
    }
    if (count == 0) return;
    console.note(path + ": " + std::to_string(count) +
                 (count == 1 ? " property is" : " properties are") +
                 " skipped by the library: " + skipped);
}

std::vector<Value> readSimulatedInput(const std::string& path, const repgen::Generator& generator,
                                      Console& console) {
    std::vector<Value> values = simulatedValues(generator, path);
    if (values.empty()) {
        throw usageError("\"" + path + "\": the library finds no values in it",
                         "write JSON, or XML as \"rgen simulate\" does");
    }
    std::set<std::string> taken;
    for (const Value& value : values) {
        taken.insert(value.name);
        if (!value.isText() || !hasPlainAmpersand(value.content.text())) continue;
        console.note("\"" + shortened(value.name) +
                     "\": a plain \"&\" in simulated input is lost; " +
                     "write \"&amp;amp;\" in \"" + path + "\"");
    }
    noteSkipped(path, taken, console);
    return values;
}

}  // namespace

std::vector<Value> readJsonValues(const std::string& text, const std::string& place,
                                  const ValueReadOptions& reading) {
    requireNotUtf16(text, place);
    ValueEvents events(text, place, reading);
    const char* const start = text.data();
    const CountingIterator first(start, &events.furthest);
    const CountingIterator last(start + text.size(), &events.furthest);
    json::sax_parse(first, last, &events);
    return std::move(events.values);
}

std::vector<std::string> filesNamedIn(const std::string& path) {
    std::vector<std::string> files;
    std::error_code ignored;
    if (path == "-" || !std::filesystem::is_regular_file(std::filesystem::u8path(path), ignored)) {
        return files;
    }
    try {
        const std::string content = readInputFile(path, {});
        if (looksLikeXml(content)) return files;
        ValueReadOptions reading;
        reading.folder = folderOf(path);
        reading.filesNamed = &files;
        readJsonValues(content, path, reading);
    } catch (const CommandError&) {
        // The error is reported when the values are read.
    }
    return files;
}

std::vector<Value> readDataFile(const std::string& path, const std::string& pathHint, bool raw,
                                const repgen::Generator& generator, Console& console) {
    const std::string content = readInputFile(path, pathHint);
    if (path != "-" && looksLikeXml(content)) return readSimulatedInput(path, generator, console);
    ValueReadOptions reading;
    reading.raw = raw;
    reading.source = path == "-" ? "standard input" : path;
    reading.folder = path == "-" ? "." : folderOf(path);
    return readJsonValues(content, path, reading);
}

}  // namespace cli
