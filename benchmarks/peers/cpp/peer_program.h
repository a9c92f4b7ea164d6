// What the C++ peers share: the command line, the values of a workload and the two ways of
// measuring. A peer is a program that defines makeReportMaker. The peers in other languages have
// the same command line and print the same line.
//
// Command line: --values=FILE --template=FILE --output=FILE --way=each|once and either
//   --reports=N                  makes exactly N reports
//   --warm-up=S --seconds=S      makes reports for that long, and at least three of them
// The file of the report before is removed first each time.
// Printed: one line of JSON with the reports, their seconds and the peak of the memory.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "candidate_input.h"

namespace peers {

struct Options {
    std::string values;
    std::string templatePath;
    std::string output;
    /// The template is compiled once and kept, not read and compiled for each report.
    bool keepTemplate = false;
    int reports = 0;
    double warmUp = 0;
    double seconds = 0;
};

using benchmarks::Value;

/// How the value stands in a report.
std::string textOf(const Value& value);

std::string readFile(const std::string& path);
void writeFile(const std::string& path, const std::string& content);

/// One peer with its values, ready to make reports.
class ReportMaker {
public:
    ReportMaker() = default;
    virtual ~ReportMaker() = default;
    ReportMaker(const ReportMaker&) = delete;
    ReportMaker& operator=(const ReportMaker&) = delete;

    /// Makes one report; a failure is an exception.
    virtual void report() = 0;

    /// The peak of the memory so far, in units of 1,024 bytes.
    virtual long peakKib() const;
};

/// Prepares everything that does not belong to a report.
std::unique_ptr<ReportMaker> makeReportMaker(const Options& options, std::vector<Value> values);

}  // namespace peers
