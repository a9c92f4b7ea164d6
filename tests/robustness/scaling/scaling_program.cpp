// Runs every case with an input of nothing, one of its size and one of 16 times that. Callgrind
// counts the instructions of one function of this file; check_scaling.py starts it and judges.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <ostream>

#include "robustness/scaling/scaling_case.h"

// Callgrind knows it by this name: it counts what happens inside, and writes the count at the end.
extern "C" [[gnu::noinline]] void rgenCountedRun(const std::function<void()>& run) {
    run();
}

namespace rgen_test {
namespace {

constexpr std::size_t growth = 16;

std::vector<ScalingCase> allCases() {
    std::vector<ScalingCase> all;
    for (const auto& group :
         {textCases(), valueCases(), propertyCases(), fileCases(), reportCases(), standIns()}) {
        all.insert(all.end(), group.begin(), group.end());
    }
    return all;
}

class Scaling : public ::testing::TestWithParam<ScalingCase> {};

TEST_P(Scaling, IsMeasured) {
    const ScalingCase& tried = GetParam();
    // What happens once for a process is not to be counted.
    tried.prepare(tried.size)();
    for (const std::size_t size : {std::size_t{0}, tried.size, growth * tried.size}) {
        const std::function<void()> run = tried.prepare(size);
        rgenCountedRun(run);
        std::printf("figure|%s|%zu\n", tried.name.c_str(), size);
    }
}

// For --gtest_filter: the case's name with "_" for everything that such a name must not hold.
std::string filterName(const ::testing::TestParamInfo<ScalingCase>& info) {
    std::string name = std::to_string(info.index) + "_" + info.param.name;
    std::replace_if(
        name.begin(), name.end(),
        [](unsigned char character) { return std::isalnum(character) == 0; }, '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Cases, Scaling, ::testing::ValuesIn(allCases()), filterName);

}  // namespace

// What GoogleTest shows of a case.
void PrintTo(const ScalingCase& shown, std::ostream* stream) {
    *stream << shown.name;
}

std::string repeatedText(std::string_view part, std::size_t size) {
    return repeatedTimes(part, size / part.size());
}

std::string repeatedTimes(std::string_view part, std::size_t count) {
    std::string text;
    text.reserve(part.size() * count);
    for (std::size_t i = 0; i < count; ++i)
        text += part;
    return text;
}

}  // namespace rgen_test
