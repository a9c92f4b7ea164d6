// rgen simulate: the values as simulated input, which the library reads back at once.
//
// SPDX-License-Identifier: MIT
#include <map>
#include <system_error>

#include "base/interruption.h"
#include "base/safe_files.h"
#include "base/text_functions.h"
#include "base/xml_text.h"
#include "commands/commands.h"
#include "commands/values_file.h"
#include "data/xml_documents.h"
#include "library/library_calls.h"
#include "report/report_output.h"

namespace cli {
namespace {

bool hasNoText(const Value& value, const std::string& content) {
    const bool isBytes = value.content.type() == repgen::ValueType::ByteArray;
    return (value.isText() && trimmed(content).empty()) ||
           (isBytes && value.content.bytes().empty());
}

/// Says what the library finds in the file that differs from what was to be written.
void noteDifferences(const ValueSet& wanted, const repgen::Generator& generator,
                     const std::string& path, Console& console) {
    std::map<std::string, Value> read;
    for (Value& value : simulatedValues(generator, path)) {
        std::string name = value.name;
        read[std::move(name)] = std::move(value);
    }
    for (const auto& [name, value] : wanted.values()) {
        const std::string subject = "\"" + shortened(name) + "\": simulated input carries ";
        const auto found = read.find(name);
        const std::string content = value.isText() ? contentOf(value.content.markedText()) : "";
        const bool isEmpty = trimmed(name).empty() || hasNoText(value, content);
        if (found == read.end()) {
            const bool isRenamed = name != trimmed(name) && read.count(trimmed(name)) > 0;
            if (!isEmpty && !isRenamed) {
                throw CommandError(ExitCode::Unverified,
                                   "simulated input cannot carry \"" + shortened(name) + "\"",
                                   "texts hold at most 10,000,000 bytes there");
            }
            console.note(subject + (isRenamed ? "it as \"" + shortened(trimmed(name)) + "\""
                                    : trimmed(name).empty() ? "no value without a name"
                                                            : "no value without a text"));
        } else if (value.isText() && found->second.content.text() != content) {
            console.note(subject + "\"" + shortened(unescaped(found->second.content.text())) +
                         "\" instead of \"" + shortened(unescaped(content)) + "\"");
        }
    }
}

/// For reading it back before anything is written to the output.
void writeCopy(const std::string& path, const std::string& bytes) {
    try {
        writeNewFile(path, bytes);
    } catch (const std::system_error& error) {
        throw unwritable(path, error);
    }
}

}  // namespace

ExitCode runSimulate(const Arguments& arguments, Console& console, JsonDocument& document) {
    requireOneOutput(arguments);
    repgen::Generator generator;
    const ValueSet values = requiredValues(arguments, generator, console);
    const std::string bytes = simulatedInputDocument(values.values());
    const std::string& output = arguments.report.output;
    const TemporaryFolder folder;
    const std::string copy = folder.file("simulated.xml");
    writeCopy(copy, bytes);
    noteDifferences(values, generator, copy, console);
    writeOutput(output, bytes);
    describeValuesFile(arguments, values.size(), console, document);
    return ExitCode::Done;
}

}  // namespace cli
