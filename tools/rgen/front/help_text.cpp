// The examples in the help texts.
//
// SPDX-License-Identifier: MIT
#include "front/help_text.h"

namespace cli {
namespace {

struct CommandExamples {
    const char* command;
    const char* text;
};

constexpr CommandExamples allExamples[] = {
    {"",
     "rgen makes reports with strata_repgenlib: from values and an XSLT template to html, pdf\n"
     "or txt.\n\n"
     "Examples:\n"
     "  rgen init case\n"
     "  rgen persist set -d case --data case/acquisition-lab.json\n"
     "  rgen report -d case --data case/acquisition.json -o report.html\n"
     "  rgen report -d case --data case/acquisition.json -o bericht.html --lang de\n\n"
     "Exit codes: 0 done, 1 the library refused, 2 usage, 4 output not verified,\n"
     "5 surroundings (no data directory, no converter), 130 interrupted, 141 nobody reads\n\n"},
    {"report",
     "Examples:\n"
     "  rgen report -d case --data case/acquisition.json -o report.html\n"
     "  rgen report -d case -t acquisition -f txt -o - --set Report.Number=AR-7\n"
     "  rgen report -d case -o report.html --set Device.Capacity:size=500107862016 \\\n"
     "      --set Report.Created:datetime=now --set Sector.First:bytes=@sector.bin\n"
     "  rgen report -d case --data case/acquisition.json -o bericht.txt --lang de\n"
     "  rgen report -d case --batch items.ndjson\n\n"
     "Hints: text, int, size, speed, address, time, date, datetime, bytes\n\n"},
    {"persist",
     "Examples:\n"
     "  rgen persist set -d case \"Lab.Name=Brackwater & Lindqvell\" Examiner.Name=Marta\n"
     "  rgen persist get -d case\n"
     "  rgen persist get -d case Lab.Name\n"
     "  rgen persist unset -d case Examiner.Name\n\n"},
    {"persist get",
     "Examples:\n"
     "  rgen persist get -d case                 all names and texts\n"
     "  rgen persist get -d case Lab.Name        one text\n"
     "  rgen persist get -d case --json\n\n"},
    {"persist set",
     "Examples:\n"
     "  rgen persist set -d case \"Lab.Name=Brackwater & Lindqvell\" Examiner.Name=Marta\n"
     "  rgen persist set -d case --data lab.json\n"
     "  rgen persist unset -d case Examiner.Name   (there are no empty texts)\n\n"},
    {"persist unset",
     "Examples:\n"
     "  rgen persist unset -d case Examiner.Name Reviewer.Name\n\n"},
    {"persist replace",
     "Examples:\n"
     "  rgen persist replace -d case Lab.Name=Brackwater\n"
     "  rgen persist replace -d case --data lab.json\n\n"},
    {"dump",
     "Examples:\n"
     "  rgen dump --data case/acquisition.json -o dump.xml\n"
     "  rgen dump --set Device.Capacity:size=500107862016 -o -\n\n"},
    {"simulate",
     "Examples:\n"
     "  rgen simulate --data case/acquisition.json -o simulated.xml\n"
     "  rgen report -d case --data simulated.xml -o report.html\n\n"},
    {"init",
     "Examples:\n"
     "  rgen init case\n"
     "  rgen report -d case --data case/acquisition.json -o report.html\n\n"},
    {"types",
     "Examples:\n"
     "  rgen types -d case\n"
     "  rgen types -d case --json\n\n"},
    {"explain",
     "Examples:\n"
     "  rgen explain 0xC0020002\n"
     "  rgen explain RGEN_E_TEMPLATE_NOT_FOUND\n"
     "  rgen explain\n\n"},
    {"doctor",
     "Examples:\n"
     "  rgen doctor\n"
     "  rgen doctor -d case\n\n"},
    {"completion",
     "Examples:\n"
     "  rgen completion bash > ~/.local/share/bash-completion/completions/rgen\n"
     "  rgen completion zsh > \"${fpath[1]}/_rgen\"\n\n"},
};

std::string examplesOf(const std::string& command) {
    for (const CommandExamples& examples : allExamples) {
        if (command == examples.command) return examples.text;
    }
    return {};
}

}  // namespace

std::string helpText(const std::string& command, const std::string& options) {
    const std::string text = examplesOf(command);
    const std::size_t usage = options.find("Usage:");
    if (usage == std::string::npos) return text + options;
    const std::string before = options.substr(0, usage);
    return before + (command.empty() ? "" : "\n") + text + options.substr(usage);
}

}  // namespace cli
