// Dates and times as Linux alone shows them: by a time facet of the host, and in a zone that the
// host sets without a word to the C library.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>

#include "strata_repgenlib/rgen.h"
#include "support/dumped_text.h"
#include "support/global_locale.h"
#include "support/host_records.h"
#include "support/report_fixture.h"
#include "support/test_platform.h"

namespace rgen_test {
namespace {

TEST(TimeFacetOfTheHost, WritesAllButTheDay) {
    const TimeZone zone("UTC0");
    const GlobalLocale patterns(new PatternTimeFacet);
    EXPECT_EQ("&lt;H&gt;:&lt;M&gt;:&lt;S&gt;", dumpedText(0, RGEN_HINT_TIME));
    EXPECT_EQ(" 1.&lt;m&gt;.&lt;Y&gt;", dumpedText(0, RGEN_HINT_DATE));
    EXPECT_EQ("10.&lt;m&gt;.&lt;Y&gt; &lt;H&gt;:&lt;M&gt;:&lt;S&gt;",
              dumpedText(777600, RGEN_HINT_DATE_TIME));
    EXPECT_EQ("ERROR: BAD TIME_T INPUT", dumpedText(-1, RGEN_HINT_DATE));
    EXPECT_EQ("777600", dumpedText(777600, RGEN_HINT_SIZE));
}

class TimeZoneOfTheHost : public ReportTest {
protected:
    // Midnight of the UTC in the dump, the report and the stored data of one generator.
    std::string hourEverywhere() {
        InputParams input;
        input.variants().addInt64("n", 0, RGEN_HINT_TIME);
        const RgenGuid guid = defaultGuid();
        const std::string reported = report(input).bytes;
        EXPECT_EQ(RGEN_OK, rgen_setPersistentDataFromCVariantSet(generator.get(), &guid,
                                                                 &input.get()->variants));
        return dumpedText(input) + " " + reported + " " +
               persistentData(generator, guid).pairs["n"];
    }
};

TEST_F(TimeZoneOfTheHost, IsTheOneOfTheEnvironmentAtEachCall) {
    putTemplate(textStylesheet(valueOf("n")));
    const TimeZone kept("UTC0");
    EXPECT_EQ("00:00:00 00:00:00 00:00:00", hourEverywhere());
    const ScopedEnvironmentText first("TZ", "AAA-3");
    EXPECT_EQ("03:00:00 03:00:00 03:00:00", hourEverywhere());
    const ScopedEnvironmentText second("TZ", "BBB-4");
    EXPECT_EQ("04:00:00 04:00:00 04:00:00", hourEverywhere());
}

}  // namespace
}  // namespace rgen_test
