// Everything is taken from the table of commands.
//
// SPDX-License-Identifier: MIT
#include "front/help_text.h"

namespace cli {
namespace {

JsonDocument describedOption(const Option& option) {
    std::vector<std::string> names;
    if (!option.shortName.empty()) names.emplace_back(option.shortName);
    names.emplace_back(option.name);
    JsonDocument document;
    document.set("names", names);
    document.set("argument", std::string(option.argument));
    document.set("summary", std::string(option.summary));
    document.set("details", std::string(option.details));
    document.set("choices", choicesOf(option.choices));
    document.set("required", option.need == Need::Required);
    document.set("unless", std::string(option.unless));
    return document;
}

JsonDocument describedOperand(const Operand& operand) {
    JsonDocument document;
    document.set("name", std::string(operand.name));
    document.set("summary", std::string(operand.summary));
    document.set("choices", choicesOf(operand.choices));
    document.set("repeats", operand.repeats());
    document.set("required", operand.required());
    document.set("unless", std::string(operand.unless));
    return document;
}

JsonDocument describedCommand(const Command& command) {
    std::vector<JsonDocument> options;
    for (const Option& option : command.options)
        options.push_back(describedOption(option));
    std::vector<JsonDocument> operands;
    if (!command.operand.name.empty()) operands.push_back(describedOperand(command.operand));
    JsonDocument document;
    document.set("name", std::string(command.name));
    document.set("summary", std::string(command.summary));
    document.set("details", std::string(command.details));
    document.set("runs", command.run != nullptr);
    document.set("options", options);
    document.set("operands", operands);
    return document;
}

void addDescribed(const Command& command, std::vector<JsonDocument>& documents) {
    documents.push_back(describedCommand(command));
    for (const Command* inner : commandsInside(command))
        addDescribed(*inner, documents);
}

}  // namespace

std::string helpText(const Command& command, const std::string& usageAndOptions) {
    const std::string examples(command.examples);
    const std::size_t usage = usageAndOptions.find("Usage:");
    if (usage == std::string::npos) return examples + usageAndOptions;
    return usageAndOptions.substr(0, usage) + (command.name.empty() ? "" : "\n") + examples +
           usageAndOptions.substr(usage);
}

void describeCommands(const Command& command, JsonDocument& document) {
    std::vector<JsonDocument> commands;
    addDescribed(command, commands);
    document.set("commands", commands);
}

}  // namespace cli
