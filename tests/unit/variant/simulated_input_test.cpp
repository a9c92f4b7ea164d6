// Simulated input: values with their hints, and the statuses of whole files. Which properties count
// is tested through the library (host/simulated_input_test.cpp).
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

TEST_F(ReadSimulatedRawInput, AllSkippedIsStillSuccess) {
    putProperties("<property name='a' type='none' hint='Size'>1</property>");
    EXPECT_EQ(statusHex(RGEN_OK), read());
    EXPECT_TRUE(values.empty());
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

}  // namespace
}  // namespace rgen_test
