// The main function of the C++ peers.
//
// SPDX-License-Identifier: MIT
#include "peer_program.h"

#include <chrono>
#include <cstdio>
#include <exception>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string_view>

#include "benchmark_platform.h"

namespace peers {
namespace {

using benchmarks::takeOption;

constexpr int fewestReports = 3;

struct Measured {
    int reports = 0;
    double seconds = 0;
};

Options parseOptions(int argc, char** argv) {
    Options options;
    std::string value;
    for (int index = 1; index < argc; ++index) {
        const std::string_view argument = argv[index];
        if (takeOption(argument, "--values=", options.values) ||
            takeOption(argument, "--template=", options.templatePath) ||
            takeOption(argument, "--output=", options.output)) {
            continue;
        }
        if (takeOption(argument, "--way=", value)) {
            options.keepTemplate = value == "once";
        } else if (takeOption(argument, "--reports=", value)) {
            options.reports = std::stoi(value);
        } else if (takeOption(argument, "--warm-up=", value)) {
            options.warmUp = std::stod(value);
        } else if (takeOption(argument, "--seconds=", value)) {
            options.seconds = std::stod(value);
        } else {
            throw std::runtime_error("unknown argument " + std::string(argument));
        }
    }
    return options;
}

std::vector<Value> readValues(const std::string& path) {
    std::vector<Value> values;
    benchmarks::readValueFile(path, [&values](const Value& value) { values.push_back(value); });
    return values;
}

/// Makes reports until both the count and the time are reached. Deletes the old file first, as the
/// library does: some file systems wait for the disk when a file is overwritten.
Measured makeReports(const Options& options, ReportMaker& maker, int fewest, double seconds) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point start = Clock::now();
    Measured measured;
    while (measured.reports < fewest || measured.seconds < seconds) {
        std::remove(options.output.c_str());
        maker.report();
        ++measured.reports;
        measured.seconds = std::chrono::duration<double>(Clock::now() - start).count();
    }
    return measured;
}

void runProgram(int argc, char** argv) {
    const Options options = parseOptions(argc, argv);
    const std::unique_ptr<ReportMaker> maker = makeReportMaker(options, readValues(options.values));
    Measured measured;
    if (options.reports > 0) {
        measured = makeReports(options, *maker, options.reports, 0);
    } else {
        makeReports(options, *maker, 1, options.warmUp);
        measured = makeReports(options, *maker, fewestReports, options.seconds);
    }
    std::printf("{\"reports\": %d, \"seconds\": %.9f, \"peak_kib\": %ld}\n", measured.reports,
                measured.seconds, maker->peakKib());
}

}  // namespace

std::string textOf(const Value& value) {
    return value.isNumber ? std::to_string(value.number) : value.text;
}

std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw std::runtime_error("cannot read " + path);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void writeFile(const std::string& path, const std::string& content) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    file.close();
    if (!file) throw std::runtime_error("cannot write " + path);
}

long ReportMaker::peakKib() const {
    return benchmarks::readProcessMemory().peakKib;
}

}  // namespace peers

int main(int argc, char** argv) {
    try {
        peers::runProgram(argc, argv);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", argv[0], error.what());
        return 1;
    }
}
