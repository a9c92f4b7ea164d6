// rgen completion: scripts for bash and zsh, made from the same table as the parser.
//
// SPDX-License-Identifier: MIT
#include <algorithm>

#include "base/text_functions.h"
#include "commands/commands.h"
#include "front/command_line.h"

namespace cli {
namespace {

/// Calls `visit` for each command with the words that lead to it, rgen itself first.
template <typename Visit>
void forEachCommand(const CommandOutline& command, const std::string& words, const Visit& visit) {
    visit(command, words);
    for (const CommandOutline& inner : command.commands)
        forEachCommand(inner, words.empty() ? inner.name : words + " " + inner.name, visit);
}

/// Everything that may stand next behind a command.
std::string nextWords(const CommandOutline& command) {
    std::vector<std::string> words = command.operands;
    for (const CommandOutline& inner : command.commands)
        words.push_back(inner.name);
    for (const OptionOutline& option : command.options)
        words.insert(words.end(), option.names.begin(), option.names.end());
    return joined(words, " ");
}

/// The cases of one "case" statement for options with a fixed choice of values, each named once.
std::string bashChoices(const CommandOutline& outline) {
    std::vector<std::string> cases;
    forEachCommand(outline, "", [&cases](const CommandOutline& command, const std::string&) {
        for (const OptionOutline& option : command.options) {
            if (option.choices.empty()) continue;
            std::string line = "        " + joined(option.names, " | ") + ")\n" +
                               "            COMPREPLY=($(compgen -W \"" +
                               joined(option.choices, " ") +
                               "\" -- \"$current\"))\n            return\n            ;;\n";
            const bool isKnown = std::find(cases.begin(), cases.end(), line) != cases.end();
            if (!isKnown) cases.push_back(std::move(line));
        }
    });
    return joined(cases, "");
}

std::string bashValueOptions(const CommandOutline& outline) {
    std::vector<std::string> names;
    forEachCommand(outline, "", [&names](const CommandOutline& command, const std::string&) {
        for (const OptionOutline& option : command.options) {
            if (!option.takesValue || !option.choices.empty()) continue;
            for (const std::string& name : option.names) {
                const bool isKnown = std::find(names.begin(), names.end(), name) != names.end();
                if (!isKnown && name != "--type" && name != "-t") names.push_back(name);
            }
        }
    });
    return joined(names, " | ");
}

std::string bashScript(const CommandOutline& outline) {
    std::string commands;
    std::string words;
    forEachCommand(outline, "", [&](const CommandOutline& command, const std::string& path) {
        if (!path.empty()) commands += (commands.empty() ? "" : " | ") + ("\"" + path + "\"");
        words += "        \"" + path + "\") words=\"" + nextWords(command) + "\" ;;\n";
    });
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
           bashChoices(outline) +
           "        -t | --type)\n"
           "            while IFS= read -r next; do\n"
           "                [[ $next != \"$current\"* ]] || COMPREPLY+=(\"$(printf %q "
           "\"$next\")\")\n"
           "            done < <(\"${COMP_WORDS[0]}\" types -d \"$folder\" 2>/dev/null | cut -f "
           "1)\n"
           "            return\n"
           "            ;;\n"
           "        " +
           bashValueOptions(outline) +
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

std::string zshOption(const OptionOutline& option) {
    const bool isRepeatable = option.names.back() == "--set" || option.names.back() == "--data" ||
                              option.names.back() == "--pair";
    std::string spec = "        ";
    if (isRepeatable) {
        spec += "'*'" + option.names.back();
    } else if (option.names.size() > 1) {
        spec += "'(" + joined(option.names, " ") + ")'{" + joined(option.names, ",") + "}";
    } else {
        spec += option.names.front();
    }
    spec += "'[" + zshText(option.summary) + "]";
    if (option.takesValue) {
        const std::string action =
            option.choices.empty() ? "_files" : "(" + joined(option.choices, " ") + ")";
        spec += ":value:" + action;
    }
    return spec + "' \\\n";
}

std::string zshFunctionName(const std::string& path) {
    std::string name = path.empty() ? "_rgen" : "_rgen_" + path;
    for (char& letter : name) {
        if (letter == ' ') letter = '_';
    }
    return name;
}

/// One function for each command; a command with commands of its own passes on to theirs.
std::string zshFunction(const CommandOutline& command, const std::string& path) {
    std::string text = zshFunctionName(path) + "() {\n    local context state state_descr line\n" +
                       "    typeset -A opt_args\n    _arguments -C \\\n";
    for (const OptionOutline& option : command.options)
        text += zshOption(option);
    if (command.commands.empty()) {
        const std::string action =
            command.operands.empty() ? "_files" : "(" + joined(command.operands, " ") + ")";
        return text + "        '*:operand:" + action + "'\n}\n";
    }
    std::string names;
    std::string cases;
    for (const CommandOutline& inner : command.commands) {
        const std::string words = path.empty() ? inner.name : path + " " + inner.name;
        names += (names.empty() ? "" : " ") + inner.name + "\\:\"" + zshText(inner.summary) + "\"";
        cases += "        " + inner.name + ") " + zshFunctionName(words) + " ;;\n";
    }
    return text + "        '1:command:((" + names + "))' \\\n        '*::argument:->argument'\n" +
           "    [[ $state == argument ]] || return\n    case $words[1] in\n" + cases +
           "    esac\n}\n";
}

std::string zshScript(const CommandOutline& outline) {
    std::string functions;
    forEachCommand(outline, "",
                   [&functions](const CommandOutline& command, const std::string& path) {
                       functions += zshFunction(command, path);
                   });
    return "#compdef rgen\n# Completion of rgen for zsh.\n" + functions +
           "if [[ $funcstack[1] == _rgen ]]; then\n    _rgen \"$@\"\nelse\n"
           "    compdef _rgen rgen\nfi\n";
}

}  // namespace

ExitCode runCompletion(const Arguments& arguments, Console&, JsonDocument& document) {
    const bool isBash = arguments.operands.front() == "bash";
    const CommandOutline outline = commandOutline();
    const std::string script = isBash ? bashScript(outline) : zshScript(outline);
    document.set("shell", arguments.operands.front());
    document.set("script", script);
    if (!arguments.json) printData(script);
    return ExitCode::Done;
}

}  // namespace cli
