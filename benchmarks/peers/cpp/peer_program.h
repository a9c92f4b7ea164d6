// The common part of the C++ peers: command line, values of a workload, two kinds of measurement. A
// peer is a program that defines makeReportMaker. The peers in other languages have the same
// command line and output.
//
// Command line: --values=FILE --template=FILE --output=FILE --way=each|once and either --reports=N
// makes exactly N reports --warm-up=S --seconds=S      makes reports for so many seconds, and at
// least three The file of the previous report is deleted before each report. Output: one line of
// JSON with the number of reports, their seconds and the peak memory.
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
    /// The template is compiled once, instead of read and compiled for each report.
    bool keepTemplate = false;
    int reports = 0;
    double warmUp = 0;
    double seconds = 0;
};

using benchmarks::Value;

/// The value as text, as it appears in a report.
std::string textOf(const Value& value);

std::string readFile(const std::string& path);
void writeFile(const std::string& path, const std::string& content);

/// A peer with its values, ready to make reports.
class ReportMaker {
public:
    ReportMaker() = default;
    virtual ~ReportMaker() = default;
    ReportMaker(const ReportMaker&) = delete;
    ReportMaker& operator=(const ReportMaker&) = delete;

    /// Makes one report; throws on failure.
    virtual void report() = 0;

    /// The peak memory so far in KiB.
    virtual long peakKib() const;
};

/// Prepares what is not part of making a report.
std::unique_ptr<ReportMaker> makeReportMaker(const Options& options, std::vector<Value> values);

}  // namespace peers
