// Requests from arrays of values.
//
// SPDX-License-Identifier: MIT
#include <cstring>

#include "host_library/host_library_fixture.h"

namespace rgen_test {
namespace {

RgenhValue valueOfType(const char* name, std::uint64_t type, const void* data, std::uint64_t size) {
    return {name, RGENH_NULL_TERMINATED, type, RGEN_HINT_GENERIC, 0, data, size};
}

class Requests : public HostLibraryTest {
protected:
    Requests() { putTemplate(textStylesheet(valueOf("a") + "|" + valueOf("b"))); }

    // A request with that value as its second is refused with that message.
    void expectRefused(const char* message, const RgenhValue& value) {
        const RgenhValue values[] = {rgenh_textValue("good", "x"), value};
        parts.values = values;
        parts.valueCount = 2;
        EXPECT_EQ(nullptr, rgenh_newRequest(&parts, &error));
        EXPECT_EQ("7 1", kindAndArgument());
        EXPECT_EQ(1U, error.entry);
        EXPECT_EQ(0, error.entryIsPair);
        EXPECT_STREQ(message, error.message);
    }

    RgenhRequestParts parts = [] {
        RgenhRequestParts record = {};
        record.size = sizeof record;
        return record;
    }();
};

TEST_F(Requests, ShowTextsAsTheyAre) {
    for (const char* text : {"Disk 1 & 2", "&amp;", "&nbsp;", "<b>", "", "\xE2\x82\xAC &"}) {
        EXPECT_EQ(std::string(text) + "|", bytesOf({rgenh_textValue("a", text)}));
    }
}

TEST_F(Requests, TakeEveryTypeOfValue) {
    const unsigned char sector[] = {0, 1, 0xAB};
    EXPECT_EQ("0x1000|00 01 AB ", bytesOf({rgenh_integerValue("a", 4096, RGEN_HINT_ADDRESS),
                                           rgenh_bytesValue("b", sector, sizeof sector)}));
    EXPECT_EQ("<|", bytesOf({valueOfType("a", RGENH_TYPE_MARKUP, "&lt;", RGENH_NULL_TERMINATED),
                             valueOfType("b", RGEN_TYPE_HANDLE, nullptr, 0)}));
    EXPECT_EQ("|", bytesOf({valueOfType("a", RGEN_TYPE_STRING, nullptr, 0),
                            valueOfType("b", RGEN_TYPE_BYTE_ARRAY, nullptr, 0)}));
}

TEST_F(Requests, UseTheLastHintForThoseAfterIt) {
    const std::string both =
        bytesOf({rgenh_integerValue("a", 4096, 9), rgenh_integerValue("b", 4096, UINT64_MAX)});
    const std::size_t middle = both.find('|');
    EXPECT_EQ(both.substr(0, middle), both.substr(middle + 1));
}

TEST_F(Requests, ReadNamesAndTextsWithASize) {
    const char letters[] = {'a', 'b', 'c', '&'};
    const RgenhValue value = {letters, 1, RGEN_TYPE_STRING, 0, 0, letters + 1, 3};
    EXPECT_EQ("bc&|", bytesOf({value}));
}

TEST_F(Requests, OfTwoValuesWithOneNameUseTheLater) {
    EXPECT_EQ("2|", bytesOf({rgenh_textValue("a", "1"), rgenh_textValue("a", "2")}));
}

TEST_F(Requests, LetValuesReplacePairs) {
    const RgenhValue values[] = {rgenh_textValue("a", "value")};
    const RgenhValue pairs[] = {rgenh_textValue("a", "pair"), rgenh_textValue("b", "pair & co"),
                                valueOfType("c", RGENH_TYPE_MARKUP, "&lt;", 4)};
    parts.reportType = "{0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F9}";
    parts.format = "html";
    parts.outputMode = RGEN_OUTPUT_BYTES;
    parts.values = values;
    parts.valueCount = 1;
    parts.pairs = pairs;
    parts.pairCount = 3;
    putTemplateFile("second.xsl", textStylesheet(valueOf("a") + "|" + valueOf("b") + valueOf("c")));
    RgenhRequest* request = rgenh_newRequest(&parts, &error);
    ASSERT_NE(nullptr, request) << error.message;
    EXPECT_EQ("value|pair & co<", bytesOf(request));
    rgenh_freeRequest(request);
}

TEST_F(Requests, CopyEverything) {
    std::string text = "before";
    std::string format = "html";
    const RgenhValue values[] = {rgenh_textValue("a", text.c_str())};
    parts.templateGuid = guid;
    parts.format = format.c_str();
    parts.outputMode = RGEN_OUTPUT_BYTES;
    parts.values = values;
    parts.valueCount = 1;
    RgenhRequest* request = rgenh_newRequest(&parts, &error);
    text.assign(6, '#');
    format.assign(4, '#');
    EXPECT_EQ("before|", bytesOf(request));
    EXPECT_EQ("before|", bytesOf(request));
    rgenh_freeRequest(request);
}

TEST_F(Requests, FillTheRecordOfTheFirstLibrary) {
    parts.reportType = defaultGuidText;
    parts.outputPath = "o";
    parts.converterBase = "b";
    parts.skipExternalConversion = 1;
    RgenhRequest* request = rgenh_newRequest(&parts, &error);
    ASSERT_NE(nullptr, request);
    const RgenCInputParams& record = *rgenh_getRequestInput(request);
    EXPECT_EQ(0, std::memcmp(&guid, &record.templateGuid, sizeof guid));
    EXPECT_STREQ("", record.outputFormat.data);
    EXPECT_STREQ("o", record.outputPath.data);
    EXPECT_STREQ("b", record.converterBaseArg.data);
    EXPECT_EQ(1U, record.skipExternalConversion);
    EXPECT_EQ(std::uint64_t{RGEN_OUTPUT_FILE}, record.outputMode);
    EXPECT_EQ(0U, record.variants.count);
    EXPECT_EQ(0U, record.pairs.count);
    rgenh_freeRequest(request);
}

TEST_F(Requests, NameTheValueThatIsWrong) {
    parts.reportType = defaultGuidText;
    expectRefused("a name is null", rgenh_textValue(nullptr, "x"));
    expectRefused("\"a\": a text is null", rgenh_textValue("a", nullptr));
    const std::string name(70, 'n');
    expectRefused(("\"" + name.substr(0, 60) + "\": a text is null").c_str(),
                  rgenh_textValue(name.c_str(), nullptr));
    expectRefused("a name contains a zero byte", {"a\0b", 3, RGEN_TYPE_STRING, 0, 0, "x", 1});
    expectRefused("\"a\": a text contains a zero byte",
                  {"a", 1, RGEN_TYPE_STRING, 0, 0, "x\0y", 3});
    expectRefused("\"a\": a byte array is null", rgenh_bytesValue("a", nullptr, 1));
    expectRefused("\"a\": a value is longer than 4,294,967,295 bytes",
                  rgenh_bytesValue("a", "x", 0x100000000));
    expectRefused("a name is longer than 4,294,967,295 bytes",
                  {"a", 0x100000000, RGEN_TYPE_STRING, 0, 0, "x", 1});
    expectRefused("\"a\": a text is longer than 4,294,967,295 bytes",
                  valueOfType("a", RGEN_TYPE_STRING, "x", UINT64_MAX - 1));
    expectRefused("\"a\": a value has the unknown type 6", valueOfType("a", 6, "x", 1));
    expectRefused("\"a\": a value has the unknown type 0",
                  valueOfType("a", RGEN_TYPE_EMPTY, "x", 1));
}

TEST_F(Requests, RefuseWrongParts) {
    parts.reportType = "5a0c6f1e-3b74-4e59-9d21";
    EXPECT_EQ(nullptr, rgenh_newRequest(&parts, &error));
    EXPECT_STREQ("\"5a0c6f1e-3b74-4e59-9d21\" is not a GUID", error.message);
    EXPECT_EQ(RGENH_NO_ENTRY, error.entry);
    parts.reportType = defaultGuidText;
    parts.valueCount = 1;
    EXPECT_EQ(nullptr, rgenh_newRequest(&parts, &error));
    parts.valueCount = 0;
    parts.pairCount = 1;
    EXPECT_EQ(nullptr, rgenh_newRequest(&parts, &error));
    const RgenhValue number = rgenh_integerValue("a", 1, 0);
    parts.pairs = &number;
    EXPECT_EQ(nullptr, rgenh_newRequest(&parts, &error));
    EXPECT_EQ(0U, error.entry);
    EXPECT_EQ(1, error.entryIsPair);
    EXPECT_STREQ("\"a\": a pair is not a text", error.message);
    parts.pairCount = 0;
    parts.size = sizeof parts - 1;
    EXPECT_EQ(nullptr, rgenh_newRequest(&parts, &error));
    EXPECT_EQ("7 1", kindAndArgument());
    parts.size = sizeof parts;
    parts.valueCount = UINT64_MAX / 2;
    parts.values = &number;
    EXPECT_EQ(nullptr, rgenh_newRequest(&parts, &error));
    EXPECT_EQ(RGENH_ERROR_MEMORY, error.kind);
}

TEST_F(Requests, HoldManyValues) {
    putTemplate(
        textStylesheet("<xsl:value-of select=\"count(//property)\"/>|" + valueOf("n59999")));
    std::vector<std::string> names;
    std::vector<RgenhValue> values;
    for (int i = 0; i < 60000; ++i)
        names.push_back("n" + std::to_string(i));
    for (const std::string& name : names)
        values.push_back(rgenh_textValue(name.c_str(), name.c_str()));
    EXPECT_EQ("60000|n59999", bytesOf(values));
}

TEST_F(Requests, ServeTheDump) {
    const std::string path = folder.file("dump.xml");
    const HostRequest request({rgenh_textValue("a", "x & y")});
    EXPECT_EQ(RGEN_OK, rgenh_dumpRawInputDataToFile(host, request.input(), path.c_str(), &error));
    EXPECT_NE(std::string::npos, readFile(path).find("x &amp; y"));
    const HostRequest empty({});
    EXPECT_EQ(RGEN_OK, rgenh_dumpRawInputDataToFile(host, empty.input(), path.c_str(), &error));
}

}  // namespace
}  // namespace rgen_test
