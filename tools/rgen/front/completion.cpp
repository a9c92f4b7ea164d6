// Scripts for bash and zsh, made from the table of commands.
//
// SPDX-License-Identifier: MIT
#include "front/completion.h"

#include <algorithm>

#include "base/text_functions.h"
#include "front/command_table.h"

namespace cli {
namespace {

std::vector<std::string> namesOf(const Option& option) {
    std::vector<std::string> names;
    if (!option.shortName.empty()) names.emplace_back(option.shortName);
    names.emplace_back(option.name);
    return names;
}

bool takesValue(const Option& option) {
    return !option.argument.empty();
}

/// The words that can follow a command.
std::string nextWords(const Command& command) {
    std::vector<std::string> words = choicesOf(command.operand.choices);
    for (const Command* inner : commandsInside(command))
        words.push_back(lastWord(*inner));
    for (const Option& option : command.options) {
        for (const std::string& name : namesOf(option))
            words.push_back(name);
    }
    return joined(words, " ");
}

void addOnce(std::vector<std::string>& texts, const std::string& text) {
    if (std::find(texts.begin(), texts.end(), text) == texts.end()) texts.push_back(text);
}

/// The cases of one "case" statement for options with a fixed choice of values, each named once.
std::string bashChoices() {
    std::vector<std::string> cases;
    for (const Command& command : commandTable()) {
        for (const Option& option : command.options) {
            if (option.choices.empty()) continue;
            addOnce(cases, "        " + joined(namesOf(option), " | ") + ")\n" +
                               "            COMPREPLY=($(compgen -W \"" +
                               joined(choicesOf(option.choices), " ") +
                               "\" -- \"$current\"))\n            return\n            ;;\n");
        }
    }
    return joined(cases, "");
}

/// The patterns of the options that satisfy `isWanted`, for a "case" statement.
template <typename Predicate>
std::string bashOptions(const Predicate& isWanted) {
    std::vector<std::string> names;
    for (const Command& command : commandTable()) {
        for (const Option& option : command.options) {
            if (!isWanted(option)) continue;
            for (const std::string& name : namesOf(option))
                addOnce(names, name);
        }
    }
    return joined(names, " | ");
}

bool takesFile(const Option& option) {
    return takesValue(option) && option.choices.empty() &&
           option.completion == Completion::FileNames;
}

std::string bashScript() {
    std::string commands;
    std::string words;
    for (const Command& command : commandTable()) {
        const std::string name(command.name);
        if (!name.empty()) commands += (commands.empty() ? "" : " | ") + ("\"" + name + "\"");
        words += "        \"" + name + "\") words=\"" + nextWords(command) + "\" ;;\n";
    }
    return "# Completion of rgen for bash.\n"
           "_rgen() {\n"
           "    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}\n"
           "    local command= folder=. words= next i\n"
           "    for ((i = 1; i < COMP_CWORD; i++)); do\n"
           "        next=${command:+$command }${COMP_WORDS[i]}\n"
           "        case $next in\n"
           "        " +
           commands +
           ") command=$next ;;\n"
           "        esac\n"
           "        case ${COMP_WORDS[i]} in\n"
           "        -d | --data-dir) folder=${COMP_WORDS[i + 1]} ;;\n"
           "        esac\n"
           "    done\n"
           "    case $previous in\n" +
           bashChoices() + "        " + bashOptions([](const Option& option) {
               return option.completion == Completion::ReportTypes;
           }) +
           ")\n"
           "            while IFS= read -r next; do\n"
           "                [[ $next != \"$current\"* ]] || COMPREPLY+=(\"$(printf %q "
           "\"$next\")\")\n"
           "            done < <(\"${COMP_WORDS[0]}\" types -d \"$folder\" 2>/dev/null | cut -f "
           "1)\n"
           "            return\n"
           "            ;;\n"
           "        " +
           bashOptions(takesFile) +
           ")\n"
           "            compopt -o filenames 2>/dev/null\n"
           "            mapfile -t COMPREPLY < <(compgen -f -- \"$current\")\n"
           "            return\n"
           "            ;;\n"
           "    esac\n"
           "    case $command in\n" +
           words +
           "    esac\n"
           "    COMPREPLY=($(compgen -W \"$words\" -- \"$current\"))\n"
           "    if ((${#COMPREPLY[@]} == 0)); then\n"
           "        compopt -o filenames 2>/dev/null\n"
           "        mapfile -t COMPREPLY < <(compgen -f -- \"$current\")\n"
           "    fi\n"
           "}\n"
           "complete -F _rgen rgen rgen.exe\n";
}

/// A text inside single quotes and brackets.
std::string zshText(const std::string& text) {
    std::string quoted;
    for (const char letter : text) {
        if (letter == '\'') {
            quoted += "'\\''";
        } else if (letter == '[' || letter == ']' || letter == ':' || letter == '\\') {
            quoted += std::string("\\") + letter;
        } else {
            quoted += letter;
        }
    }
    return quoted;
}

std::string zshValues(std::string_view choices) {
    return choices.empty() ? "_files" : "(" + joined(choicesOf(choices), " ") + ")";
}

std::string zshOption(const Option& option) {
    const std::vector<std::string> names = namesOf(option);
    std::string spec = "        ";
    if (std::holds_alternative<std::vector<std::string>& (*)(Arguments&)>(option.target)) {
        spec += "'*'" + names.back();
    } else if (names.size() > 1) {
        spec += "'(" + joined(names, " ") + ")'{" + joined(names, ",") + "}";
    } else {
        spec += names.front();
    }
    spec += "'[" + zshText(std::string(option.summary)) + "]";
    if (takesValue(option)) spec += ":value:" + zshValues(option.choices);
    return spec + "' \\\n";
}

std::string zshFunctionName(const Command& command) {
    std::string name = command.name.empty() ? "_rgen" : "_rgen_" + std::string(command.name);
    std::replace(name.begin(), name.end(), ' ', '_');
    return name;
}

/// One function for each command; a command with commands inside it calls theirs.
std::string zshFunction(const Command& command) {
    std::string text = zshFunctionName(command) +
                       "() {\n    local context state state_descr line\n" +
                       "    typeset -A opt_args\n    _arguments -C \\\n";
    for (const Option& option : command.options)
        text += zshOption(option);
    const std::vector<const Command*> inside = commandsInside(command);
    if (inside.empty()) {
        return text + "        '*:operand:" + zshValues(command.operand.choices) + "'\n}\n";
    }
    std::string names;
    std::string cases;
    for (const Command* inner : inside) {
        const std::string word = lastWord(*inner);
        const std::string summary(inner->summary);
        names += (names.empty() ? "" : " ") + word + "\\:\"" + zshText(summary) + "\"";
        cases += "        " + word + ") " + zshFunctionName(*inner) + " ;;\n";
    }
    return text + "        '1:command:((" + names + "))' \\\n        '*::argument:->argument'\n" +
           "    [[ $state == argument ]] || return\n    case $words[1] in\n" + cases +
           "    esac\n}\n";
}

std::string zshScript() {
    std::string functions;
    for (const Command& command : commandTable())
        functions += zshFunction(command);
    return "#compdef rgen\n# Completion of rgen for zsh.\n" + functions +
           "if [[ $funcstack[1] == _rgen ]]; then\n    _rgen \"$@\"\nelse\n"
           "    compdef _rgen rgen\nfi\n";
}

}  // namespace

ExitCode runCompletion(const Arguments& arguments, Console&, JsonDocument& document) {
    const bool isBash = arguments.operands.front() == "bash";
    const std::string script = isBash ? bashScript() : zshScript();
    document.set("shell", arguments.operands.front());
    document.set("script", script);
    if (!arguments.json) printData(script);
    return ExitCode::Done;
}

}  // namespace cli
