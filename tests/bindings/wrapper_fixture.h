// A generator of rgen.hpp on the data directory of a report test, and requests for it.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_BINDINGS_WRAPPER_FIXTURE_H
#define RGEN_TESTS_BINDINGS_WRAPPER_FIXTURE_H

#include <string>

#include "strata_repgenlib/rgen.hpp"
#include "support/report_fixture.h"

namespace rgen_test {

namespace repgen = strata::repgen;

// The template shows the value "v" between brackets.
class WrapperTest : public ReportTest {
protected:
    WrapperTest() : own(folder.path()) { putTemplate(textStylesheet("[" + valueOf("v") + "]")); }

    std::string reportText(const repgen::Request& request) {
        const repgen::Bytes bytes = own.generateBytes(request);
        return {bytes.begin(), bytes.end()};
    }

    std::string reportTextOf(const repgen::Value& value) {
        return reportText({type, "html", {{"v", value}}});
    }

    // What a StatusError of the call says as its name; empty when there is none.
    template <typename Call>
    static std::string statusOf(Call call) {
        try {
            call();
        } catch (const repgen::StatusError& error) {
            return std::string(error.name());
        }
        return {};
    }

    const repgen::Guid type{defaultGuidText};
    repgen::Generator own;
};

}  // namespace rgen_test

#endif
