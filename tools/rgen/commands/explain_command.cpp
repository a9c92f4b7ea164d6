// rgen explain: statuses in plain words. Templates are in explain_template.cpp.
//
// SPDX-License-Identifier: MIT
#include <cerrno>
#include <cstdlib>
#include <optional>

#include "base/suggestion.h"
#include "commands/commands.h"
#include "commands/explain_template.h"
#include "commands/status_advice.h"
#include "library/library_calls.h"

namespace cli {
namespace {

std::string upperCase(std::string text) {
    for (char& letter : text) {
        if (letter >= 'a' && letter <= 'z') letter = static_cast<char>(letter - 'a' + 'A');
    }
    return text;
}

/// In the order of rgen_status.h.
std::vector<RgenStatus> allStatuses() {
    std::vector<RgenStatus> statuses;
    RgenStatus status = RGEN_OK;
    while (rgenh_getStatusAt(statuses.size(), &status) != 0)
        statuses.push_back(status);
    return statuses;
}

/// "RGEN_E_XSLT_APPLY", "E_XSLT_APPLY" or "XSLT_APPLY".
std::optional<RgenStatus> statusNamed(const std::string& word) {
    const std::string name = upperCase(word);
    for (const RgenStatus status : allStatuses()) {
        for (const char* prefix : {"", "RGEN_", "RGEN_E_"}) {
            if (prefix + name == repgen::statusName(status)) return status;
        }
    }
    return std::nullopt;
}

/// "0xC0020002", "C0020002", "-1073610750", "3221356546", "0".
bool readStatus(const std::string& word, RgenStatus& status) {
    const bool isDecimal = word.find_first_not_of("-0123456789") == std::string::npos &&
                           (word.size() != 8 || word[0] == '-');
    char* end = nullptr;
    errno = 0;
    const long long number = std::strtoll(word.c_str(), &end, isDecimal ? 10 : 16);
    if (word.empty() || *end != '\0' || errno == ERANGE) return false;
    if (number < -2147483648LL || number > 4294967295LL) return false;
    status = static_cast<RgenStatus>(static_cast<std::uint32_t>(number));
    return true;
}

[[noreturn]] void failUnknown(const std::string& word) {
    std::vector<std::string> names;
    for (const RgenStatus status : allStatuses())
        names.emplace_back(repgen::statusName(status));
    const std::string nearest = nearestWord(word, names);
    const std::string lists = "\"rgen explain\" lists all of them";
    const std::string ending = nearest.empty() ? didYouMean("RGEN_E_" + word, names, lists)
                                               : didYouMean(word, names, lists);
    throw usageErrorOf("explain", "there is no status \"" + word + "\"", ending);
}

RgenStatus wantedStatus(const std::string& word) {
    if (const auto named = statusNamed(word)) return *named;
    RgenStatus status = RGEN_OK;
    if (!readStatus(word, status) || repgen::statusName(status).empty()) failUnknown(word);
    return status;
}

std::vector<std::string> causesOf(RgenStatus status) {
    std::vector<std::string> causes;
    while (const char* const cause = rgenh_getStatusCause(status, causes.size()))
        causes.emplace_back(cause);
    return causes;
}

void describe(RgenStatus status, JsonDocument& document) {
    document.set("status", statusHex(status));
    document.set("name", std::string(repgen::statusName(status)));
    document.set("text", repgen::statusText(status));
    document.set("causes", causesOf(status));
    document.set("next", rgenh_getStatusNextStep(status));
    document.set("withRgen", adviceOfRgen(status));
}

std::string explanation(RgenStatus status) {
    std::string lines =
        statusWord(status) + "\n" + repgen::statusText(status) + "\n\nLikely causes:\n";
    for (const std::string& cause : causesOf(status))
        lines += "  - " + cause + "\n";
    lines += std::string("\nNext: ") + rgenh_getStatusNextStep(status) + "\n";
    const std::string advice = adviceOfRgen(status);
    return advice.empty() ? lines : lines + "With rgen: " + advice + "\n";
}

}  // namespace

ExitCode runExplain(const Arguments& arguments, Console& console, JsonDocument& document) {
    if (isAboutTemplate(arguments)) return explainTemplates(arguments, console, document);
    if (!arguments.operands.empty()) {
        const RgenStatus status = wantedStatus(arguments.operands.front());
        describe(status, document);
        if (!arguments.json) printData(explanation(status));
        return ExitCode::Done;
    }
    std::vector<JsonDocument> all;
    for (const RgenStatus status : allStatuses()) {
        JsonDocument one;
        describe(status, one);
        all.push_back(std::move(one));
        if (!arguments.json)
            printData(statusWord(status) + "  " + repgen::statusText(status) + "\n");
    }
    document.set("statuses", all);
    return ExitCode::Done;
}

}  // namespace cli
