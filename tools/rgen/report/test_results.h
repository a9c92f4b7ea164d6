// The results of tests of report types: as lines, for --json and in JUnit's format.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "base/json_document.h"

namespace cli {

struct TestResult {
    enum class Outcome { Passed, Accepted, Differs, NotExpected, Failed };

    std::string type;
    std::string name;
    std::string format;
    Outcome outcome = Outcome::Passed;
    /// Why it did not pass, in one line.
    std::string reason;
    /// The lines that differ.
    std::string diff;
    std::string expectedFile;
    /// The report of this run; empty when there is no such file.
    std::string newFile;

    bool isGood() const { return outcome == Outcome::Passed || outcome == Outcome::Accepted; }
};

/// "passed", "accepted", "differs", "not-expected", "failed".
const char* outcomeName(TestResult::Outcome outcome);

/// One line, and of one that did not pass the difference below it.
std::string resultLines(const TestResult& result);

std::vector<JsonDocument> resultRows(const std::vector<TestResult>& results);

/// An XML file that continuous integration services read.
std::string junitDocument(const std::vector<TestResult>& results);

}  // namespace cli
