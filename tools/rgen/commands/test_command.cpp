// rgen test: whether reports still are what they are expected to be.
//
// SPDX-License-Identifier: MIT
#include <algorithm>
#include <filesystem>
#include <system_error>

#include "base/input_file.h"
#include "base/line_diff.h"
#include "base/paths.h"
#include "base/suggestion.h"
#include "base/text_functions.h"
#include "commands/commands.h"
#include "report/golden_case.h"
#include "report/report_output.h"
#include "report/test_coverage.h"
#include "report/test_results.h"
#include "templates/findings_document.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

void removeFile(const std::string& path) {
    std::error_code ignored;
    fs::remove(fs::u8path(path), ignored);
}

std::string withoutReturns(std::string text) {
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
    return text;
}

std::string reasonOf(const std::string& expected, const std::string& actual, const LineDiff& diff) {
    if (withoutReturns(expected) == withoutReturns(actual)) {
        return "only the ends of lines differ; keep the file from being converted";
    }
    return countText(diff.changedLines, "line") + (diff.changedLines == 1 ? " differs" : " differ");
}

bool printsLines(const Arguments& arguments) {
    return !arguments.json && arguments.test.junit != "-";
}

class TestCommand {
public:
    TestCommand(const Arguments& arguments, Console& console)
        : arguments_(arguments),
          console_(console),
          directory_(openDataDirectory(arguments.dataDir)) {}

    void run() {
        const std::vector<ReportType> types = wantedTypes();
        noteForeignFolders();
        for (const ReportType& type : types)
            runType(type);
        if (!results_.empty()) return;
        throw usageError("there is no test in \"" + directory_.path("tests") + "\"",
                         "write values into \"" + directory_.path("tests/TYPE/NAME/data.json") +
                             "\" and run rgen test --accept");
    }

    const std::vector<TestResult>& results() const { return results_; }
    const Findings& untested() const { return untested_; }
    const std::vector<std::string>& notes() const { return notes_; }

    std::size_t failed() const {
        return static_cast<std::size_t>(std::count_if(
            results_.begin(), results_.end(), [](const TestResult& one) { return !one.isGood(); }));
    }

private:
    std::vector<ReportType> wantedTypes() const {
        std::vector<ReportType> types;
        for (const std::string& operand : arguments_.operands)
            types.push_back(findReportType(directory_, operand));
        if (arguments_.type) types.push_back(findReportType(directory_, arguments_.type));
        return types.empty() ? reportTypes(directory_) : types;
    }

    /// A folder whose name is no report type has tests that never run.
    void noteForeignFolders() {
        std::vector<std::string> names;
        for (const ReportType& type : reportTypes(directory_))
            names.push_back(type.name);
        std::error_code failure;
        for (const auto& entry :
             fs::directory_iterator(fs::u8path(directory_.path("tests")), failure)) {
            const std::string name = entry.path().filename().u8string();
            std::error_code ignored;
            const bool isKnown = std::find(names.begin(), names.end(), name) != names.end();
            if (isKnown || name.front() == '.' || !entry.is_directory(ignored)) continue;
            console_.note("the tests in \"" + directory_.path("tests/" + name) +
                          "\" are not run: there is no report type \"" + name + "\"; " +
                          didYouMean(name, names, "\"rgen types\" lists them"));
        }
        notes_ = console_.notes();
    }

    void runType(const ReportType& type) {
        const std::vector<GoldenCase> cases = goldenCases(directory_, type);
        if (cases.empty()) return;
        TestCoverage coverage;
        for (const GoldenCase& golden : cases)
            runCase(golden, coverage);
        untested_.add(coverage.findings(directory_, type));
    }

    /// Only what is wrong with a test itself ends the command; a report that fails is a result.
    void runCase(const GoldenCase& golden, TestCoverage& coverage) {
        console_.beginNotes(golden.title() + ": ");
        GoldenRun run(golden, console_);
        const std::vector<std::string>& notes = console_.notes();
        notes_.insert(notes_.end(), notes.begin(), notes.end());
        for (const std::string& format : run.formats()) {
            TestResult result = resultOf(golden, run, format);
            if (printsLines(arguments_)) printLines(resultLines(result));
            const bool isMade = result.outcome != TestResult::Outcome::Failed;
            results_.push_back(std::move(result));
            if (isMade) coverage.add(run, format);
        }
    }

    TestResult resultOf(const GoldenCase& golden, GoldenRun& run, const std::string& format) const {
        TestResult result;
        result.type = golden.type.name;
        result.name = golden.name;
        result.format = format;
        result.expectedFile = golden.expectedFile(format);
        try {
            compare(run.report(format), result);
        } catch (const CommandError& error) {
            if (error.exitCode != ExitCode::Refused) throw;
            result.outcome = TestResult::Outcome::Failed;
            result.reason = errorText(error);
        }
        return result;
    }

    void compare(const std::string& report, TestResult& result) const {
        const std::string newFile = result.expectedFile + ".new";
        const bool isExpected = exists(result.expectedFile);
        const std::string expected =
            isExpected ? readInputFile(result.expectedFile, "check the test") : "";
        const bool isSame = isExpected && expected == report;
        if (isSame || arguments_.test.accept) {
            if (!isSame) writeOutputFile(result.expectedFile, report);
            removeFile(newFile);
            result.outcome = isSame ? TestResult::Outcome::Passed : TestResult::Outcome::Accepted;
            return;
        }
        writeOutputFile(newFile, report);
        result.newFile = newFile;
        if (!isExpected) {
            result.outcome = TestResult::Outcome::NotExpected;
            result.reason = "there is no \"" + result.expectedFile +
                            "\" yet; look at the new report and accept it with --accept";
            return;
        }
        const LineDiff diff = lineDiff(expected, report);
        result.outcome = TestResult::Outcome::Differs;
        result.reason = reasonOf(expected, report, diff);
        result.diff = diff.text;
    }

    const Arguments& arguments_;
    Console& console_;
    DataDirectory directory_;
    std::vector<TestResult> results_;
    Findings untested_;
    std::vector<std::string> notes_;
};

void requireOneDocument(const Arguments& arguments) {
    if (!arguments.json || arguments.test.junit != "-") return;
    throw usageErrorOf("test", "--json and --junit - exclude each other",
                       "both write to standard output");
}

std::string summaryOf(const TestCommand& command) {
    const std::string all = countText(command.results().size(), "report");
    if (command.failed() == 0) return all + " as expected";
    return std::to_string(command.failed()) + " of " + all +
           " not as expected; look at the .new files, and accept them with --accept";
}

}  // namespace

ExitCode runTest(const Arguments& arguments, Console& console, JsonDocument& document) {
    requireOneDocument(arguments);
    TestCommand command(arguments, console);
    command.run();
    const std::string& junit = arguments.test.junit;
    if (!junit.empty()) writeOutput(junit, junitDocument(command.results()));
    if (printsLines(arguments)) {
        for (const Finding& finding : command.untested().all())
            printLines(inOneLine(findingLine(finding)) + "\n");
    }
    document.set("ok", command.failed() == 0);
    document.set("reports", static_cast<std::int64_t>(command.results().size()));
    document.set("failed", static_cast<std::int64_t>(command.failed()));
    document.set("results", resultRows(command.results()));
    document.set("untested", findingRows(command.untested()));
    document.set("notes", command.notes());
    console.say(summaryOf(command));
    return command.failed() == 0 ? ExitCode::Done : ExitCode::Findings;
}

}  // namespace cli
