// A line is a JSON object; its members take the place of options.
//
// SPDX-License-Identifier: MIT
#include "batch_file.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "command_error.h"
#include "input_file.h"
#include "parser_words.h"
#include "report_type.h"
#include "suggestion.h"

namespace cli {
namespace {

/// Members keep their order: of two values of one name the later counts.
using Json = nlohmann::ordered_json;

const std::vector<std::string> members = {"output", "format", "type", "data", "set",
                                          "pair",   "lang",   "mode", "base"};

class LineReader {
public:
    LineReader(std::string place, const Arguments& arguments)
        : place_(std::move(place)), raw_(arguments.values.raw) {
        line_.type = arguments.type;
        line_.report = arguments.report;
        line_.report.output.clear();
        line_.values = arguments.values;
    }

    BatchLine read(const std::string& text) {
        const Json object = parse(text);
        if (!object.is_object()) fail("a JSON object is expected", "write { \"output\": ... }");
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

    Json parse(const std::string& text) const {
        try {
            return Json::parse(text);
        } catch (const Json::parse_error& error) {
            const std::size_t offset = error.byte == 0 ? 0 : error.byte - 1;
            const std::size_t column = positionOf(text, offset).column;
            throw usageError(
                place_ + std::to_string(column) + ": not JSON: " + parserWords(error.what()),
                "correct the line");
        } catch (const Json::exception& error) {
            throw usageError(place_ + " not JSON: " + parserWords(error.what()),
                             "correct the line");
        }
    }

    std::string textOf(const std::string& name, const Json& value) const {
        if (!value.is_string()) fail("\"" + name + "\" must be a text", "put it in quotes");
        std::string text = value.get<std::string>();
        // The system would end a name there. An output like that ends the whole run.
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

    void takeValues(const std::string& member, const Json& object, std::vector<Value>& target) {
        if (!object.is_object())
            fail("\"" + member + "\" must be an object", "write { \"NAME\": ... }");
        ValueReading reading;
        reading.raw = raw_;
        reading.source = member == "set" ? "\"set\"" : "\"pair\"";
        for (const auto& [name, value] : object.items()) {
            const bool isNumber = value.is_number() && member == "set";
            if (!isNumber && !value.is_string()) {
                failAtValue(member, name);
            }
            const std::string text = isNumber ? value.dump() : value.get<std::string>();
            const std::string written = member == "set" ? name : name + ":text";
            try {
                target.push_back(readValue(written, text, isNumber ? "int" : "text", reading));
            } catch (const CommandError& error) {
                throw CommandError(error.exitCode, place_ + " \"" + name + "\": " + error.what(),
                                   error.hint);
            }
        }
    }

    std::string place_;
    bool raw_;
    BatchLine line_;
};

}  // namespace

BatchLine readBatchLine(const std::string& text, std::size_t line, const Arguments& arguments) {
    const std::string place = inputName(arguments.batch) + ":" + std::to_string(line) + ":";
    return LineReader(place, arguments).read(text);
}

}  // namespace cli
