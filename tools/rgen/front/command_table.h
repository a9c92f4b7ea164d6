// The one table of commands. The parser, the checks of arguments, the help, the completion scripts
// and, by "rgen --help --json", the manual page and the tables of docs/rgen.md are made from it.
// To add a command: a row here and its function in commands/. To add an option: a row in
// option_table.h, named in the rows of its commands.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/arguments.h"
#include "base/command_error.h"
#include "base/console.h"
#include "base/json_document.h"
#include "front/option.h"

namespace cli {

/// How many operands a command takes.
enum class Count { ZeroOrOne, One, Any, OneOrMore };

/// The arguments of a command that belong to no option.
struct Operand {
    /// "NAME"; empty when the command takes no operands.
    std::string_view name = {};
    std::string_view summary = {};
    Count count = Count::ZeroOrOne;
    /// The option `unless` makes required operands optional.
    std::string_view unless = {};
    /// The possible values, separated by "|"; empty for any text.
    std::string_view choices = {};

    bool required() const { return count == Count::One || count == Count::OneOrMore; }
    bool repeats() const { return count == Count::Any || count == Count::OneOrMore; }
};

struct Command {
    /// "report", "persist get"; empty for rgen itself.
    std::string_view name;
    /// One line for the list of commands.
    std::string_view summary;
    /// Sentences for the manual page and docs/rgen.md, as those of an option; may be empty.
    std::string_view details;
    /// What help shows between the summary and the usage.
    std::string_view examples;
    /// All that it takes, those of every command included.
    std::vector<Option> options;
    Operand operand = {};
    /// Null when only the commands inside it can be run.
    ExitCode (*run)(const Arguments&, Console&, JsonDocument&) = nullptr;
};

/// All commands in the order of the help; rgen itself is the first.
const std::vector<Command>& commandTable();

const Command& findCommand(std::string_view name);

/// The commands directly inside this one: for "persist" those from "persist get" on.
std::vector<const Command*> commandsInside(const Command& command);

/// The name without its last word: "persist" for "persist get".
std::string_view parentName(const Command& command);

/// The part of the name after the last blank: "get".
std::string lastWord(const Command& command);

/// The values in "html|pdf|txt".
std::vector<std::string> choicesOf(std::string_view choices);

}  // namespace cli
