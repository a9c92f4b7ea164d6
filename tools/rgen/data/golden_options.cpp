// SPDX-License-Identifier: MIT
#include "data/golden_options.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "base/command_error.h"
#include "base/console.h"
#include "base/input_file.h"
#include "base/json_error_text.h"
#include "base/suggestion.h"
#include "base/text_functions.h"
#include "data/report_type.h"

namespace cli {
namespace {

using Json = nlohmann::json;

const std::vector<std::string> members = {"formats", "lang", "timezone", "raw"};

class OptionsReader {
public:
    explicit OptionsReader(std::string path) : path_(std::move(path)) {}

    GoldenOptions read() {
        const Json object = parsed();
        if (!object.is_object()) fail("a JSON object is expected", "write { \"formats\": ... }");
        for (const auto& [name, value] : object.items())
            take(name, value);
        return std::move(options_);
    }

private:
    [[noreturn]] void fail(const std::string& what, const std::string& advice) const {
        throw usageError("\"" + path_ + "\": " + what, advice);
    }

    Json parsed() const {
        const std::string text = readInputFile(path_, "check the folder of the test");
        try {
            return Json::parse(text);
        } catch (const Json::parse_error& error) {
            const std::size_t offset = error.byte == 0 ? 0 : error.byte - 1;
            throw usageError(placeText(path_, positionOf(text, offset)) +
                                 ": not JSON: " + jsonErrorText(error.what()),
                             "correct it");
        }
    }

    std::string textOf(const std::string& name, const Json& value) const {
        if (!value.is_string()) fail("\"" + name + "\" must be a text", "put it in quotes");
        return value.get<std::string>();
    }

    void take(const std::string& name, const Json& value) {
        if (name == "formats") {
            takeFormats(value);
        } else if (name == "lang") {
            options_.lang = textOf(name, value);
        } else if (name == "timezone") {
            options_.timeZone = textOf(name, value);
        } else if (name == "raw") {
            if (!value.is_boolean()) fail("\"raw\" must be true or false", "write true or false");
            options_.raw = value.get<bool>();
        } else {
            fail("there is no option \"" + shortened(name) + "\"",
                 didYouMean(name, members, "there is: " + joined(members)));
        }
    }

    void takeFormats(const Json& value) {
        if (!value.is_array()) {
            addFormat(textOf("formats", value));
            return;
        }
        for (const Json& format : value)
            addFormat(textOf("formats", format));
    }

    void addFormat(const std::string& format) {
        const std::vector<std::string>& known = outputFormats();
        if (std::find(known.begin(), known.end(), format) == known.end()) {
            fail("there is no format \"" + shortened(format) + "\"",
                 didYouMean(format, known, "there is: " + joined(known)));
        }
        options_.formats.push_back(format);
    }

    std::string path_;
    GoldenOptions options_;
};

}  // namespace

GoldenOptions readGoldenOptions(const std::string& path) {
    return OptionsReader(path).read();
}

}  // namespace cli
