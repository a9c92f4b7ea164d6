// A parser of its own, since the word behind an option is its value whatever it looks like: the
// library quotes paths, but a path may begin with "-" and a base may be empty.
//
// SPDX-License-Identifier: MIT
#include "program/options.h"

#include <map>

#include "base/failure.h"

namespace vellum {
namespace {

Failure usage(const std::string& message) {
    return {ExitCode::Usage, message + "; \"vellum --help\" shows the options"};
}

std::map<std::string, std::string*> valueOptions(Options& options) {
    return {{"-i", &options.input},
            {"-b", &options.base},
            {"-t", &options.type},
            {"-o", &options.output},
            {"--engine", &options.engine}};
}

std::map<std::string, bool*> flags(Options& options) {
    return {{"-h", &options.help},
            {"--help", &options.help},
            {"--version", &options.version},
            {"--list-engines", &options.listEngines},
            {"--check", &options.check}};
}

void takeWords(const std::vector<std::string>& arguments, Options& options) {
    const auto values = valueOptions(options);
    const auto switches = flags(options);
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string& word = arguments[i];
        const auto value = values.find(word);
        const auto flag = switches.find(word);
        if (flag != switches.end()) {
            *flag->second = true;
        } else if (value != values.end()) {
            if (i + 1 == arguments.size()) throw usage(word + " needs a value");
            *value->second = arguments[++i];
        } else if (word.size() > 1 && word[0] == '-') {
            throw usage("there is no option \"" + word + "\"");
        } else {
            throw usage("\"" + word + "\" is not expected");
        }
    }
}

}  // namespace

const char* const helpText =
    "vellum makes a PDF of an HTML page with a browser or WeasyPrint.\n"
    "\n"
    "Examples:\n"
    "  vellum -i report.html -o report.pdf\n"
    "  vellum -i report.html -b images -t html -o report.pdf\n"
    "  vellum --check\n"
    "\n"
    "Options:\n"
    "  -i FILE           the page\n"
    "  -b BASE           base of relative links: a URL or a folder (default: the page's folder)\n"
    "  -t html           kind of the input; there is no other\n"
    "  -o FILE           the PDF\n"
    "  --engine NAME     this engine (a name or a path) and no other\n"
    "  --list-engines    which engines there are, in the order in which they are tried\n"
    "  --check           convert a built-in page and say with what\n"
    "  -h, --help        print this help\n"
    "  --version         print the version\n"
    "\n"
    "Variables: VELLUM_ENGINE, VELLUM_TIMEOUT (seconds), VELLUM_MEMORY (MiB), VELLUM_ON_ERROR\n"
    "(text, none, page)\n"
    "Exit codes: 0 done, 2 usage, 3 input, 4 output, 5 engine failed, 6 time was up,\n"
    "7 no engine, 8 cancelled, 9 the engine took too much memory\n";

void parseOptions(const std::vector<std::string>& arguments, Options& options) {
    takeWords(arguments, options);
    if (options.help || options.version || options.listEngines || options.check) return;
    if (options.input.empty()) throw usage("-i is missing");
    if (options.output.empty()) throw usage("-o is missing");
    if (options.type != "html") {
        throw Failure(ExitCode::Usage,
                      "-t \"" + options.type + "\" is not known; there is html only");
    }
}

}  // namespace vellum
