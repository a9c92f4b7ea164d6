// The main function of the candidates. The profiler counts inside benchmark_one_report only.
//
// SPDX-License-Identifier: MIT
#include "report_benchmark.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <string_view>
#include <vector>

#include "benchmark_platform.h"

extern "C" __attribute__((noinline)) void benchmark_one_report(benchmarks::ReportMaker* maker) {
    try {
        maker->report();
    } catch (const std::exception& error) {
        benchmarks::fail(error.what());
    }
}

namespace benchmarks {
namespace {

using Makers = std::vector<std::unique_ptr<ReportMaker>>;

bool takeOwnOption(std::string_view argument, Options& options) {
    std::string value;
    if (takeOption(argument, "--workload=", options.workload)) return true;
    if (takeOption(argument, "--output=", options.output)) return true;
    if (takeOption(argument, "--allocator=", options.allocator)) return true;
    if (takeOption(argument, "--mode=", value)) {
        options.mode = std::stoull(value);
    } else if (takeOption(argument, "--threads=", value)) {
        options.threads = std::stoi(value);
    } else if (takeOption(argument, "--reports=", value)) {
        options.reports = std::stoi(value);
    } else if (takeOption(argument, "--warm-up=", value)) {
        options.warmUp = std::stoi(value);
    } else if (takeOption(argument, "--growth=", value)) {
        options.growth = {std::stoi(value), std::stoi(value.substr(value.find(',') + 1))};
    } else {
        return false;
    }
    return true;
}

/// Reads and removes our own options; the rest is for Google Benchmark.
Options parseOptions(std::vector<char*>& arguments) {
    Options options;
    std::vector<char*> others;
    for (char* argument : arguments) {
        if (!takeOwnOption(argument, options)) others.push_back(argument);
    }
    arguments = others;
    if (options.workload.empty() || options.output.empty() || options.threads < 1) {
        fail("--workload=FOLDER and --output=PATH are needed, and at least one thread");
    }
    return options;
}

Makers makeMakers(const Options& options) {
    Makers makers;
    for (int thread = 0; thread < options.threads; ++thread) {
        const std::string suffix = thread == 0 ? "" : "." + std::to_string(thread);
        makers.push_back(makeReportMaker(options, options.output + suffix));
    }
    return makers;
}

void makeExactly(const Options& options, ReportMaker& maker) {
    for (int number = 0; number < options.warmUp; ++number)
        maker.report();
    const auto [first, second] = options.growth;
    long residentAfterFirst = 0;
    long residentAfterSecond = 0;
    for (int number = 1; number <= options.reports; ++number) {
        benchmark_one_report(&maker);
        if (number == first) residentAfterFirst = readProcessMemory().residentKib;
        if (number == second) residentAfterSecond = readProcessMemory().residentKib;
    }
    const ProcessMemory memory = readProcessMemory();
    std::printf(
        "{\"reports\": %d, \"peak_kib\": %ld, \"resident_kib\": %ld, \"growth\": [%ld, %ld]}\n",
        options.reports, memory.peakKib, memory.residentKib, residentAfterFirst,
        residentAfterSecond);
}

void measure(const Options& options, const Makers& makers, std::vector<char*> arguments) {
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) std::exit(1);
    const auto run = [&makers](benchmark::State& state) {
        ReportMaker& maker = *makers.at(static_cast<std::size_t>(state.thread_index()));
        for (auto unused : state) {
            static_cast<void>(unused);
            benchmark_one_report(&maker);
        }
    };
    benchmark::RegisterBenchmark("report", run)->UseRealTime()->Threads(options.threads);
    benchmark::RunSpecifiedBenchmarks();
}

int runProgram(std::vector<char*> arguments) {
    const Options options = parseOptions(arguments);
    prepareCandidate(options);
    const Makers makers = makeMakers(options);
    if (options.reports > 0) {
        makeExactly(options, *makers.front());
    } else {
        measure(options, makers, arguments);
    }
    return 0;
}

}  // namespace

std::size_t countValues(const Options& options) {
    std::size_t count = 0;
    readValues(options, [&count](const Value&) { ++count; });
    return count;
}

void readValues(const Options& options, const std::function<void(const Value&)>& take) {
    readValueFile(options.workload + "/values.tsv", take);
}

void fail(const std::string& what) {
    std::fprintf(stderr, "benchmark: %s\n", what.c_str());
    std::fflush(stderr);
    std::_Exit(1);
}

}  // namespace benchmarks

int main(int argc, char** argv) {
    try {
        return benchmarks::runProgram(std::vector<char*>(argv, argv + argc));
    } catch (const std::exception& error) {
        benchmarks::fail(error.what());
    }
}
