// Scanners that are wrong on purpose: one starts again for each character, one looks through
// the rest for each opening, as fast as the C library can. Both must be noticed.
//
// SPDX-License-Identifier: MIT
#include <string>
#include <string_view>

#include "robustness/scaling/scaling_case.h"

namespace rgen_test {
namespace {

// Keeps the compiler from removing the work.
volatile std::size_t sink;

void lookBackFromEach(std::string_view text) {
    for (std::size_t end = 0; end < text.size(); ++end) {
        std::size_t position = 0;
        while (position < end && text[position] != '"')
            ++position;
        sink = position;
    }
}

void lookAheadFromEachOpening(std::string_view text) {
    std::size_t opening = text.find('(');
    while (opening != std::string_view::npos) {
        sink = text.find(')', opening);
        opening = text.find('(', opening + 1);
    }
}

}  // namespace

std::vector<ScalingCase> standIns() {
    constexpr std::size_t fewBytes = 128;
    return {
        {"stand-in that returns to the start", fewBytes,
         [](std::size_t size) {
             return [text = std::string(size, ' ')] { lookBackFromEach(text); };
         }},
        {"stand-in that looks for a missing end", usualBytes,
         [](std::size_t size) {
             return [text = repeatedText("(         ", size)] { lookAheadFromEachOpening(text); };
         }},
    };
}

}  // namespace rgen_test
