// SPDX-License-Identifier: MIT
#include "report/test_results.h"

#include <algorithm>

#include "base/console.h"
#include "base/text_functions.h"
#include "base/xml_text.h"

namespace cli {
namespace {

/// For content and for attributes in double quotes.
std::string escaped(const std::string& text) {
    std::string result;
    for (const char character : withInvalidCharactersReplaced(text)) {
        switch (character) {
            case '&':
                result += "&amp;";
                break;
            case '<':
                result += "&lt;";
                break;
            case '>':
                result += "&gt;";
                break;
            case '"':
                result += "&quot;";
                break;
            default:
                result += character;
        }
    }
    return result;
}

std::string title(const TestResult& result) {
    return result.type + "/" + result.name + (result.format.empty() ? "" : " " + result.format);
}

std::size_t countOf(const std::vector<TestResult>& results, TestResult::Outcome outcome) {
    return static_cast<std::size_t>(
        std::count_if(results.begin(), results.end(),
                      [outcome](const TestResult& one) { return one.outcome == outcome; }));
}

std::string junitCase(const TestResult& result) {
    const std::string name =
        result.format.empty() ? result.name : result.name + " (" + result.format + ")";
    const std::string start =
        "    <testcase classname=\"" + escaped(result.type) + "\" name=\"" + escaped(name) + "\"";
    if (result.isGood()) return start + "/>\n";
    const bool isError = result.outcome == TestResult::Outcome::Failed;
    const std::string element = isError ? "error" : "failure";
    return start + ">\n      <" + element + " message=\"" + escaped(result.reason) + "\" type=\"" +
           outcomeName(result.outcome) + "\">" + escaped(result.diff) + "</" + element +
           ">\n    </testcase>\n";
}

}  // namespace

const char* outcomeName(TestResult::Outcome outcome) {
    switch (outcome) {
        case TestResult::Outcome::Passed:
            return "passed";
        case TestResult::Outcome::Accepted:
            return "accepted";
        case TestResult::Outcome::Differs:
            return "differs";
        case TestResult::Outcome::NotExpected:
            return "not-expected";
        default:
            return "failed";
    }
}

std::string resultLines(const TestResult& result) {
    const char* const word = result.outcome == TestResult::Outcome::Passed     ? "passed  "
                             : result.outcome == TestResult::Outcome::Accepted ? "accepted"
                                                                               : "FAILED  ";
    std::string lines = std::string(word) + "  " + inOneLine(title(result)) +
                        (result.reason.empty() ? "" : ": " + inOneLine(result.reason)) + "\n";
    for (const std::string& line : split(result.diff, '\n'))
        lines += line.empty() ? "" : "    " + line + "\n";
    return lines;
}

std::vector<JsonDocument> resultRows(const std::vector<TestResult>& results) {
    std::vector<JsonDocument> rows;
    for (const TestResult& result : results) {
        JsonDocument row;
        row.set("type", result.type);
        row.set("name", result.name);
        row.set("format", result.format);
        row.set("outcome", outcomeName(result.outcome));
        row.set("reason", result.reason);
        row.set("diff", result.diff);
        row.set("expected", result.expectedFile);
        row.set("new", result.newFile);
        rows.push_back(std::move(row));
    }
    return rows;
}

std::string junitDocument(const std::vector<TestResult>& results) {
    const std::size_t errors = countOf(results, TestResult::Outcome::Failed);
    const std::size_t failures = countOf(results, TestResult::Outcome::Differs) +
                                 countOf(results, TestResult::Outcome::NotExpected);
    const std::string counts = " tests=\"" + std::to_string(results.size()) + "\" failures=\"" +
                               std::to_string(failures) + "\" errors=\"" + std::to_string(errors) +
                               "\"";
    std::string document = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites" + counts +
                           ">\n  <testsuite name=\"rgen test\"" + counts + ">\n";
    for (const TestResult& result : results)
        document += junitCase(result);
    return document + "  </testsuite>\n</testsuites>\n";
}

}  // namespace cli
