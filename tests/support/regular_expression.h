// An ECMAScript regular expression of the standard library, as the matchers that are written by
// hand are compared with. Behind a pointer, since <regex> takes the compiler long.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_SUPPORT_REGULAR_EXPRESSION_H
#define RGEN_TESTS_SUPPORT_REGULAR_EXPRESSION_H

#include <cstddef>
#include <memory>
#include <string>

namespace rgen_test {

class RegularExpression {
public:
    struct Match {
        std::size_t position;
        std::string whole;
        // What the first group took.
        std::string group;
    };

    explicit RegularExpression(const std::string& pattern);
    ~RegularExpression();
    RegularExpression(const RegularExpression&) = delete;
    RegularExpression& operator=(const RegularExpression&) = delete;

    // True when the whole text matches.
    bool matches(const std::string& text) const;
    // Finds the first match at that position or after it; false when there is none.
    bool search(const std::string& text, std::size_t from, Match& match) const;

private:
    struct Compiled;
    std::unique_ptr<Compiled> compiled_;
};

}  // namespace rgen_test

#endif
