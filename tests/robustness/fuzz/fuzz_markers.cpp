// The translation pass compared with a regular expression of the same grammar. The expression
// recurses for each character, so it is asked about short texts only.
//
// SPDX-License-Identifier: MIT
#include <cstddef>

#include "fuzz_support.h"
#include "fuzz_targets.h"
#include "generate/translation.h"
#include "support/expression_oracles.h"

namespace rgen_fuzz {
namespace {

constexpr std::size_t longestForExpression = 256;

const char* RGEN_CALL giveText(const char* text, void*) {
    return text;
}

std::string translated(std::string text, RgenTranslateFunction translate) {
    static rgen::ReportGenerator generator;
    generator.translateFunction = translate;
    rgen::translateTemplateText(generator, text);
    return text;
}

}  // namespace

void fuzzMarkers(const std::string& input) {
    for (const RgenTranslateFunction translate :
         {rgen_test::markMessage, rgen_test::giveMarker, giveText}) {
        const std::string result = translated(input, translate);
        require(input.size() > longestForExpression ||
                    result == rgen_test::translatedByExpression(input, translate),
                "the translation pass and the expression differ", input);
    }
}

}  // namespace rgen_fuzz
