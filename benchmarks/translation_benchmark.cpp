// Compares the translation pass with a plain search for the first word of a marker. The benchmarks
// are named WHAT/TEXT/MEBIBYTES, where WHAT is "pass" or the name of a search. The context of the
// result has the maximum stack use of the pass over all texts.
//
// SPDX-License-Identifier: MIT
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "benchmark_platform.h"
#include "generate/translation.h"
#include "report_generator.h"
#include "support/hostile_texts.h"

namespace benchmarks {
namespace {

using rgen_test::hostileTexts;
using rgen_test::ordinaryText;
using rgen_test::TemplateText;

constexpr std::size_t mebibyte = std::size_t{1024} * 1024;
/// Sizes of the texts in mebibytes.
constexpr std::size_t smallest = 1;
constexpr std::size_t largest = 16;
constexpr std::string_view keyword = "QT_TRANSLATE_NOOP";

using Clock = std::chrono::steady_clock;

/// Alternates between `copies` equal texts, so that the total size is the same for small and large
/// texts and a small one does not stay in a nearer cache.
void measurePass(benchmark::State& state, const TemplateText& given, std::size_t copies) {
    const rgen::ReportGenerator generator;
    std::vector<std::string> texts(copies, given.text);
    std::size_t next = 0;
    for (auto unused : state) {
        static_cast<void>(unused);
        if (given.isChanged && next == 0) std::fill(texts.begin(), texts.end(), given.text);
        std::string& text = texts[next];
        next = (next + 1) % copies;
        const Clock::time_point start = Clock::now();
        rgen::translateTemplateText(generator, text);
        benchmark::DoNotOptimize(text.data());
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
    }
}

/// Finds every occurrence.
void measureSearch(benchmark::State& state, const TemplateText& given, const PlainSearch& search) {
    for (auto unused : state) {
        static_cast<void>(unused);
        const Clock::time_point start = Clock::now();
        std::string_view rest = given.text;
        std::size_t found = search.find(rest, keyword);
        while (found != std::string_view::npos) {
            rest.remove_prefix(found + keyword.size());
            found = search.find(rest, keyword);
        }
        benchmark::DoNotOptimize(rest.data());
        state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count());
    }
}

std::vector<TemplateText> textsOf(std::size_t mebibytes) {
    const std::size_t size = mebibytes * mebibyte;
    std::vector<TemplateText> texts = hostileTexts(size);
    texts.push_back(ordinaryText(size, 0));
    if (mebibytes == smallest) texts.push_back(ordinaryText(size, 200));
    return texts;
}

void registerBenchmark(const std::string& name,
                       const std::function<void(benchmark::State&)>& measure) {
    benchmark::RegisterBenchmark(name.c_str(), measure)->UseManualTime();
}

void registerBenchmarks(const std::vector<TemplateText>& texts, std::size_t mebibytes) {
    for (const TemplateText& text : texts) {
        const std::string ending = "/" + text.name + "/" + std::to_string(mebibytes);
        const std::size_t copies = text.isHostile ? largest / mebibytes : 1;
        registerBenchmark("pass" + ending, [&text, copies](benchmark::State& state) {
            measurePass(state, text, copies);
        });
        if (text.isHostile) continue;
        for (const PlainSearch& search : plainSearches()) {
            registerBenchmark(search.name + ending, [&text, search](benchmark::State& state) {
                measureSearch(state, text, search);
            });
        }
    }
}

long stackOfPass(const std::vector<TemplateText>& texts) {
    const rgen::ReportGenerator generator;
    long most = -1;
    for (const TemplateText& given : texts) {
        std::string text = given.text;
        most = std::max(most, stackUsedBy([&] { rgen::translateTemplateText(generator, text); }));
    }
    return most;
}

int runProgram(int argc, char** argv) {
    const std::vector<TemplateText> small = textsOf(smallest);
    const std::vector<TemplateText> large = textsOf(largest);
    registerBenchmarks(small, smallest);
    registerBenchmarks(large, largest);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::AddCustomContext("stack_bytes", std::to_string(stackOfPass(small)));
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

}  // namespace
}  // namespace benchmarks

int main(int argc, char** argv) {
    return benchmarks::runProgram(argc, argv);
}
