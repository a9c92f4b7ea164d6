// The display text of each type under each hint, seen in a dump.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <clocale>
#include <cstdint>
#include <limits>
#include <locale>
#include <string>
#include <vector>

#include "strata_repgenlib/rgen.h"
#include "support/dumped_text.h"
#include "support/host_records.h"
#include "support/test_platform.h"

namespace {

using rgen_test::dumpedText;
using rgen_test::Generator;
using rgen_test::InputParams;
using rgen_test::TimeZone;

const char* const badTime = "ERROR: BAD TIME_T INPUT";

std::string textOf(std::int64_t number, std::uint64_t hint) {
    return dumpedText(number, hint);
}

std::string textOf(const std::vector<std::uint8_t>& bytes, std::uint64_t hint = RGEN_HINT_DUMP) {
    InputParams input;
    input.variants().addBytes("n", bytes);
    input.variants().at(0).hint = hint;
    return dumpedText(input);
}

// Brings back both locales at the end of the scope.
class KeptLocales {
public:
    KeptLocales() : classic_(std::setlocale(LC_ALL, nullptr)) {}
    ~KeptLocales() {
        std::locale::global(global_);
        std::setlocale(LC_ALL, classic_.c_str());
    }
    KeptLocales(const KeptLocales&) = delete;
    KeptLocales& operator=(const KeptLocales&) = delete;

private:
    std::locale global_;
    std::string classic_;
};

// Groups digits and writes signs as no number of a report is written.
class GroupedDigits : public std::numpunct<char> {
protected:
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

struct NumberRow {
    std::int64_t number;
    const char* decimal;
    const char* address;
};

const NumberRow numbers[] = {
    {0, "0", "0x0"},
    {1, "1", "0x1"},
    {255, "255", "0xff"},
    {1234567, "1234567", "0x12d687"},
    {-1, "-1", "0xffffffffffffffff"},
    {-1234567, "-1234567", "0xffffffffffed2979"},
    {std::numeric_limits<std::int64_t>::max(), "9223372036854775807", "0x7fffffffffffffff"},
    {std::numeric_limits<std::int64_t>::min(), "-9223372036854775808", "0x8000000000000000"},
};

void expectNumbers() {
    for (const NumberRow& row : numbers) {
        EXPECT_EQ(row.decimal, textOf(row.number, RGEN_HINT_GENERIC));
        EXPECT_EQ(row.decimal, textOf(row.number, RGEN_HINT_SIZE));
        EXPECT_EQ(row.decimal, textOf(row.number, RGEN_HINT_SPEED));
        EXPECT_EQ(row.address, textOf(row.number, RGEN_HINT_ADDRESS));
    }
}

// ---- Numbers --------------------------------------------------------------------------------

TEST(Int64Text, DecimalAndAddress) {
    expectNumbers();
}

TEST(Int64Text, EveryOtherHintOfAHostCountsAsGeneric) {
    for (const std::uint64_t hint :
         {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{8}, std::uint64_t{9}, std::uint64_t{10},
          std::uint64_t{1} << 32, (std::uint64_t{1} << 32) + 6,
          std::numeric_limits<std::uint64_t>::max()}) {
        EXPECT_EQ("255", textOf(255, hint)) << hint;
    }
}

TEST(Int64Text, DoesNotFollowTheLocale) {
    const KeptLocales kept;
    std::locale::global(std::locale(std::locale::classic(), new GroupedDigits));
    expectNumbers();
    for (const char* name : {"", "C.UTF-8", "de_DE.UTF-8", "German_Germany.1252", "de-DE"}) {
        std::setlocale(LC_ALL, name);
        expectNumbers();
    }
}

// ---- Texts and bytes ------------------------------------------------------------------------

TEST(StringText, DoesNotDependOnTheHint) {
    for (std::uint64_t hint = 0; hint <= 10; ++hint) {
        InputParams input;
        input.variants().addString("n", " 12:30  \xD0\xB4\xD0\xB0 ");
        input.variants().at(0).hint = hint;
        EXPECT_EQ(" 12:30  \xD0\xB4\xD0\xB0 ", dumpedText(input)) << hint;
    }
}

TEST(ByteArrayText, IsAHexDumpWithABlankBehindEachByte) {
    EXPECT_EQ("01 AB ", textOf({0x01, 0xAB}));
    EXPECT_EQ("00 ", textOf({0x00}));
    EXPECT_EQ("0A 7F 80 FF ", textOf({0x0A, 0x7F, 0x80, 0xFF}));
}

TEST(ByteArrayText, DoesNotDependOnTheHint) {
    for (std::uint64_t hint = 0; hint <= 10; ++hint) {
        EXPECT_EQ("01 AB ", textOf({0x01, 0xAB}, hint)) << hint;
    }
}

TEST(ByteArrayText, ShowsEveryByte) {
    std::vector<std::uint8_t> bytes;
    std::string expected;
    for (int byte = 0; byte < 256; ++byte) {
        bytes.push_back(static_cast<std::uint8_t>(byte));
        expected += "0123456789ABCDEF"[byte / 16];
        expected += "0123456789ABCDEF"[byte % 16];
        expected += ' ';
    }
    EXPECT_EQ(expected, textOf(bytes));
}

// ---- Times ----------------------------------------------------------------------------------

struct TimeRow {
    const char* zone;
    std::int64_t seconds;
    const char* time;
    const char* date;
    const char* dateTime;
};

const TimeRow times[] = {
    {"UTC0", 0, "00:00:00", " 1.01.1970", " 1.01.1970 00:00:00"},
    {"UTC0", 1, "00:00:01", " 1.01.1970", " 1.01.1970 00:00:01"},
    {"UTC0", 86399, "23:59:59", " 1.01.1970", " 1.01.1970 23:59:59"},
    {"UTC0", 86400, "00:00:00", " 2.01.1970", " 2.01.1970 00:00:00"},
    {"UTC0", 777600, "00:00:00", "10.01.1970", "10.01.1970 00:00:00"},
    // 29 February, a day and a month of two digits, the last second of 32 bits and the next one.
    {"UTC0", 951782400, "00:00:00", "29.02.2000", "29.02.2000 00:00:00"},
    {"UTC0", 1450137599, "23:59:59", "14.12.2015", "14.12.2015 23:59:59"},
    {"UTC0", 2147483647, "03:14:07", "19.01.2038", "19.01.2038 03:14:07"},
    {"UTC0", 2147483648, "03:14:08", "19.01.2038", "19.01.2038 03:14:08"},
    {"UTC0", 4294967296, "06:28:16", " 7.02.2106", " 7.02.2106 06:28:16"},
    // The last second that is accepted in every zone.
    {"UTC0", 32535215999, "23:59:59", "31.12.3000", "31.12.3000 23:59:59"},
    {"UTC0", 32535216000, badTime, badTime, badTime},
    {"UTC0", -1, badTime, badTime, badTime},
    {"UTC0", std::numeric_limits<std::int64_t>::max(), badTime, badTime, badTime},
    {"UTC0", std::numeric_limits<std::int64_t>::min(), badTime, badTime, badTime},
    // West of Greenwich: winter, and one hour more in summer.
    {"EST5EDT", 1452859200, "07:00:00", "15.01.2016", "15.01.2016 07:00:00"},
    {"EST5EDT", 1468584000, "08:00:00", "15.07.2016", "15.07.2016 08:00:00"},
    {"EST5EDT", 86399, "18:59:59", " 1.01.1970", " 1.01.1970 18:59:59"},
    {"EST5EDT", 0, "19:00:00", "31.12.1969", "31.12.1969 19:00:00"},
    {"EST5EDT", -1, badTime, badTime, badTime},
    {"EST5EDT", 32535215999, "18:59:59", "31.12.3000", "31.12.3000 18:59:59"},
    {"EST5EDT", 32535216000, badTime, badTime, badTime},
    // East of Greenwich.
    {"EET-2", 86399, "01:59:59", " 2.01.1970", " 2.01.1970 01:59:59"},
    {"EET-2", 1468584000, "14:00:00", "15.07.2016", "15.07.2016 14:00:00"},
};

void expectTime(const TimeRow& row) {
    SCOPED_TRACE(std::string(row.zone) + " " + std::to_string(row.seconds));
    EXPECT_EQ(row.time, textOf(row.seconds, RGEN_HINT_TIME));
    EXPECT_EQ(row.date, textOf(row.seconds, RGEN_HINT_DATE));
    EXPECT_EQ(row.dateTime, textOf(row.seconds, RGEN_HINT_DATE_TIME));
}

TEST(TimeText, IsLocalTime) {
    for (const TimeRow& row : times) {
        const TimeZone zone(row.zone);
        expectTime(row);
    }
}

TEST(TimeText, TheDayHasALeadingBlankUpToTheNinth) {
    const TimeZone zone("UTC0");
    for (int day = 1; day <= 31; ++day) {
        const std::string number = std::to_string(day);
        EXPECT_EQ((day < 10 ? " " : "") + number + ".01.1970",
                  textOf(std::int64_t{86400} * (day - 1), RGEN_HINT_DATE));
    }
}

TEST(TimeText, ANewZoneCountsFromTheNextCallOn) {
    const Generator generator;
    const TimeZone outer("UTC0");
    EXPECT_EQ("12:00:00", textOf(1452859200, RGEN_HINT_TIME));
    {
        const TimeZone inner("EST5EDT");
        EXPECT_EQ("07:00:00", textOf(1452859200, RGEN_HINT_TIME));
    }
    EXPECT_EQ("12:00:00", textOf(1452859200, RGEN_HINT_TIME));
}

TEST(TimeText, DoesNotFollowTheDigitsOfALocale) {
    const KeptLocales kept;
    const TimeZone zone("UTC0");
    std::locale::global(std::locale(std::locale::classic(), new GroupedDigits));
    EXPECT_EQ("29.02.2000 00:00:00", textOf(951782400, RGEN_HINT_DATE_TIME));
}

}  // namespace
