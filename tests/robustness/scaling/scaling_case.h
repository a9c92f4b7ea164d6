// A piece of the library whose work has to be proportional to its input, and how it is measured.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_SCALING_SCALING_CASE_H
#define RGEN_TESTS_SCALING_SCALING_CASE_H

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace rgen_test {

struct ScalingCase {
    // Names what is measured; unique.
    std::string name;
    // Of the smaller of the two inputs, in bytes or entries.
    std::size_t size;
    // Makes the input of that size. What is returned reads it, and is all that is counted.
    std::function<std::function<void()>(std::size_t size)> prepare;
};

// What GoogleTest shows of a case.
void PrintTo(const ScalingCase& shown, std::ostream* stream);

// Bytes and entries of the smaller input. 16 times as many must be bearable for work that grows by
// the square, so that such a case ends with a report.
constexpr std::size_t usualBytes = 4096;
constexpr std::size_t usualEntries = 128;

// `part` as often as it fits into `size` bytes.
std::string repeatedText(std::string_view part, std::size_t size);
// `part` that often.
std::string repeatedTimes(std::string_view part, std::size_t count);

// The matchers and checks of texts.
std::vector<ScalingCase> textCases();
// Names, records and display texts of values.
std::vector<ScalingCase> valueCases();
// Texts that go into XML documents, with references in them.
std::vector<ScalingCase> propertyCases();
// XML files of all kinds, read through the exports.
std::vector<ScalingCase> fileCases();
// Whole reports.
std::vector<ScalingCase> reportCases();
// Work that is not proportional, and has to be noticed. Their names start with "stand-in".
std::vector<ScalingCase> standIns();

}  // namespace rgen_test

#endif
