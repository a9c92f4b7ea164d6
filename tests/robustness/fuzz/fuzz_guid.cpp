// The GUID matcher compared with a regular expression of the same grammar, and the writer against
// the matcher.
//
// SPDX-License-Identifier: MIT
#include <cstddef>
#include <cstring>

#include "fuzz_support.h"
#include "fuzz_targets.h"
#include "store/base/guid.h"
#include "support/expression_oracles.h"

namespace rgen_fuzz {
namespace {

constexpr std::size_t longestForExpression = 256;

// The first 16 bytes as a GUID: the text has a fixed form and contains all of them.
void checkWriter(const std::string& input) {
    rgen::Guid guid = {};
    if (input.size() < sizeof guid) return;
    std::memcpy(&guid, input.data(), sizeof guid);
    const std::string text = rgen::formatGuid(guid);
    require(rgen::isGuidText(text), "a GUID's text is not one", text);
    std::string digits = text;
    for (std::size_t dash = digits.find('-'); dash != std::string::npos; dash = digits.find('-'))
        digits.erase(dash, 1);
    const auto part = [&digits](std::size_t start, std::size_t count) {
        return std::stoul(digits.substr(start, count), nullptr, 16);
    };
    bool same = part(0, 8) == guid.data1 && part(8, 4) == guid.data2 && part(12, 4) == guid.data3;
    for (std::size_t i = 0; i < guid.data4.size(); ++i)
        same = same && part(16 + 2 * i, 2) == guid.data4[i];
    require(same, "a GUID's text is another GUID's", text);
}

}  // namespace

void fuzzGuid(const std::string& input) {
    const bool matched = rgen::isGuidText(input);
    if (input.size() <= longestForExpression) {
        require(matched == rgen_test::isGuidTextByExpression(input),
                "the GUID matcher and the expression differ", input);
    } else {
        require(!matched, "a long text was taken for a GUID", input);
    }
    checkWriter(input);
}

}  // namespace rgen_fuzz
