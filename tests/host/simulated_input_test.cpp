// rgen_getSimulatedRawDataFromFile: which properties become values, of which type and hint.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

#include "strata_repgenlib/rgen.h"
#include "support/console_capture.h"
#include "support/host_records.h"
#include "support/temp_folder.h"

namespace {

using rgen_test::ConsoleText;
using rgen_test::Generator;
using rgen_test::ReadVariant;
using rgen_test::SimulatedData;
using rgen_test::TempFolder;

using Bytes = std::vector<std::uint8_t>;

std::string property(const std::string& name, const std::string& type, const std::string& hint,
                     const std::string& text) {
    return "<property name='" + name + "' type='" + type + "' hint='" + hint + "'>" + text +
           "</property>";
}

std::string inData(const std::string& properties) {
    return "<data><properties>" + properties + "</properties></data>";
}

SimulatedData readContent(const std::string& content) {
    const TempFolder folder;
    rgen_test::writeFile(folder.file("simulation.xml"), content);
    const Generator generator;
    return rgen_test::simulatedData(generator, folder.file("simulation.xml"));
}

SimulatedData readProperties(const std::string& properties) {
    return readContent(inData(properties));
}

// The value of a file with this one property; a type of 99 says that there is none.
ReadVariant readOne(const std::string& type, const std::string& hint, const std::string& text) {
    const SimulatedData data = readProperties(property("n", type, hint, text));
    EXPECT_EQ(data.result, data.values.size());
    if (data.values.count("n") == 0) {
        return {99, 0, 0, "", {}};
    }
    return data.values.at("n");
}

// ---- Numbers --------------------------------------------------------------------------------

TEST(SimulatedInt64, IsReadAsFarAsItsDigitsGo) {
    const struct {
        const char* text;
        std::int64_t number;
    } rows[] = {{"0", 0},
                {"1200", 1200},
                {"-5", -5},
                {"+5", 5},
                {"007", 7},
                {" \n 12 \t", 12},
                {"12:30:00", 12},
                {"12 30", 12},
                {"3.9", 3},
                {"letters", 0},
                {"x12", 0},
                {"-", 0},
                {"+", 0},
                {"--5", 0},
                {"- 5", 0},
                {"0x10", 0},
                {"1e3", 1},
                {"9223372036854775807", std::numeric_limits<std::int64_t>::max()},
                {"9223372036854775808", std::numeric_limits<std::int64_t>::max()},
                {"999999999999999999999999999", std::numeric_limits<std::int64_t>::max()},
                {"-9223372036854775808", std::numeric_limits<std::int64_t>::min()},
                {"-9223372036854775809", std::numeric_limits<std::int64_t>::min()},
                {"-99999999999999999999999999x", std::numeric_limits<std::int64_t>::min()}};
    for (const auto& row : rows) {
        const ReadVariant value = readOne("int64", "Generic", row.text);
        EXPECT_EQ(std::uint64_t{RGEN_TYPE_INT64}, value.type) << row.text;
        EXPECT_EQ(row.number, value.number) << row.text;
    }
}

TEST(SimulatedInt64, KeepsTheHintsTwoToSeven) {
    const struct {
        const char* name;
        std::uint64_t hint;
    } rows[] = {{"Generic", 1}, {"Time", 2},    {"Date", 3},  {"DateTime", 4},
                {"Size", 5},    {"Address", 6}, {"Speed", 7}, {"Dump", 1}};
    for (const auto& row : rows) {
        const ReadVariant value = readOne("int64", row.name, "5");
        EXPECT_EQ(std::uint64_t{RGEN_TYPE_INT64}, value.type) << row.name;
        EXPECT_EQ(row.hint, value.hint) << row.name;
        EXPECT_EQ(5, value.number) << row.name;
    }
}

// ---- Texts ----------------------------------------------------------------------------------

TEST(SimulatedString, IsTheTrimmedText) {
    const struct {
        const char* text;
        const char* value;
    } rows[] = {{"text", "text"},
                {" \t\r\n two  words \n", "two  words"},
                {"a&amp;b &lt;c&gt; &#65;", "a&b <c> A"},
                {"<![CDATA[ <raw> ]]>", "<raw>"},
                {"a<!-- no -->b<x>no</x>c", "abc"},
                {"\xD0\xA0", "\xD0\xA0"},
                {"\xC2\xA0x\xC2\xA0", "\xC2\xA0x\xC2\xA0"}};
    for (const auto& row : rows) {
        const ReadVariant value = readOne("string", "Generic", row.text);
        EXPECT_EQ(std::uint64_t{RGEN_TYPE_STRING}, value.type) << row.text;
        EXPECT_EQ(row.value, value.text) << row.text;
    }
}

TEST(SimulatedString, ComesBackWithTheGenericHint) {
    for (const char* hint :
         {"Generic", "Time", "Date", "DateTime", "Size", "Address", "Speed", "Dump"}) {
        EXPECT_EQ(std::uint64_t{RGEN_HINT_GENERIC}, readOne("string", hint, "x").hint) << hint;
    }
}

// ---- Byte arrays ----------------------------------------------------------------------------

TEST(SimulatedByteArray, IsAListOfTokens) {
    const struct {
        const char* text;
        Bytes bytes;
    } rows[] = {{"0x00", {0}},
                {"0x01, 0xAB,0xff", {1, 0xAB, 0xFF}},
                {"0x01 , 0xFF", {1, 0xFF}},
                {" \n0xaB\t,\r\n 0xCd ", {0xAB, 0xCD}},
                {"0x10,0x00,0x0f", {0x10, 0, 0x0F}}};
    for (const auto& row : rows) {
        SimulatedData data{};
        const ConsoleText console = rgen_test::captureConsole(
            [&] { data = readProperties(property("n", "byte_array", "Dump", row.text)); });
        EXPECT_EQ("", console.out) << row.text;
        EXPECT_EQ("", console.err) << row.text;
        ASSERT_EQ(1U, data.values.size()) << row.text;
        const ReadVariant& value = data.values.at("n");
        EXPECT_EQ(std::uint64_t{RGEN_TYPE_BYTE_ARRAY}, value.type) << row.text;
        EXPECT_EQ(row.bytes, value.bytes) << row.text;
    }
}

TEST(SimulatedByteArray, ComesBackWithTheDumpHint) {
    for (const char* hint : {"Generic", "Time", "Size", "Address", "Dump"}) {
        EXPECT_EQ(std::uint64_t{RGEN_HINT_DUMP}, readOne("byte_array", hint, "0x01").hint) << hint;
    }
}

TEST(SimulatedByteArray, AnythingElseIsSkippedWithOneLineOnStandardOutput) {
    for (const char* text :
         {"0x1",        "0x",           "0X01",      "0x1g",      "0x001",    "0x01,",
          "0x01,,0x02", ",0x01",        ",",         "0x01 0x02", "0x010x02", "01",
          "1",          "x01",          "0x01;0x02", "0x01, 0x",  "0xGG",     "text",
          "00x01",      "0x01\xC2\xA0", "-0x01",     "0x01,0X02"}) {
        SimulatedData data{};
        const ConsoleText console = rgen_test::captureConsole(
            [&] { data = readProperties(property("n", "byte_array", "Dump", text)); });
        EXPECT_EQ(0, data.result) << text;
        EXPECT_EQ("input byte dump string is invalid\n", console.out) << text;
        EXPECT_EQ("", console.err) << text;
    }
}

TEST(SimulatedByteArray, EachInvalidOneHasALineOfItsOwn) {
    SimulatedData data{};
    const ConsoleText console = rgen_test::captureConsole([&] {
        data = readProperties(property("a", "byte_array", "Dump", "0x1") +
                              property("b", "byte_array", "Dump", "0x01") +
                              property("c", "byte_array", "Size", "x") +
                              property("d", "byte_array", "Unknown", "not looked at") +
                              property("e", "byte_array", "Dump", " "));
    });
    EXPECT_EQ("input byte dump string is invalid\ninput byte dump string is invalid\n",
              console.out);
    EXPECT_EQ("", console.err);
    EXPECT_EQ(1U, data.count);
    EXPECT_EQ((Bytes{1}), data.values.at("b").bytes);
}

TEST(SimulatedByteArray, TakesALongList) {
    std::string text = "0x00";
    for (int index = 1; index < 20000; ++index) {
        text += ",0x7F";
    }
    EXPECT_EQ(20000U, readOne("byte_array", "Dump", text).bytes.size());
}

// ---- Which properties count -----------------------------------------------------------------

TEST(SimulatedProperty, IsSkippedUnlessEverythingFits) {
    const std::string kept = property("kept", "int64", "Size", "1");
    for (const std::string& skipped :
         {property("n", "int64", "Uninitialized", "1"),
          property("n", "int64", "Unknown", "1"),
          property("n", "int64", "generic", "1"),
          property("n", "int64", "GENERIC", "1"),
          property("n", "int64", "", "1"),
          property("n", "int64", "1", "1"),
          property("n", "int64", "Date Time", "1"),
          property("n", "std::string", "Generic", "x"),
          property("n", "int64_t", "Generic", "1"),
          property("n", "std::vector&lt;uint8_t>", "Generic", "0x01"),
          property("n", "STRING", "Generic", "x"),
          property("n", "Int64", "Generic", "1"),
          property("n", "BYTE_ARRAY", "Dump", "0x01"),
          property("n", "handle", "Generic", "1"),
          property("n", "", "Generic", "x"),
          property("", "string", "Generic", "x"),
          property("  ", "string", "Generic", "x"),
          property(" &#9;&#10;", "string", "Generic", "x"),
          property("n", "string", "Generic", ""),
          property("n", "string", "Generic", " \n "),
          property("n", "string", "Generic", "<b>x</b>"),
          std::string("<property name='n' type='string'>x</property>"),
          std::string("<property name='n' hint='Generic'>x</property>"),
          std::string("<property type='string' hint='Generic'>x</property>"),
          std::string("<property name='n'>x</property>"),
          std::string("<Property name='n' type='string' hint='Generic'>x</Property>"),
          "<group>" + property("n", "string", "Generic", "x") + "</group>"}) {
        const SimulatedData data = readProperties(skipped + kept);
        EXPECT_EQ(1, data.result) << skipped;
        EXPECT_EQ(1U, data.count) << skipped;
        EXPECT_EQ(1U, data.values.count("kept")) << skipped;
        const SimulatedData none = readProperties(skipped);
        EXPECT_EQ(0, none.result) << skipped;
    }
}

TEST(SimulatedProperty, AttributesAreTrimmed) {
    const SimulatedData data =
        readProperties("<property hint=' Speed\t' type='&#10;int64 ' name=' n '>7</property>");
    ASSERT_EQ(1U, data.values.count("n"));
    EXPECT_EQ(7, data.values.at("n").number);
    EXPECT_EQ(std::uint64_t{RGEN_HINT_SPEED}, data.values.at("n").hint);
}

TEST(SimulatedProperty, OfTwoOfOneNameTheLaterValidOneWins) {
    const SimulatedData data = readProperties(property("n", "string", "Generic", "first") +
                                              property("n", "int64", "Size", "2") +
                                              property("n", "string", "Unknown", "third"));
    EXPECT_EQ(1U, data.count);
    EXPECT_EQ(std::uint64_t{RGEN_TYPE_INT64}, data.values.at("n").type);
    EXPECT_EQ(2, data.values.at("n").number);
}

TEST(SimulatedProperty, EveryValidOneTakesExactlyOneEntry) {
    std::string properties;
    for (int index = 0; index < 300; ++index) {
        const std::string name = "n" + std::to_string(index);
        properties += property(name, "int64", index % 3 == 0 ? "Size" : "No", "5");
    }
    const SimulatedData data = readProperties(properties);
    EXPECT_EQ(1, data.result);
    EXPECT_EQ(100U, data.count);
    EXPECT_EQ(100U, data.values.size());
}

// ---- The file and the target ----------------------------------------------------------------

TEST(SimulatedFile, OtherShapesGiveNoValues) {
    const std::string good = property("n", "int64", "Size", "1");
    for (const std::string& content :
         {std::string(), std::string("no XML"), std::string("<data/>"), inData(""),
          "<properties>" + good + "</properties>", "<data>" + good + "</data>",
          "<Data><properties>" + good + "</properties></Data>",
          "<data><Properties>" + good + "</Properties></data>",
          "<data xmlns='urn:x'><properties>" + good + "</properties></data>"}) {
        EXPECT_EQ(0, readContent(content).result) << content;
    }
}

TEST(SimulatedFile, ADamagedOneIsReadAsFarAsItCanBeRecovered) {
    const SimulatedData data =
        readContent("<data><properties>" + property("a", "int64", "Size", "1") +
                    "<property name='b' type='string' hint='Size'>cut");
    EXPECT_EQ(2U, data.count);
    EXPECT_EQ("cut", data.values.at("b").text);
}

TEST(SimulatedFile, AFailureLeavesTheTargetAlone) {
    const TempFolder folder;
    const Generator generator;
    rgen_test::writeFile(folder.file("empty.xml"), "");
    rgen_test::writeFile(folder.file("none.xml"), inData(""));
    rgen_test::createFolder(folder.file("folder"));
    for (const char* name : {"missing.xml", "empty.xml", "none.xml", "folder"}) {
        RgenCVariant entry{};
        RgenCVariantSet set{&entry, 7};
        EXPECT_EQ(
            0, rgen_getSimulatedRawDataFromFile(generator.get(), folder.file(name).c_str(), &set))
            << name;
        EXPECT_EQ(&entry, set.items);
        EXPECT_EQ(7U, set.count);
    }
}

TEST(SimulatedFile, InvalidUtf8InItsPathRaises) {
    const TempFolder folder;
    const Generator generator;
    for (const char* bytes : {"\xFF", "\xC3", "\xED\xA0\x80"}) {
        EXPECT_THROW(rgen_test::simulatedData(generator, folder.file(bytes)), std::range_error);
    }
}

TEST(SimulatedFile, IsTheOneThatIsNamed) {
    const Generator generator;
    for (const char* name : {"a%20b.xml", "a b.xml", "\xD0\xB4\xD0\xB0\xD0\xBD\xD0\xBD.xml"}) {
        const TempFolder folder;
        rgen_test::writeFile(folder.file(name), inData(property("n", "int64", "Size", "1")));
        EXPECT_EQ(1, rgen_test::simulatedData(generator, folder.file(name)).result) << name;
    }
}

}  // namespace
