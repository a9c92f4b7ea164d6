// What the candidates share: the command line, the values of a workload and the two ways of
// measuring. A candidate is a program that defines makeReportMaker.
//
// Command line: --workload=FOLDER --output=PATH and, besides Google Benchmark's own flags,
//   --threads=N      that many threads, each with a maker and an output file of its own
//   --reports=N      makes exactly N reports and prints one line of JSON instead
//   --warm-up=N      with --reports: reports before these, outside benchmark_one_report
//   --growth=A,B     with --reports: the resident memory after report A and after report B
//   --mode=2         the report as bytes (candidates that can)
//   --allocator=mimalloc   another allocator for the XML libraries (candidates that can)
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

/// Hands the values over one by one, so that each candidate keeps them in its own form alone.
void readValues(const Options& options, const std::function<void(const Value&)>& take);

/// A failure of any kind; ends the program with code 1.
[[noreturn]] void fail(const std::string& what);

/// One candidate, ready to make reports on one thread.
class ReportMaker {
public:
    ReportMaker() = default;
    virtual ~ReportMaker() = default;
    ReportMaker(const ReportMaker&) = delete;
    ReportMaker& operator=(const ReportMaker&) = delete;

    /// Makes one report and checks that it succeeds.
    virtual void report() = 0;
};

/// Prepares the process, before the first maker.
void prepareCandidate(const Options& options);

/// Prepares everything that does not belong to a report, which goes to `outputPath`.
std::unique_ptr<ReportMaker> makeReportMaker(const Options& options, const std::string& outputPath);

}  // namespace benchmarks
