// A line is a JSON object whose members replace options of the command line.
//
// SPDX-License-Identifier: MIT
#include "data/batch_file.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>
#include <utility>
#include <vector>

#include "base/command_error.h"
#include "base/console.h"
#include "base/input_file.h"
#include "base/json_error_text.h"
#include "base/suggestion.h"
#include "data/report_type.h"
#include "data/value_names.h"

namespace cli {
namespace {

/// Members keep their order: if a name occurs twice, the last value is used.
using Json = nlohmann::ordered_json;

/// Keys, and numbers of list entries, from the line itself to a member.
using Path = std::vector<std::string>;

const std::vector<std::string> members = {"output", "format", "type", "data", "set",
                                          "pair",   "lang",   "mode", "base"};

/// Builds the object of a line. The parser's own handler would lose repeated members and the digits
/// of a number that does not fit.
class LineEvents : public nlohmann::json_sax<Json> {
public:
    bool null() override { return add(nullptr); }
    bool boolean(bool value) override { return add(value); }
    bool number_integer(number_integer_t value) override { return add(value); }
    bool number_unsigned(number_unsigned_t value) override { return add(value); }
    bool number_float(number_float_t, const string_t& digits) override {
        return add(Json::binary({digits.begin(), digits.end()}));
    }
    bool string(string_t& value) override { return add(value); }
    bool binary(binary_t&) override { return false; }
    bool start_object(std::size_t) override { return open(Json::object()); }
    bool end_object() override { return close(); }
    bool start_array(std::size_t) override { return open(Json::array()); }
    bool end_array() override { return close(); }
    bool key(string_t& value) override {
        Level& level = open_.back();
        level.key = value;
        if (level.container->contains(value)) repeated.insert(pathOfEntry());
        return true;
    }
    bool parse_error(std::size_t place, const std::string&,
                     const nlohmann::detail::exception& error) override {
        offset = place == 0 ? 0 : place - 1;
        failure = jsonErrorText(error.what());
        return false;
    }

    Json object;
    /// The paths of members that are repeated in their object.
    std::set<Path> repeated;
    /// What is wrong with the text, and where.
    std::string failure;
    std::size_t offset = 0;

private:
    bool add(Json value) {
        place(std::move(value));
        return true;
    }

    struct Level {
        Json* container;
        /// Of the current entry of an object.
        std::string key;
    };

    bool open(Json value) {
        open_.push_back({&place(std::move(value)), {}});
        return true;
    }

    bool close() {
        open_.pop_back();
        return true;
    }

    Json& place(Json value) {
        if (open_.empty()) return object = std::move(value);
        Json& parent = *open_.back().container;
        if (parent.is_object()) return parent[open_.back().key] = std::move(value);
        parent.push_back(std::move(value));
        return parent.back();
    }

    /// The path of the current entry of the innermost container, which is an object.
    Path pathOfEntry() const {
        Path path;
        for (const auto& [container, key] : open_)
            path.push_back(container->is_object() ? key : std::to_string(container->size() - 1));
        return path;
    }

    std::vector<Level> open_;
};

/// Reads the values of "set" or the texts of "pair", objects and lists included. Throws
/// CommandErrors without the place of the line.
class NestedValues {
public:
    NestedValues(const std::string& member, const std::set<Path>& repeated,
                 const ValueReadOptions& reading, std::vector<Value>& target)
        : isSet_(member == "set"),
          repeated_(repeated),
          reading_(reading),
          target_(target),
          path_{member},
          names_(isSet_) {}

    void take(const Json& value) {
        if (value.is_object()) {
            takeObject(value);
        } else if (value.is_array()) {
            takeList(value);
        } else {
            names_.beginEntry();
            if (!value.is_null()) takeValue(value);
        }
    }

private:
    void takeObject(const Json& object) {
        names_.openObject();
        for (const auto& [key, value] : object.items()) {
            setKey(key);
            takeEntry(key, value);
        }
        names_.close();
    }

    void takeList(const Json& list) {
        names_.openList();
        std::size_t index = 0;
        for (const Json& value : list)
            takeEntry(std::to_string(index++), value);
        names_.close();
    }

    void takeEntry(const std::string& key, const Json& value) {
        path_.push_back(key);
        take(value);
        path_.pop_back();
    }

    void setKey(const std::string& key) try {
        names_.setKey(key);
    } catch (const CommandError& error) {
        throw usageError("\"" + shortened(key) + "\": " + error.what(), error.hint);
    }

    void takeValue(const Json& value) try {
        if (!isSet_ && !value.is_string()) throw usageError("a text is expected", inQuotes);
        const std::string text = value.is_string() ? value.get<std::string>() : textOf(value);
        const bool isInteger =
            !value.is_string() && !value.is_boolean() && text.find('.') == std::string::npos;
        const std::string name = isSet_ ? names_.nameAndHint() : names_.name() + ":text";
        target_.push_back(readValue(name, text, isInteger ? "int" : "text", reading_));
        // Adding the value twice makes ValueSet note the repeated name.
        if (repeated_.count(path_) > 0) target_.push_back(target_.back());
    } catch (const CommandError& error) {
        throw CommandError(error.exitCode, "\"" + shortened(names_.name()) + "\": " + error.what(),
                           error.hint);
    }

    /// The digits of a number that is not a 64-bit integer are bytes.
    static std::string textOf(const Json& value) {
        if (!value.is_binary()) return value.dump();
        std::string digits(value.get_binary().begin(), value.get_binary().end());
        if (digits.find_first_of("eE") == std::string::npos) return digits;
        throw usageError(digits + " has an exponent", inQuotes);
    }

    static constexpr const char* inQuotes = "write it in quotes to hand it over as text";

    bool isSet_;
    const std::set<Path>& repeated_;
    const ValueReadOptions& reading_;
    std::vector<Value>& target_;
    Path path_;
    ValueNames names_;
};

class LineReader {
public:
    LineReader(std::string place, const Arguments& arguments, std::vector<std::string>* filesNamed)
        : place_(std::move(place)), raw_(arguments.values.raw), filesNamed_(filesNamed) {
        line_.type = arguments.type;
        line_.report = arguments.report;
        line_.report.output.clear();
        line_.values = arguments.values;
    }

    BatchLine read(const std::string& text) {
        LineEvents events;
        parse(text, events);
        const Json& object = events.object;
        repeated_ = std::move(events.repeated);
        if (!object.is_object()) fail("a JSON object is expected", "write { \"output\": ... }");
        requireOnce();
        for (const auto& [name, value] : object.items())
            take(name, value);
        if (line_.report.output.empty()) fail("\"output\" is missing", "name the file to write");
        if (line_.report.output == "-") {
            fail("a batch cannot write to standard output", "name a file in \"output\"");
        }
        return std::move(line_);
    }

private:
    [[noreturn]] void fail(const std::string& message, const std::string& hint) const {
        throw usageError(place_ + " " + message, hint);
    }

    /// A member of the line itself must not be given twice.
    void requireOnce() const {
        for (const Path& path : repeated_) {
            if (path.size() == 1) {
                fail("\"" + path[0] + "\" is given more than once", "keep one of them");
            }
        }
    }

    void parse(const std::string& text, LineEvents& events) const {
        if (Json::sax_parse(text, &events)) return;
        const std::size_t column = positionOf(text, events.offset).column;
        const bool hasLastComma = lineOfLastComma(text, events.offset) != 0;
        throw usageError(place_ + std::to_string(column) + ": not JSON: " + events.failure,
                         hasLastComma ? "remove the last comma" : "correct the line");
    }

    std::string textOf(const std::string& name, const Json& value) const {
        if (!value.is_string()) fail("\"" + name + "\" must be a text", "put it in quotes");
        std::string text = value.get<std::string>();
        // The system would cut the name there. For an output this ends the whole run, elsewhere.
        if (name != "output" && text.find('\0') != std::string::npos) {
            fail("\"" + name + "\" has a zero character", "take out \\u0000");
        }
        return text;
    }

    static void checkChoice(const LineReader& reader, const std::string& name,
                            const std::string& word, const std::vector<std::string>& known) {
        if (std::find(known.begin(), known.end(), word) != known.end()) return;
        reader.fail("there is no " + name + " \"" + word + "\"",
                    didYouMean(word, known, "\"rgen report --help\" lists them"));
    }

    void take(const std::string& name, const Json& value) {
        if (name == "data") return takeData(value);
        if (name == "set") return takeValues(name, value, line_.set);
        if (name == "pair") return takeValues(name, value, line_.pairs);
        if (std::find(members.begin(), members.end(), name) == members.end()) {
            fail("there is no member \"" + name + "\"",
                 didYouMean(name, members,
                            "there is: output, format, type, data, set, pair, lang, "
                            "mode and base"));
        }
        const std::string text = textOf(name, value);
        if (name == "output") line_.report.output = text;
        if (name == "format") line_.report.format = text;
        if (name == "type") line_.type = text;
        if (name == "lang") line_.report.lang = text;
        if (name == "mode") line_.report.mode = text;
        if (name == "base") line_.report.base = text;
        if (name == "format") checkChoice(*this, name, text, outputFormats());
        if (name == "mode") checkChoice(*this, name, text, {"file", "bytes"});
    }

    void takeData(const Json& value) {
        line_.values.data.clear();
        line_.values.dataHint = "check \"data\" in this line";
        if (!value.is_array()) {
            line_.values.data.push_back(textOf("data", value));
            return;
        }
        for (const Json& file : value)
            line_.values.data.push_back(textOf("data", file));
    }

    void takeValues(const std::string& member, const Json& object, std::vector<Value>& target) {
        if (!object.is_object())
            fail("\"" + member + "\" must be an object", "write { \"NAME\": ... }");
        ValueReadOptions reading;
        reading.raw = raw_;
        reading.source = "\"" + member + "\"";
        reading.filesNamed = filesNamed_;
        NestedValues values(member, repeated_, reading, target);
        try {
            values.take(object);
        } catch (const CommandError& error) {
            throw CommandError(error.exitCode, place_ + " " + error.what(), error.hint);
        }
    }

    std::string place_;
    bool raw_;
    std::vector<std::string>* filesNamed_;
    std::set<Path> repeated_;
    BatchLine line_;
};

}  // namespace

BatchLine readBatchLine(const std::string& text, std::size_t line, const Arguments& arguments,
                        std::vector<std::string>* filesNamed) {
    const std::string place = inputName(arguments.batch) + ":" + std::to_string(line) + ":";
    return LineReader(place, arguments, filesNamed).read(text);
}

}  // namespace cli
