// The data of a report: its sources, their precedence, and what is left out.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "support/report_fixture.h"

namespace rgen_test {
namespace {

// Every property as "name=text;", sorted by name.
const char* const everyProperty =
    "<xsl:for-each select=\"/data/properties/property\"><xsl:sort select=\"@name\"/>"
    "<xsl:value-of select=\"@name\"/>=<xsl:value-of select=\".\"/>;</xsl:for-each>";

class InputMerge : public ReportTest {
protected:
    InputMerge() { putTemplate(textStylesheet(everyProperty)); }
};

TEST_F(InputMerge, ANullResultIsRefusedBeforeTheOutputIsWritten) {
    InputParams input;
    input.variants().addString("a", "1");
    input.output(RGEN_OUTPUT_FILE, folder.file("report.html"));
    EXPECT_EQ(statusHex(RGEN_E_BAD_PARAMETER),
              statusHex(rgen_generateReport(generator.get(), input.get(), nullptr)));
    EXPECT_FALSE(exists(folder.file("report.html")));
}

TEST_F(InputMerge, WithoutAnyPropertyTheInputIsEmpty) {
    InputParams input;
    EXPECT_EQ(failure(RGEN_E_EMPTY_INPUT), report(input));
}

TEST_F(InputMerge, PersistentDataAloneIsEnough) {
    ASSERT_EQ(RGEN_OK, storePairs(generator, defaultGuid(), {{"stored", "kept"}}));
    InputParams input;
    EXPECT_EQ(reportOf("stored=kept;"), report(input));
}

TEST_F(InputMerge, PairsAloneAreEnough) {
    InputParams input;
    input.pairs().add("pair", "text");
    EXPECT_EQ(reportOf("pair=text;"), report(input));
}

TEST_F(InputMerge, AnEmptyTextUnderAnEmptyNameIsAProperty) {
    InputParams input;
    input.variants().addString("", "");
    EXPECT_EQ(reportOf("=;"), report(input));
}

TEST_F(InputMerge, ValuesWinOverPairsAndPairsOverPersistentData) {
    ASSERT_EQ(RGEN_OK, storePairs(generator, defaultGuid(),
                                  {{"a", "stored"}, {"b", "stored"}, {"c", "stored"}}));
    InputParams input;
    input.pairs().add("b", "pair").add("c", "pair").add("d", "pair");
    input.variants().addString("c", "value").addString("d", "value").addString("e", "value");
    EXPECT_EQ(reportOf("a=stored;b=pair;c=value;d=value;e=value;"), report(input));
}

TEST_F(InputMerge, AnEmptyValueWinsOverAPair) {
    InputParams input;
    input.pairs().add("a", "pair");
    input.variants().addString("a", "");
    EXPECT_EQ(reportOf("a=;"), report(input));
}

TEST_F(InputMerge, OfTwoEntriesOfOneNameTheLaterWins) {
    InputParams input;
    input.pairs().add("p", "first").add("p", "second");
    input.variants().addString("v", "first").addInt64("v", 2);
    EXPECT_EQ(reportOf("p=second;v=2;"), report(input));
}

TEST_F(InputMerge, NamesAreTakenByteForByte) {
    InputParams input;
    input.variants().addString("a", "small").addString("A", "capital").addString(" a", "blank");
    EXPECT_EQ(" a=blank;", report(input).bytes.substr(0, 9));
    EXPECT_NE(std::string::npos, report(input).bytes.find("a=small;"));
    EXPECT_NE(std::string::npos, report(input).bytes.find("A=capital;"));
}

TEST_F(InputMerge, HandlesAndUnknownTypesAreLeftOut) {
    InputParams input;
    input.variants().addHandle("handle", &input).addInt64("empty", 1).addInt64("unknown", 2);
    input.variants().at(1).type = RGEN_TYPE_EMPTY;
    input.variants().at(2).type = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(failure(RGEN_E_EMPTY_INPUT), report(input));
    input.variants().addString("text", "kept");
    EXPECT_EQ(reportOf("text=kept;"), report(input));
}

TEST_F(InputMerge, AHandleDoesNotHideAPairOfItsName) {
    InputParams input;
    input.pairs().add("a", "pair");
    input.variants().addHandle("a", &input);
    EXPECT_EQ(reportOf("a=pair;"), report(input));
}

TEST_F(InputMerge, TextsAreReadToTheirTerminatingZeroWhateverTheLength) {
    InputParams input;
    input.variants().addString("name", "text");
    input.variants().at(0).name.length = 1;
    input.variants().at(0).value.stringValue.length = 0;
    input.pairs().add("pair", "value");
    RgenCInputParams* record = input.get();
    record->pairs.keys[0].length = 0;
    record->pairs.values[0].length = 1;
    record->outputFormat.length = 1;
    Result result;
    ASSERT_EQ(statusHex(RGEN_OK),
              statusHex(rgen_generateReport(generator.get(), record, result.get())));
    EXPECT_EQ("name=text;pair=value;", result.bytes());
}

TEST_F(InputMerge, NullTextsAndBytesAreEmptyOnes) {
    RgenCVariant values[2] = {};
    values[0].type = RGEN_TYPE_STRING;
    values[0].hint = RGEN_HINT_GENERIC;
    values[1].type = RGEN_TYPE_BYTE_ARRAY;
    values[1].name.data = const_cast<char*>("bytes");
    values[1].value.byteArrayValue.size = 9;
    InputParams input;
    RgenCInputParams* record = input.get();
    record->variants = {values, 2};
    record->pairs = {nullptr, nullptr, 3};
    Result result;
    ASSERT_EQ(statusHex(RGEN_OK),
              statusHex(rgen_generateReport(generator.get(), record, result.get())));
    EXPECT_EQ("=;bytes=;", result.bytes());
}

TEST_F(InputMerge, NullPairTextsAreEmptyTexts) {
    RgenAnsiString nothing{};
    InputParams input;
    RgenCInputParams* record = input.get();
    record->pairs = {&nothing, &nothing, 1};
    Result result;
    ASSERT_EQ(statusHex(RGEN_OK),
              statusHex(rgen_generateReport(generator.get(), record, result.get())));
    EXPECT_EQ("=;", result.bytes());
}

TEST_F(InputMerge, ANullOutputPathIsAnEmptyPath) {
    InputParams input;
    input.variants().addString("a", "1");
    input.output(RGEN_OUTPUT_BYTES);
    RgenCInputParams* record = input.get();
    rgen_freeRgenAnsiString(&record->outputPath);
    ASSERT_EQ(nullptr, record->outputPath.data);
    EXPECT_EQ(statusHex(RGEN_OK), generate(input));
    for (const std::uint64_t mode : {RGEN_OUTPUT_FILE, RGEN_OUTPUT_DELETE_ON_CLOSE}) {
        SCOPED_TRACE(mode);
        record->outputMode = mode;
        EXPECT_EQ(statusHex(RGEN_E_CREATE_OUTPUT), generate(input));
    }
}

TEST_F(InputMerge, AnUnusablePersistentFileContributesNothing) {
    const std::vector<std::string> contents = {
        "", "no xml at all", "<data><properties/></data>",
        "<data><properties><property name='a'> </property></properties></data>"};
    for (const std::string& content : contents) {
        SCOPED_TRACE(content);
        writeFile(folder.dataFile("persist_data.xml"), content);
        InputParams input;
        EXPECT_EQ(failure(RGEN_E_EMPTY_INPUT), report(input));
        input.variants().addString("v", "1");
        EXPECT_EQ(reportOf("v=1;"), report(input));
    }
}

TEST_F(InputMerge, AFolderAtThePersistentFilesPathContributesNothing) {
    createFolder(folder.dataFile("persist_data.xml"));
    InputParams input;
    input.variants().addString("v", "1");
    EXPECT_EQ(reportOf("v=1;"), report(input));
}

TEST_F(InputMerge, PersistentDataIsReadAnewAndTrimmed) {
    InputParams input;
    input.variants().addString("v", "1");
    for (const std::string text : {"first", "second"}) {
        writeFile(folder.dataFile("persist_data.xml"),
                  "<data><properties><property name=' p '>\n " + text +
                      "\t</property></properties></data>");
        EXPECT_EQ(reportOf("p=" + text + ";v=1;"), report(input));
    }
}

TEST_F(InputMerge, TheGuidSelectsTemplateAndPersistentData) {
    putTemplateFile("second.xsl", textStylesheet("second:" + valueOf("p")));
    putTemplateFile("sharing.xsl", textStylesheet("sharing:" + valueOf("p")));
    ASSERT_EQ(RGEN_OK, storePairs(generator, defaultGuid(), {{"p", "of the first"}}));
    ASSERT_EQ(RGEN_OK,
              storePairs(generator, guidFromText(secondGuidText), {{"p", "of the second"}}));
    InputParams input;
    EXPECT_EQ(reportOf("p=of the first;"), report(input));
    input.guid(guidFromText(secondGuidText));
    EXPECT_EQ(reportOf("second:of the second"), report(input));
    input.guid(guidFromText(sharingGuidText));
    EXPECT_EQ(reportOf("sharing:of the first"), report(input));
}

}  // namespace
}  // namespace rgen_test
