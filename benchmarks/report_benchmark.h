// The common part of the candidates: command line, values of a workload, two kinds of measurement.
// A candidate is a program that defines makeReportMaker.
//
// Command line: --workload=FOLDER --output=PATH and, in addition to the flags of Google Benchmark,
// --threads=N      so many threads, each with its own maker and output file --reports=N      makes
// exactly N reports and prints one line of JSON instead --warm-up=N      with --reports: reports
// before these, not inside benchmark_one_report --growth=A,B     with --reports: print the resident
// memory after the reports A and B --mode=2         the report as bytes (library only)
// --allocator=mimalloc   another allocator for the XML libraries (baseline only)
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "candidate_input.h"

namespace benchmarks {

/// The report type of every workload.
constexpr const char* wantedGuid = "7c9e6679-7425-40de-944b-e07fc1f90ae7";

struct Options {
    std::string workload;
    std::string output;
    std::string allocator = "c";
    std::uint64_t mode = 0;
    int threads = 1;
    int reports = 0;
    int warmUp = 0;
    std::pair<int, int> growth;

    std::string dataParent() const { return workload + "/data"; }
};

/// The number of values of a workload.
std::size_t countValues(const Options& options);

/// Passes the values to `take` one by one, so that each candidate stores them only in its own form.
void readValues(const Options& options, const std::function<void(const Value&)>& take);

/// Prints the error and exits with code 1.
[[noreturn]] void fail(const std::string& what);

/// A candidate, ready to make reports on one thread.
class ReportMaker {
public:
    ReportMaker() = default;
    virtual ~ReportMaker() = default;
    ReportMaker(const ReportMaker&) = delete;
    ReportMaker& operator=(const ReportMaker&) = delete;

    /// Makes one report; throws on failure.
    virtual void report() = 0;
};

/// Prepares the process, before the first maker is created.
void prepareCandidate(const Options& options);

/// Prepares what is not part of making a report. The reports are written to `outputPath`.
std::unique_ptr<ReportMaker> makeReportMaker(const Options& options, const std::string& outputPath);

}  // namespace benchmarks
