// How a report finds its template: the folder of the format, the file name of the configuration,
// which folders are created, and which status is returned when several things are wrong.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/report_fixture.h"

namespace rgen_test {
namespace {

class TemplateLookup : public ReportTest {
protected:
    TemplateLookup() { putTemplate(textStylesheet("[" + valueOf("v") + "]")); }
};

class StatusOrder : public ReportTest {};

TEST_F(TemplateLookup, TheFormatSelectsTheTemplatesFolder) {
    putTemplate(textStylesheet("as html"), "html");
    putTemplate(textStylesheet("as txt"), "txt");
    putTemplate(textStylesheet("as pdf"), "pdf");
    InputParams input;
    input.variants().addString("v", "1");
    for (const std::string format : {"html", "txt", "pdf"}) {
        input.format(format);
        EXPECT_EQ(reportOf("as " + format), report(input));
    }
}

TEST_F(TemplateLookup, TheTemplateIsReadAnewForEveryReport) {
    EXPECT_EQ(reportOf("first"), reportOfTemplate(textStylesheet("first")));
    EXPECT_EQ(reportOf("second"), reportOfTemplate(textStylesheet("second")));
}

TEST_F(TemplateLookup, AnEmptyFormatFindsNoTemplateAndMakesNoFolder) {
    removeAll(folder.dataFile("templates"));
    InputParams input;
    input.variants().addString("v", "1");
    input.format("");
    EXPECT_EQ(failure(RGEN_E_TEMPLATE_NOT_FOUND), report(input));
    EXPECT_FALSE(exists(folder.dataFile("templates")));
}

TEST_F(TemplateLookup, AnUnknownFormatGetsItsEmptyFolder) {
    InputParams input;
    input.variants().addString("v", "1");
    input.format("doc");
    EXPECT_EQ(failure(RGEN_E_TEMPLATE_NOT_FOUND), report(input));
    EXPECT_TRUE(isFolder(folder.dataFile("templates/doc")));
    EXPECT_TRUE(namesIn(folder.dataFile("templates/doc")).empty());
    EXPECT_EQ(failure(RGEN_E_TEMPLATE_NOT_FOUND), report(input));
}

TEST_F(TemplateLookup, AnUnknownFormatWithATemplateIsRefused) {
    InputParams input;
    input.variants().addString("v", "1");
    for (const std::string format : {"doc", "HTML.d", "html2", "Txt.x"}) {
        SCOPED_TRACE(format);
        putTemplate(textStylesheet("never"), format);
        input.format(format);
        EXPECT_EQ(failure(RGEN_E_UNKNOWN_FORMAT), report(input));
    }
}

TEST_F(TemplateLookup, TheFormatIsCaseSensitive) {
    removeAll(folder.dataFile("templates"));
    putTemplate(textStylesheet("never"), "HTML");
    InputParams input;
    input.variants().addString("v", "1");
    input.format("HTML");
    EXPECT_EQ(failure(RGEN_E_UNKNOWN_FORMAT), report(input));
}

TEST_F(TemplateLookup, TheTemplateFoldersAreMadeWhenMissing) {
    removeAll(folder.dataFile("templates"));
    InputParams input;
    input.variants().addString("v", "1");
    input.format("txt");
    EXPECT_EQ(failure(RGEN_E_TEMPLATE_NOT_FOUND), report(input));
    EXPECT_TRUE(isFolder(folder.dataFile("templates/txt")));
    EXPECT_FALSE(exists(folder.dataFile("templates/html")));
}

TEST_F(TemplateLookup, AFormatWithParentFoldersReachesOutOfTheTemplates) {
    InputParams input;
    input.variants().addString("v", "1");
    input.format("../beside");
    EXPECT_EQ(failure(RGEN_E_TEMPLATE_NOT_FOUND), report(input));
    EXPECT_TRUE(isFolder(folder.dataFile("beside")));
}

TEST_F(TemplateLookup, ATemplateFolderThatCannotBeMadeIsAMissingTemplate) {
    removeAll(folder.dataFile("templates"));
    writeFile(folder.dataFile("templates"), "a file");
    InputParams input;
    input.variants().addString("v", "1");
    EXPECT_EQ(failure(RGEN_E_TEMPLATE_NOT_FOUND), report(input));
    EXPECT_EQ("a file", readFile(folder.dataFile("templates")));
}

TEST_F(TemplateLookup, ATemplateNameWithASeparatorReachesASubFolder) {
    putConfig(
        "<type guid='deadbabe-0000-0000-0000-000000000000'><persistDataFile>p.xml"
        "</persistDataFile><reportTypeFile>deep/er.xsl</reportTypeFile></type>");
    writeFile(folder.dataFile("templates/html/deep/er.xsl"), textStylesheet("found"));
    EXPECT_EQ(reportOf("found"), reportOfValue("1"));
}

TEST_F(TemplateLookup, AFolderAtTheTemplatesPathCannotBeProcessed) {
    removeAll(folder.dataFile("templates/html/test_stylesheet.xsl"));
    createFolder(folder.dataFile("templates/html/test_stylesheet.xsl"));
    EXPECT_EQ(failure(RGEN_E_XSLT_PARSE), reportOfValue("1"));
}

TEST_F(TemplateLookup, AFreshFolderGetsADefaultConfigurationThatServesTheDefaultGuid) {
    const TempFolder fresh;
    const Generator other(fresh.path());
    InputParams input;
    input.variants().addString("v", "1");
    Result result;
    EXPECT_EQ(statusHex(RGEN_E_TEMPLATE_NOT_FOUND),
              statusHex(rgen_generateReport(other.get(), input.get(), result.get())));
    EXPECT_TRUE(exists(fresh.dataFile("config.xml")));
    EXPECT_TRUE(isFolder(fresh.dataFile("templates/html")));
    writeFile(fresh.dataFile("templates/html/test_stylesheet.xsl"), textStylesheet("works"));
    EXPECT_EQ(statusHex(RGEN_OK),
              statusHex(rgen_generateReport(other.get(), input.get(), result.get())));
    EXPECT_EQ("works", result.bytes());
}

TEST_F(TemplateLookup, ConfigurationStatusesAreReturnedUnchanged) {
    struct Row {
        const char* label;
        std::string config;
        RgenStatus status;
    };
    const std::vector<Row> rows = {
        {"empty file", "", RGEN_E_OPEN_CONFIG},
        {"no type", "<config><reportTypes/></config>", RGEN_E_NO_TYPE_MAP},
        {"bad guid", "<config><reportTypes><type guid='x'/></reportTypes></config>",
         RGEN_E_NO_VALID_TYPE_MAP},
        {"another guid",
         "<config><reportTypes><type guid='11111111-0000-0000-0000-000000000000'>"
         "<persistDataFile>p</persistDataFile><reportTypeFile>t</reportTypeFile></type>"
         "</reportTypes></config>",
         RGEN_E_GUID_NOT_IN_CONFIG}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.label);
        writeFile(folder.dataFile("config.xml"), row.config);
        EXPECT_EQ(failure(row.status), reportOfValue("1"));
        EXPECT_EQ(row.config, readFile(folder.dataFile("config.xml")));
    }
}

TEST_F(TemplateLookup, AFailedGenerationLeavesTheGeneratorUsable) {
    InputParams unknown;
    unknown.guid(guidFromText("ffffffff-ffff-ffff-ffff-ffffffffffff"));
    unknown.variants().addString("v", "1");
    for (int repetition = 0; repetition < 3; ++repetition) {
        EXPECT_EQ(failure(RGEN_E_GUID_NOT_IN_CONFIG), report(unknown));
        EXPECT_EQ(reportOf("[1]"), reportOfValue("1"));
    }
}

// Everything is wrong at first; each step corrects what the library complained about.
TEST_F(StatusOrder, EachStepIsReachedOnlyWhenTheStepsBeforeItSucceed) {
    InputParams input;
    input.guid(guidFromText("12345678-0000-0000-0000-000000000000"));
    input.format("odd");
    input.output(9, folder.file("report"));
    EXPECT_EQ(statusHex(RGEN_E_GUID_NOT_IN_CONFIG), generate(input));
    input.guid(defaultGuid());
    EXPECT_EQ(statusHex(RGEN_E_EMPTY_INPUT), generate(input));
    EXPECT_FALSE(exists(folder.dataFile("templates")));
    input.variants().addString("v", "1");
    EXPECT_EQ(statusHex(RGEN_E_TEMPLATE_NOT_FOUND), generate(input));
    putTemplate("no template", "odd");
    EXPECT_EQ(statusHex(RGEN_E_UNKNOWN_FORMAT), generate(input));
    input.format("txt");
    putTemplate("no template", "txt");
    EXPECT_EQ(statusHex(RGEN_E_XSLT_PARSE), generate(input));
    putTemplate(textStylesheet("<xsl:message terminate=\"yes\"/>"), "txt");
    EXPECT_EQ(statusHex(RGEN_E_XSLT_APPLY), generate(input));
    putTemplate(textStylesheet(""), "txt");
    EXPECT_EQ(statusHex(RGEN_E_XSLT_RESULT), generate(input));
    putTemplate(textStylesheet("done"), "txt");
    EXPECT_EQ(statusHex(RGEN_E_UNKNOWN_OUTPUT_MODE), generate(input));
    input.output(RGEN_OUTPUT_FILE, folder.file("report"));
    EXPECT_EQ(statusHex(RGEN_OK), generate(input));
    EXPECT_EQ("done", readFile(folder.file("report")));
}

}  // namespace
}  // namespace rgen_test
