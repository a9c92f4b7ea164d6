// SPDX-License-Identifier: MIT
#include "data/report_input.h"

#include <algorithm>

#include "base/command_error.h"
#include "base/console.h"
#include "base/xml_text.h"
#include "data/data_file.h"

namespace cli {
namespace {

ValueReadOptions readingFor(const std::string& source, bool raw) {
    ValueReadOptions reading;
    reading.raw = raw;
    reading.source = source;
    return reading;
}

bool losesAmpersand(const std::string& content, Readings readings) {
    return hasPlainAmpersand(content) ||
           (readings == Readings::Twice && hasPlainAmpersand(unescaped(content)));
}

void notePlainAmpersands(const ValueSet& values, Readings readings, Console& console) {
    const std::string good = readings == Readings::Twice ? "&amp;amp;" : "&amp;";
    for (const auto& [name, value] : values.values()) {
        if (!value.isText() || !losesAmpersand(value.content.text(), readings)) continue;
        console.note("\"" + shortened(name) + "\": with --raw a plain \"&\" is lost; write \"" +
                     good + "\"");
    }
}

}  // namespace

void addAssignments(const std::vector<std::string>& assignments, const std::string& option,
                    bool raw, ValueSet& values) {
    for (const std::string& assignment : assignments)
        values.add(readAssignment(assignment, option, readingFor(option, raw)));
}

ReportInput collectInput(const ValueArguments& arguments, const repgen::Generator& generator,
                         Console& console) {
    ReportInput input;
    if (std::count(arguments.data.begin(), arguments.data.end(), "-") > 1) {
        throw usageError("--data - is given more than once", "standard input can be read once");
    }
    for (const std::string& path : arguments.data) {
        for (Value& value :
             readDataFile(path, arguments.dataHint, arguments.raw, generator, console))
            input.values.add(std::move(value));
    }
    addAssignments(arguments.set, "--set", arguments.raw, input.values);
    for (const std::string& pair : arguments.pair)
        input.pairs.add(readPair(pair, "--pair", readingFor("--pair", arguments.raw)));
    return input;
}

void noteLosses(const ReportInput& input, bool raw, Console& console, Readings readings) {
    for (const ValueSet* set : {&input.values, &input.pairs}) {
        set->noteRepeated(console);
        if (raw) notePlainAmpersands(*set, readings, console);
    }
}

}  // namespace cli
