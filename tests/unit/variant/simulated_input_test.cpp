// Simulated input: single values and whole files.
//
// SPDX-License-Identifier: MIT
#include "variant/simulated_input.h"

#include <cstdint>
#include <string>

#include "support/console_capture.h"
#include "support/fault_injection.h"
#include "unit/unit_fixture.h"
#include "variant/hinted_convertors.h"

namespace rgen_test {
namespace {

using rgen::Variant;
using rgen::VariantHint;
using rgen::VariantKind;

const char* const bytesName = "std::vector<uint8_t>";

TEST(ParseVariant, EveryKindKeepsTheHint) {
    for (std::uint64_t number = 0; number <= 8; ++number) {
        const auto hint = static_cast<VariantHint>(number);
        Variant variant;
        EXPECT_TRUE(rgen::parseVariant(" text ", "std::string", hint, variant));
        EXPECT_EQ(" text ", variant.value.as<std::string>());
        EXPECT_EQ(hint, variant.hint);
        EXPECT_TRUE(rgen::parseVariant("17", "int64_t", hint, variant));
        EXPECT_EQ(17, variant.value.as<std::int64_t>());
        EXPECT_EQ(hint, variant.hint);
        EXPECT_TRUE(rgen::parseVariant("0x11,0x22", bytesName, hint, variant));
        EXPECT_EQ((rgen::ByteVector{0x11, 0x22}), variant.value.as<rgen::ByteVector>());
        EXPECT_EQ(hint, variant.hint);
    }
}

TEST(ParseVariant, NumbersAreReadAsFarAsTheyGo) {
    const struct {
        const char* text;
        std::int64_t number;
    } rows[] = {{"0", 0},
                {"12:30:00", 12},
                {"+7", 7},
                {"-5", -5},
                {"- 5", 0},
                {"-", 0},
                {"abc", 0},
                {"0x10", 0},
                {"007", 7},
                {"1.9", 1},
                {"1 000", 1},
                {"9223372036854775807", INT64_MAX},
                {"9223372036854775808", INT64_MAX},
                {"99999999999999999999999", INT64_MAX},
                {"-9223372036854775808", INT64_MIN},
                {"-99999999999999999999999", INT64_MIN}};
    for (const auto& row : rows) {
        Variant variant;
        EXPECT_TRUE(rgen::parseVariant(row.text, "int64_t", VariantHint::Size, variant));
        EXPECT_EQ(row.number, variant.value.as<std::int64_t>()) << row.text;
    }
}

TEST(ParseVariant, RefusedTextsLeaveTheVariantUntouched) {
    const struct {
        const char* text;
        const char* canonicalName;
        std::uint64_t hint;
    } rows[] = {{"1", "int64_t", 9}, {"x", "std::string", 9},  {"0x01", bytesName, 9},
                {"1", "int64", 1},   {"x", "string", 1},       {"0x01", "byte_array", 1},
                {"1", "", 1},        {"1", "void*", 1},        {"0x1", bytesName, 1},
                {"", bytesName, 1},  {"x", "std::string", 200}};
    for (const auto& row : rows) {
        Variant variant(std::string("before"), VariantHint::Date);
        bool parsed = true;
        captureConsole([&] {
            parsed = rgen::parseVariant(row.text, row.canonicalName,
                                        static_cast<VariantHint>(row.hint), variant);
        });
        EXPECT_FALSE(parsed) << row.text << ' ' << row.canonicalName;
        EXPECT_EQ("before", rgen::variantText(variant)) << row.text << ' ' << row.canonicalName;
    }
}

TEST(ParseVariant, HintNineIsRefusedBeforeTheDumpIsRead) {
    Variant variant;
    const ConsoleText console = captureConsole(
        [&variant] { rgen::parseVariant("0x1", bytesName, static_cast<VariantHint>(9), variant); });
    EXPECT_EQ("", console.out);
}

class ReadSimulatedRawInput : public UnitTest {
protected:
    std::string read() {
        return statusHex(rgen::readSimulatedRawInput(generator, path.c_str(), values));
    }
    void putProperties(const std::string& properties) {
        writeFile(path, "<data><properties>" + properties + "</properties></data>");
    }

    const std::string path = folder.file("in.xml");
    rgen::VariantMap values = {{"before", Variant(std::string("x"), VariantHint::Generic)}};
};

TEST_F(ReadSimulatedRawInput, EachKindIsRead) {
    putProperties(
        "<property name=' n ' type=' int64 ' hint=' Address '> 255 </property>"
        "<property name='s' type='string' hint='Dump'>\n a b \n</property>"
        "<property name='b' type='byte_array' hint='Generic'> 0x01 , 0xFF </property>");
    EXPECT_EQ(statusHex(RGEN_OK), read());
    ASSERT_EQ(3U, values.size());
    EXPECT_EQ("0xff", rgen::variantText(values["n"]));
    EXPECT_EQ("a b", rgen::variantText(values["s"]));
    EXPECT_EQ(VariantHint::Dump, values["s"].hint);
    EXPECT_EQ("01 FF ", rgen::variantText(values["b"]));
    EXPECT_EQ(VariantHint::Generic, values["b"].hint);
}

TEST_F(ReadSimulatedRawInput, BadPropertiesAreSkipped) {
    const char* const rows[] = {
        "<property name='' type='int64' hint='Size'>1</property>",
        "<property name=' &#9;&#10;' type='int64' hint='Size'>1</property>",
        "<property name='a' type='' hint='Size'>1</property>",
        "<property name='a' type='Int64' hint='Size'>1</property>",
        "<property name='a' type='std::string' hint='Size'>1</property>",
        "<property name='a' type='handle' hint='Size'>1</property>",
        "<property name='a' type='int64' hint=''>1</property>",
        "<property name='a' type='int64' hint='Uninitialized'>1</property>",
        "<property name='a' type='int64' hint='size'>1</property>",
        "<property name='a' type='int64' hint='5'>1</property>",
        "<property name='a' type='int64' hint='Size'/>",
        "<property name='a' type='int64' hint='Size'> \n </property>",
        "<property name='a' type='string' hint='Size'><b>1</b></property>",
        "<property name='a' type='byte_array' hint='Dump'>0x1</property>",
        "<property name='a' type='byte_array' hint='Dump'>0X01</property>",
        "<property name='a' type='int64'>1</property>",
        "<property name='a' hint='Size'>1</property>",
        "<property type='int64' hint='Size'>1</property>",
        "<Property name='a' type='int64' hint='Size'>1</Property>",
        "<x><property name='a' type='int64' hint='Size'>1</property></x>",
    };
    for (const char* row : rows) {
        SCOPED_TRACE(row);
        putProperties(std::string(row) +
                      "<property name='z' type='int64' hint='Size'>2</property>");
        captureConsole([this] { read(); });
        EXPECT_EQ(1U, values.size());
        EXPECT_EQ(1U, values.count("z"));
    }
}

TEST_F(ReadSimulatedRawInput, AllSkippedIsStillSuccess) {
    putProperties("<property name='a' type='none' hint='Size'>1</property>");
    EXPECT_EQ(statusHex(RGEN_OK), read());
    EXPECT_TRUE(values.empty());
}

TEST_F(ReadSimulatedRawInput, LaterPropertyOfANameWins) {
    putProperties(
        "<property name='a' type='int64' hint='Size'>1</property>"
        "<property name='a' type='string' hint='Size'>later</property>"
        "<property name='a' type='int64' hint='none'>3</property>");
    EXPECT_EQ(statusHex(RGEN_OK), read());
    EXPECT_EQ("later", rgen::variantText(values["a"]));
}

TEST_F(ReadSimulatedRawInput, NothingSelectedHasTheStatusOfPersistentData) {
    for (const char* text :
         {"<data><properties/></data>", "<other/>", "<data/>",
          "<data><properties><property name='a'>1</property></properties></data>"}) {
        writeFile(path, text);
        EXPECT_EQ(statusHex(RGEN_E_NO_PERSIST_VALUES), read()) << text;
        EXPECT_TRUE(values.empty());
    }
}

TEST_F(ReadSimulatedRawInput, MissingFileLeavesTheMapUntouched) {
    EXPECT_EQ(statusHex(RGEN_E_OPEN_SIMULATION), read());
    EXPECT_EQ(statusHex(RGEN_E_OPEN_SIMULATION),
              statusHex(rgen::readSimulatedRawInput(generator, nullptr, values)));
    EXPECT_EQ(1U, values.count("before"));
}

TEST_F(ReadSimulatedRawInput, FileThatDoesNotParseClearsTheMap) {
    writeFile(path, "");
    EXPECT_EQ(statusHex(RGEN_E_OPEN_SIMULATION), read());
    EXPECT_TRUE(values.empty());
    removeAll(path);
    createFolder(path);
    EXPECT_EQ(statusHex(RGEN_E_OPEN_SIMULATION), read());
}

TEST_F(ReadSimulatedRawInput, XPathFailuresHaveTheirStatus) {
    putProperties("<property name='a' type='int64' hint='Size'>1</property>");
    {
        const FailingCall failure(Call::NewXPathContext);
        EXPECT_EQ(statusHex(RGEN_E_XPATH_CONTEXT), read());
    }
    {
        const FailingCall failure(Call::EvaluateXPath);
        EXPECT_EQ(statusHex(RGEN_E_XPATH_SEARCH), read());
    }
    EXPECT_TRUE(values.empty());
    EXPECT_EQ(statusHex(RGEN_OK), read());
}

TEST_F(ReadSimulatedRawInput, OneConsoleLineForEachInvalidDumpAndNothingElse) {
    putProperties(
        "<property name='a' type='byte_array' hint='Dump'>0x1</property>"
        "<property name='b' type='byte_array' hint='Dump'>0x01</property>"
        "<property name='c' type='byte_array' hint='Dump'>zz &undefined; </property>");
    const ConsoleText console = captureConsole([this] { read(); });
    EXPECT_EQ("input byte dump string is invalid\ninput byte dump string is invalid\n",
              console.out);
    EXPECT_EQ("", console.err);
    EXPECT_EQ(1U, values.size());
}

}  // namespace
}  // namespace rgen_test
