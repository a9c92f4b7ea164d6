// rgen explain: statuses in plain words.
//
// SPDX-License-Identifier: MIT
#include <cerrno>
#include <cstdlib>

#include "base/suggestion.h"
#include "commands/commands.h"
#include "library/generator.h"
#include "library/status_table.h"

namespace cli {
namespace {

std::string upperCase(std::string text) {
    for (char& letter : text) {
        if (letter >= 'a' && letter <= 'z') letter = static_cast<char>(letter - 'a' + 'A');
    }
    return text;
}

/// "RGEN_E_XSLT_APPLY", "E_XSLT_APPLY" or "XSLT_APPLY".
const StatusExplanation* findName(const std::string& word) {
    const std::string name = upperCase(word);
    for (const StatusExplanation& entry : statusTable()) {
        for (const char* prefix : {"", "RGEN_", "RGEN_E_"}) {
            if (prefix + name == entry.name) return &entry;
        }
    }
    return nullptr;
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
    for (const StatusExplanation& entry : statusTable())
        names.emplace_back(entry.name);
    const std::string nearest = nearestWord(word, names);
    const std::string lists = "\"rgen explain\" lists all of them";
    const std::string ending = nearest.empty() ? didYouMean("RGEN_E_" + word, names, lists)
                                               : didYouMean(word, names, lists);
    throw usageErrorOf("explain", "there is no status \"" + word + "\"", ending);
}

const StatusExplanation& wantedStatus(const std::string& word) {
    if (const StatusExplanation* const named = findName(word)) return *named;
    RgenStatus status = RGEN_OK;
    const StatusExplanation* const known = readStatus(word, status) ? findStatus(status) : nullptr;
    if (known == nullptr) failUnknown(word);
    return *known;
}

void describe(const StatusExplanation& entry, const std::string& text, JsonDocument& document) {
    std::vector<std::string> causes(entry.causes.begin(), entry.causes.end());
    document.set("status", Generator::statusHex(entry.status));
    document.set("name", std::string(entry.name));
    document.set("text", text);
    document.set("causes", causes);
    document.set("next", std::string(entry.next));
}

std::string explanation(const StatusExplanation& entry, const std::string& text) {
    std::string lines = Generator::statusWord(entry.status) + "\n" + text + "\n\nLikely causes:\n";
    for (const std::string_view cause : entry.causes)
        lines += "  - " + std::string(cause) + "\n";
    return lines + "\nNext: " + std::string(entry.next) + "\n";
}

}  // namespace

ExitCode runExplain(const Arguments& arguments, Console&, JsonDocument& document) {
    const Generator generator;
    if (!arguments.operands.empty()) {
        const StatusExplanation& entry = wantedStatus(arguments.operands.front());
        const std::string text = generator.statusText(entry.status);
        describe(entry, text, document);
        if (!arguments.json) printData(explanation(entry, text));
        return ExitCode::Done;
    }
    std::vector<JsonDocument> all;
    for (const StatusExplanation& entry : statusTable()) {
        const std::string text = generator.statusText(entry.status);
        JsonDocument one;
        describe(entry, text, one);
        all.push_back(std::move(one));
        if (!arguments.json) printData(Generator::statusWord(entry.status) + "  " + text + "\n");
    }
    document.set("statuses", all);
    return ExitCode::Done;
}

}  // namespace cli
