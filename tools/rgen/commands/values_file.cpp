// SPDX-License-Identifier: MIT
#include "commands/values_file.h"

#include "base/text_functions.h"
#include "data/report_input.h"
#include "report/report_generation.h"

namespace cli {

void requireOneOutput(const Arguments& arguments) {
    if (arguments.report.output != "-" || !arguments.json) return;
    throw usageErrorOf(arguments.command, "--json and --output - exclude each other",
                       "the file itself is on standard output");
}

ValueSet requiredValues(const Arguments& arguments, const repgen::Generator& generator,
                        Console& console) {
    ReportInput input = collectInput(arguments.values, generator, console);
    noteLosses(input, arguments.values.raw, console);
    if (!input.values.empty()) return std::move(input.values);
    throw usageErrorOf(arguments.command, "there are no values",
                       "give values with --data or --set");
}

CommandError unwritable(const std::string& path, const std::system_error& error) {
    return {ExitCode::Unverified, "cannot write \"" + path + "\": " + error.code().message(),
            "check that the folder exists, may be written and has room"};
}

void describeValuesFile(const Arguments& arguments, std::size_t values, Console& console,
                        JsonDocument& document) {
    const std::string& output = arguments.report.output;
    document.set("output", output);
    document.set("values", static_cast<std::int64_t>(values));
    document.set("notes", console.notes());
    console.say(outputName(output) + ": " + countText(values, "value"));
}

}  // namespace cli
