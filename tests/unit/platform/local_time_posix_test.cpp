// Local time on Linux: a time zone that the host changes, a time facet of the host.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <ctime>
#include <locale>
#include <string>

#include "platform/platform.h"
#include "support/global_locale.h"
#include "support/test_platform.h"
#include "variant/hinted_convertors.h"

namespace rgen_test {
namespace {

namespace platform = rgen::platform;

TEST(AdoptTimeZone, TakesOverWhatTheHostHasSet) {
    const TimeZone zone("UTC0");
    std::tm time = {};
    const ScopedEnvironmentText changed("TZ", "AAA-3");
    ASSERT_TRUE(platform::localTime(0, time));
    EXPECT_EQ(0, time.tm_hour);
    platform::adoptTimeZone();
    ASSERT_TRUE(platform::localTime(0, time));
    EXPECT_EQ(3, time.tm_hour);
}

TEST(ValueTexts, AdoptTheZoneWithTheirFirstTimeAndKeepIt) {
    const TimeZone zone("UTC0");
    const rgen::Variant midnight(std::int64_t{0}, rgen::VariantHint::Time);
    rgen::ValueTexts texts;
    const ScopedEnvironmentText changed("TZ", "AAA-3");
    EXPECT_EQ("03:00:00", texts.of(midnight));
    const ScopedEnvironmentText changedAgain("TZ", "BBB-4");
    EXPECT_EQ("03:00:00", texts.of(midnight));
    EXPECT_EQ("04:00:00", rgen::ValueTexts().of(midnight));
}

TEST(AppendByHostFacet, TheStandardFacetIsNotAskedUnderAnyName) {
    std::string text = "text";
    EXPECT_FALSE(platform::appendByHostFacet(text, std::tm{}, "%H"));
    const GlobalLocale named(std::locale("C.UTF-8"));
    EXPECT_FALSE(platform::appendByHostFacet(text, std::tm{}, "%H"));
    EXPECT_EQ("text", text);
}

TEST(AppendByHostFacet, AFacetOfTheHostWritesTheWholePattern) {
    std::tm time = {};
    time.tm_hour = 7;
    std::string text = "text ";
    {
        const GlobalLocale patterns(new PatternTimeFacet);
        EXPECT_TRUE(platform::appendByHostFacet(text, time, "%H:%M"));
        EXPECT_EQ("text <H>:<M>", text);
    }
    const GlobalLocale derived(new std::time_put_byname<char>("C"));
    EXPECT_TRUE(platform::appendByHostFacet(text, time, " %H"));
    EXPECT_EQ("text <H>:<M> 07", text);
}

}  // namespace
}  // namespace rgen_test
