// Dates and times on Windows: a time facet of the host is not followed.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "strata_repgenlib/rgen.h"
#include "support/dumped_text.h"
#include "support/global_locale.h"
#include "support/test_platform.h"

namespace rgen_test {
namespace {

TEST(TimeFacetOfTheHost, IsNotAsked) {
    const TimeZone zone("UTC0");
    const GlobalLocale patterns(new PatternTimeFacet);
    EXPECT_EQ("00:00:00", dumpedText(0, RGEN_HINT_TIME));
    EXPECT_EQ(" 1.01.1970", dumpedText(0, RGEN_HINT_DATE));
    EXPECT_EQ("10.01.1970 00:00:00", dumpedText(777600, RGEN_HINT_DATE_TIME));
}

}  // namespace
}  // namespace rgen_test
