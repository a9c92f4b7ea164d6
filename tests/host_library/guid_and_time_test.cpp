// GUIDs and times as texts.
//
// SPDX-License-Identifier: MIT
#include <cstring>

#include "host_library/host_library_fixture.h"

namespace rgen_test {
namespace {

class GuidsAndTimes : public ::testing::Test {
protected:
    GuidsAndTimes() { error.size = sizeof error; }

    // The GUID of a text written as text again; empty if it is refused.
    std::string readGuid(const std::string& text) {
        RgenGuid guid = {};
        if (rgenh_parseGuid(text.data(), text.size(), &guid, &error) < 0) {
            EXPECT_EQ(RGENH_ERROR_ARGUMENT, error.kind);
            EXPECT_EQ(1, error.argument);
            EXPECT_EQ(0U, guid.data1);
            return {};
        }
        const RgenGuid expected = guidFromText(text.size() == 38 ? text.substr(1, 36) : text);
        EXPECT_EQ(0, std::memcmp(&expected, &guid, sizeof guid));
        char letters[RGENH_GUID_TEXT_SIZE] = {};
        EXPECT_EQ(RGEN_OK, rgenh_formatGuid(&guid, letters, &error));
        return letters;
    }

    // -1 for a text that is refused.
    std::int64_t readTime(const std::string& text) {
        std::int64_t seconds = -1;
        const RgenStatus status = rgenh_parseTime(text.data(), text.size(), &seconds, &error);
        EXPECT_EQ(status == RGEN_OK, seconds >= 0);
        return seconds;
    }

    RgenhError error = {};
};

TEST_F(GuidsAndTimes, ReadGuidsInEveryForm) {
    const std::string text = "0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f9";
    EXPECT_EQ(text, readGuid(text));
    EXPECT_EQ(text, readGuid("0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F9"));
    EXPECT_EQ(text, readGuid("{0a1b2c3d-4e5f-6071-8293-A4B5C6D7E8F9}"));
}

TEST_F(GuidsAndTimes, RefuseOtherTexts) {
    for (const char* text :
         {"", "x", "0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f", "0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f9a",
          "0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8fg", "0a1b2c3d04e5f-6071-8293-a4b5c6d7e8f9",
          "{0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f9", "(0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f9)",
          "0a1b2c3d4e5f60718293a4b5c6d7e8f9", "{0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f9)",
          "0a1b2c3!-4e5f-6071-8293-a4b5c6d7e8f9", "0a1b2c3d-4e5f-6071-8293-A4B5C6D7E8FG"}) {
        EXPECT_EQ("", readGuid(text));
        EXPECT_EQ("\"" + std::string(text) + "\" is not a GUID", error.message);
    }
}

TEST_F(GuidsAndTimes, ReadTimesWithAnOffset) {
    const struct {
        const char* text;
        std::int64_t seconds;
    } rows[] = {
        {"1970-01-01T00:00:00Z", 0},
        {"2026-03-09T08:14:07Z", 1773044047},
        {"2026-03-09t08:14:07z", 1773044047},
        {"2026-03-09 09:14:07+01:00", 1773044047},
        {"2026-03-09T02:44:07-0530", 1773044047},
        {"2026-03-09T09:14:07+01", 1773044047},
        {"2026-03-09T08:14:07.999Z", 1773044047},
        {"2026-03-09T08:14:07,5Z", 1773044047},
        {"2026-03-09T08:14Z", 1773044040},
        {"2026-03-09Z", 1773014400},
        {"2000-02-29Z", 951782400},
        {"3000-12-31T23:59:59Z", 32535215999},
        {"1969-12-31T23:00:00-01:00", 0},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.seconds, readTime(row.text)) << row.text;
    }
}

TEST_F(GuidsAndTimes, ReadLocalTimes) {
    const TimeZone zone("EST5EDT");
    EXPECT_EQ(1773044047 + 4 * 3600, readTime("2026-03-09T08:14:07"));
    EXPECT_EQ(1768453200, readTime("2026-01-15"));
}

TEST_F(GuidsAndTimes, RefuseTimesThatReportsCannotShow) {
    for (const char* text : {"1969-12-31T23:59:59Z", "3001-01-01T00:00:00Z",
                             "1970-01-01T00:00:00+00:01", "0001-01-01Z"}) {
        EXPECT_EQ(-1, readTime(text));
        EXPECT_NE(std::string::npos, std::string(error.message).find("from 1970 to 3000"));
        EXPECT_EQ(RGENH_ERROR_ARGUMENT, error.kind);
        EXPECT_EQ(1, error.argument);
    }
}

TEST_F(GuidsAndTimes, ShowTheirTextsAsUtf8) {
    // The message shows the first 60 bytes, the last of which are half a character.
    const std::string text = std::string(58, 'x') + "\xE2\x82\xAC";
    EXPECT_EQ(-1, readTime(text));
    EXPECT_EQ(std::string("\"") + std::string(58, 'x') +
                  "\xEF\xBF\xBD\xEF\xBF\xBD\" is not a time such as 2026-03-09T08:14:07Z",
              error.message);
    EXPECT_EQ("", readGuid(std::string("\xFF\xC2\x85")));
    EXPECT_STREQ("\"\xEF\xBF\xBD \" is not a GUID", error.message);
}

TEST_F(GuidsAndTimes, RefuseWhatIsNotATime) {
    for (const char* text : {"",
                             "now",
                             "2026",
                             "2026-3-9",
                             "2026-02-29Z",
                             "2026-13-01Z",
                             "2026-00-01Z",
                             "2026-01-00Z",
                             "2026-01-32Z",
                             "2026-03-09T24:00Z",
                             "2026-03-09T08:60Z",
                             "2026-03-09T08:14:60Z",
                             "2026-03-09T8:14Z",
                             "2026-03-09T08:14:07.Z",
                             "2026-03-09T08:14:.5Z",
                             "2026-03-09T08:14:07+1",
                             " 2026-03-09Z",
                             "2026-03-09Z ",
                             "2026-03-09T08:14:07ZZ",
                             "+026-03-09Z",
                             "2026-03-09T08:14:07+24:00",
                             "2026-03-09T08:14:07-0160",
                             "2026-03-09T08:14:07+01:0"}) {
        EXPECT_EQ(-1, readTime(text)) << text;
        EXPECT_NE(std::string::npos, std::string(error.message).find("is not a time")) << text;
        EXPECT_EQ(1, error.argument);
    }
}

}  // namespace
}  // namespace rgen_test
