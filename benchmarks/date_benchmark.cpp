// Compares a dump of 20,000 dates with one of 20,000 numbers. The benchmarks are named dump/HINT.
//
// SPDX-License-Identifier: MIT
#include <benchmark/benchmark.h>

#include <cstdint>
#include <filesystem>
#include <string>

#include "strata_repgenlib/rgen.h"

namespace benchmarks {
namespace {

constexpr std::uint64_t valueCount = 20000;

/// 20,000 times from 2001 on, more than two hours apart, with the same hint.
class TimeValues {
public:
    explicit TimeValues(std::uint64_t hint) {
        constexpr std::int64_t first = 1000000000;
        constexpr std::int64_t step = 7919;
        rgen_createRgenCVariantSet(&input_.variants, valueCount);
        for (std::uint64_t number = 0; number < input_.variants.count; ++number) {
            const std::string name = "value " + std::to_string(number);
            rgen_createRgenCVariantInt64(name.c_str(),
                                         first + step * static_cast<std::int64_t>(number), hint,
                                         &input_.variants.items[number]);
        }
    }
    ~TimeValues() { rgen_freeRgenCInputParams(&input_); }
    TimeValues(const TimeValues&) = delete;
    TimeValues& operator=(const TimeValues&) = delete;

    const RgenCInputParams* get() const { return &input_; }

private:
    RgenCInputParams input_ = {};
};

void measureDump(benchmark::State& state, std::uint64_t hint) {
    const TimeValues values(hint);
    const std::string path =
        (std::filesystem::temp_directory_path() / "rgen-benchmark-dump.xml").u8string();
    RgenReportGenerator* generator = rgen_newReportGenerator();
    for (auto unused : state) {
        static_cast<void>(unused);
        const RgenStatus status =
            rgen_dumpRawInputDataToFile(generator, values.get(), path.c_str());
        if (status != RGEN_OK) state.SkipWithError("the dump failed");
    }
    rgen_freeReportGenerator(generator);
    std::filesystem::remove(std::filesystem::u8path(path));
}

BENCHMARK_CAPTURE(measureDump, number, RGEN_HINT_GENERIC)->Name("dump/number");
BENCHMARK_CAPTURE(measureDump, time, RGEN_HINT_TIME)->Name("dump/time");
BENCHMARK_CAPTURE(measureDump, date, RGEN_HINT_DATE)->Name("dump/date");
BENCHMARK_CAPTURE(measureDump, dateTime, RGEN_HINT_DATE_TIME)->Name("dump/date_time");

}  // namespace
}  // namespace benchmarks

BENCHMARK_MAIN();
