// A line is a JSON object whose members replace options of the command line.
//
// SPDX-License-Identifier: MIT
#include "data/batch_file.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>
#include <utility>

#include "base/command_error.h"
#include "base/input_file.h"
#include "base/json_error_text.h"
#include "base/suggestion.h"
#include "data/report_type.h"

namespace cli {
namespace {

/// Members keep their order: if a name occurs twice, the last value is used.
using Json = nlohmann::ordered_json;

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
        const std::string parent = keys_.size() > 1 ? keys_[keys_.size() - 2] : "";
        if (open_.back()->contains(value)) repeated.insert({parent, value});
        keys_.back() = value;
        return true;
    }
    bool parse_error(std::size_t place, const std::string&,
                     const nlohmann::detail::exception& error) override {
        offset = place == 0 ? 0 : place - 1;
        failure = jsonErrorText(error.what());
        return false;
    }

    Json object;
    /// Repeated members, each as a pair of the enclosing member and its name.
    std::set<std::pair<std::string, std::string>> repeated;
    /// What is wrong with the text, and where.
    std::string failure;
    std::size_t offset = 0;

private:
    bool add(Json value) {
        place(std::move(value));
        return true;
    }

    bool open(Json value) {
        open_.push_back(&place(std::move(value)));
        keys_.emplace_back();
        return true;
    }

    bool close() {
        open_.pop_back();
        keys_.pop_back();
        return true;
    }

    Json& place(Json value) {
        if (open_.empty()) return object = std::move(value);
        Json& parent = *open_.back();
        if (parent.is_object()) return parent[keys_.back()] = std::move(value);
        parent.push_back(std::move(value));
        return parent.back();
    }

    std::vector<Json*> open_;
    std::vector<std::string> keys_;
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
            fail("\"output\" cannot be standard output, which has room for one report",
                 "name the file to write");
        }
        return std::move(line_);
    }

private:
    [[noreturn]] void fail(const std::string& message, const std::string& hint) const {
        throw usageError(place_ + " " + message, hint);
    }

    /// A member of the line itself must not be given twice.
    void requireOnce() const {
        for (const auto& [parent, name] : repeated_) {
            if (parent.empty())
                fail("\"" + name + "\" is given more than once", "keep one of them");
        }
    }

    void parse(const std::string& text, LineEvents& events) const {
        if (Json::sax_parse(text, &events)) return;
        const std::size_t column = positionOf(text, events.offset).column;
        throw usageError(place_ + std::to_string(column) + ": not JSON: " + events.failure,
                         "correct the line");
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
        if (!value.is_array()) {
            line_.values.data.push_back(textOf("data", value));
            return;
        }
        for (const Json& file : value)
            line_.values.data.push_back(textOf("data", file));
    }

    [[noreturn]] void failAtValue(const std::string& member, const std::string& name) const {
        fail("\"" + member + "\": \"" + name + "\" must be a text or a whole number",
             "put it in quotes");
    }

    /// The digits of a number that is not a 64-bit integer.
    std::string digitsOf(const std::string& member, const std::string& name,
                         const Json& value) const {
        const std::string digits(value.get_binary().begin(), value.get_binary().end());
        if (digits.find_first_of(".eE") == std::string::npos) return digits;
        fail("\"" + member + "\": \"" + name + "\": " + digits + " is not a whole number",
             "write it in quotes to hand it over as text");
    }

    void takeValues(const std::string& member, const Json& object, std::vector<Value>& target) {
        if (!object.is_object())
            fail("\"" + member + "\" must be an object", "write { \"NAME\": ... }");
        ValueReadOptions reading;
        reading.raw = raw_;
        reading.source = member == "set" ? "\"set\"" : "\"pair\"";
        reading.filesNamed = filesNamed_;
        for (const auto& [name, value] : object.items()) {
            const bool isOtherNumber = value.is_binary() && member == "set";
            const bool isNumber = isOtherNumber || (value.is_number() && member == "set");
            if (!isNumber && !value.is_string()) {
                failAtValue(member, name);
            }
            const std::string text = isOtherNumber ? digitsOf(member, name, value)
                                     : isNumber    ? value.dump()
                                                   : value.get<std::string>();
            const std::string written = member == "set" ? name : name + ":text";
            try {
                target.push_back(readValue(written, text, isNumber ? "int" : "text", reading));
                // Adding the value twice makes ValueSet note the repeated name.
                if (repeated_.count({member, name}) > 0) target.push_back(target.back());
            } catch (const CommandError& error) {
                throw CommandError(error.exitCode, place_ + " \"" + name + "\": " + error.what(),
                                   error.hint);
            }
        }
    }

    std::string place_;
    bool raw_;
    std::vector<std::string>* filesNamed_;
    std::set<std::pair<std::string, std::string>> repeated_;
    BatchLine line_;
};

}  // namespace

BatchLine readBatchLine(const std::string& text, std::size_t line, const Arguments& arguments,
                        std::vector<std::string>* filesNamed) {
    const std::string place = inputName(arguments.batch) + ":" + std::to_string(line) + ":";
    return LineReader(place, arguments, filesNamed).read(text);
}

}  // namespace cli
