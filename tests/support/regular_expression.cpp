// Regular expressions by std::regex.
//
// SPDX-License-Identifier: MIT
#include "support/regular_expression.h"

#include <regex>

namespace rgen_test {

struct RegularExpression::Compiled {
    std::regex expression;
};

RegularExpression::RegularExpression(const std::string& pattern)
    : compiled_(std::make_unique<Compiled>(Compiled{std::regex(pattern)})) {}

RegularExpression::~RegularExpression() = default;

bool RegularExpression::matches(const std::string& text) const {
    return std::regex_match(text, compiled_->expression);
}

bool RegularExpression::search(const std::string& text, std::size_t from, Match& match) const {
    std::smatch found;
    const auto start = text.cbegin() + static_cast<std::ptrdiff_t>(from);
    if (!std::regex_search(start, text.cend(), found, compiled_->expression)) return false;
    match = {from + static_cast<std::size_t>(found.position()), found.str(), found.str(1)};
    return true;
}

}  // namespace rgen_test
