// The global C++ locale for the length of a scope, and a time facet that can be seen in a text.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_SUPPORT_GLOBAL_LOCALE_H
#define RGEN_TESTS_SUPPORT_GLOBAL_LOCALE_H

#include <clocale>
#include <locale>
#include <string>

namespace rgen_test {

// The C locale comes back, too: a global locale with a name sets it.
class GlobalLocale {
public:
    explicit GlobalLocale(const std::locale& locale)
        : previousOfC_(std::setlocale(LC_ALL, nullptr)), previous_(std::locale::global(locale)) {}
    // The classic locale with a facet in it.
    template <typename Facet>
    explicit GlobalLocale(Facet* facet)
        : GlobalLocale(std::locale(std::locale::classic(), facet)) {}
    ~GlobalLocale() {
        std::locale::global(previous_);
        std::setlocale(LC_ALL, previousOfC_.c_str());
    }
    GlobalLocale(const GlobalLocale&) = delete;
    GlobalLocale& operator=(const GlobalLocale&) = delete;

private:
    std::string previousOfC_;
    std::locale previous_;
};

// Writes the pattern itself, so that a text shows which parts of it came this way.
class PatternTimeFacet : public std::time_put<char> {
    iter_type do_put(iter_type out, std::ios_base&, char, const std::tm*, char format,
                     char) const override {
        *out++ = '<';
        *out++ = format;
        *out++ = '>';
        return out;
    }
};

}  // namespace rgen_test

#endif
