// The conversion of a pdf report by the external converter, which a stand-in plays here.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "support/conversion_fixture.h"
#include "support/working_folder.h"

namespace rgen_test {
namespace {

class Conversion : public ConversionTest {};

TEST_F(Conversion, HandsTheTransformationsBytesToTheConverterAndRemovesThem) {
    converter.obey({{"copy", html, folder.file("seen")}, {"write", output, "converted"}});
    EXPECT_EQ(statusHex(RGEN_OK), generate(input));
    EXPECT_EQ(bytes, readFile(folder.file("seen")));
    EXPECT_EQ("converted", readFile(output));
    EXPECT_FALSE(exists(html));
}

TEST_F(Conversion, LeavesTheResultRecordAlone) {
    RgenCVariant result{};
    result.type = 99;
    EXPECT_EQ(statusHex(RGEN_OK),
              statusHex(rgen_generateReport(generator.get(), input.get(), &result)));
    EXPECT_EQ(99U, result.type);
    EXPECT_EQ(nullptr, result.name.data);
}

TEST_F(Conversion, DoesNotExamineTheExitCode) {
    for (const std::string code : {"1", "2", "127", "255"}) {
        SCOPED_TRACE(code);
        writeFile(output, "old");
        converter.obey({{"exit", code}});
        EXPECT_EQ(statusHex(RGEN_OK), generate(input));
        EXPECT_FALSE(exists(output));
        EXPECT_FALSE(exists(html));
    }
}

TEST_F(Conversion, KeepsWhatAFailingConverterWrote) {
    converter.obey({{"write", output, "partial"}, {"exit", "1"}});
    EXPECT_EQ(statusHex(RGEN_OK), generate(input));
    EXPECT_EQ("partial", readFile(output));
    EXPECT_FALSE(exists(html));
}

TEST_F(Conversion, TakesACrashOfTheConverterForSuccess) {
    converter.obey({{"mark", folder.file("ran")}, {"crash"}});
    EXPECT_EQ(statusHex(RGEN_OK), generate(input));
    EXPECT_TRUE(exists(folder.file("ran")));
    EXPECT_FALSE(exists(output));
    EXPECT_FALSE(exists(html));
}

TEST_F(Conversion, AMissingConverterLeavesNothing) {
    createFolder(folder.file("no programs"));
    const ScopedEnvironmentText path("PATH", folder.file("no programs"));
    writeFile(output, "old");
    EXPECT_EQ(statusHex(RGEN_E_RUN_EXTERNAL), generate(input));
    EXPECT_FALSE(exists(output));
    EXPECT_FALSE(exists(html));
}

TEST_F(Conversion, ReplacesAnExistingTemporaryFile) {
    writeFile(html, std::string(100000, 'o'));
    converter.obey({{"copy", html, folder.file("seen")}});
    EXPECT_EQ(statusHex(RGEN_OK), generate(input));
    EXPECT_EQ(bytes, readFile(folder.file("seen")));
    EXPECT_FALSE(exists(html));
}

TEST_F(Conversion, ATemporaryFileThatCannotBeMadeIsReported) {
    createFolder(html);
    writeFile(output, "old");
    converter.obey({{"mark", folder.file("ran")}});
    EXPECT_EQ(statusHex(RGEN_E_CREATE_OUTPUT), generate(input));
    EXPECT_TRUE(isFolder(html));
    EXPECT_FALSE(exists(output));
    EXPECT_FALSE(exists(folder.file("ran")));
}

TEST_F(Conversion, WorksWithBlanksAndAnyScriptInThePath) {
    const std::string name = "\xD0\xBE\xD1\x82\xD1\x87\xD1\x91\xD1\x82 one \xE6\xBC\xA2.pdf";
    request(input, name);
    converter.obey({{"copy", folder.file(name + ".html"), folder.file("seen")},
                    {"write", folder.file(name), "converted"}});
    EXPECT_EQ(statusHex(RGEN_OK), generate(input));
    EXPECT_EQ(bytes, readFile(folder.file("seen")));
    EXPECT_EQ("converted", readFile(folder.file(name)));
    EXPECT_FALSE(exists(folder.file(name + ".html")));
}

TEST_F(Conversion, RunsTheConverterInTheCurrentFolder) {
    createFolder(folder.file("current"));
    converter.obey({{"log", folder.file("log")}, {"copy", "r.pdf.html", "r.pdf"}});
    const WorkingFolder current(folder.file("current"));
    input.output(RGEN_OUTPUT_FILE, "r.pdf");
    EXPECT_EQ(statusHex(RGEN_OK), generate(input));
    EXPECT_EQ(std::vector<std::string>{folder.file("current")},
              loggedFacts(folder.file("log"), "directory"));
    EXPECT_EQ(std::vector<std::string>{"r.pdf"}, namesIn(folder.file("current")));
    EXPECT_EQ(bytes, readFile(folder.file("current/r.pdf")));
}

TEST_F(Conversion, HandsALargeReportOverWhole) {
    const std::string longText(3000000, 'x');
    input.variants().addString("v", longText);
    converter.obey({{"copy", html, output}});
    EXPECT_EQ(statusHex(RGEN_OK), generate(input));
    EXPECT_EQ("<p>" + longText + "</p>\n", readFile(output));
}

TEST_F(Conversion, ServesThePdfFormatOnly) {
    converter.obey({{"mark", folder.file("ran")}});
    for (const std::string format : {"html", "txt"}) {
        SCOPED_TRACE(format);
        putTemplate(textStylesheet("done"), format);
        input.format(format);
        EXPECT_EQ(statusHex(RGEN_OK), generate(input));
        EXPECT_EQ("done", readFile(output));
    }
    EXPECT_FALSE(exists(folder.file("ran")));
}

TEST_F(Conversion, IsWaitedForWithoutTheGeneratorsLock) {
    putTemplate(textStylesheet("meanwhile"), "html");
    converter.obey(waiting({}, {{"write", output, "converted"}}));
    RunningGeneration conversion(generator, input);
    ASSERT_TRUE(waitForStarted());
    EXPECT_EQ(reportOf("meanwhile"), reportOfValue("1"));
    char prefix[] = "";
    rgen_setTranslateFunction(generator.get(), translateWithPrefix, prefix);
    EXPECT_EQ(statusHex(RGEN_OK),
              statusHex(rgen_setDataDirPath(generator.get(), folder.path().c_str())));
    EXPECT_EQ(RGEN_OK, storePairs(generator, defaultGuid(), {{"a", "b"}}));
    release();
    EXPECT_EQ(statusHex(RGEN_OK), conversion.status());
    EXPECT_EQ("converted", readFile(output));
}

// The other reports fill more than one slice of the wait.
TEST_F(Conversion, IsWaitedForOverSeveralSlices) {
    putTemplate(textStylesheet("meanwhile"), "html");
    converter.obey(waiting({}, {{"write", output, "converted"}}));
    RunningGeneration conversion(generator, input);
    ASSERT_TRUE(waitForStarted());
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(2200);
    while (std::chrono::steady_clock::now() < end) {
        ASSERT_EQ(reportOf("meanwhile"), reportOfValue("1"));
    }
    release();
    EXPECT_EQ(statusHex(RGEN_OK), conversion.status());
    EXPECT_EQ("converted", readFile(output));
    EXPECT_FALSE(exists(html));
}

TEST_F(Conversion, EndsWithTheConverterItselfAndNotWithItsChildren) {
    const std::string child = converter.writeCommands(
        "child.control",
        {{"await", folder.file("released")}, {"mark", folder.file("child-ended")}});
    converter.obey({{"background", child}, {"write", output, "converted"}});
    EXPECT_EQ(statusHex(RGEN_OK), generate(input));
    EXPECT_EQ("converted", readFile(output));
    EXPECT_FALSE(exists(folder.file("child-ended")));
    release();
    EXPECT_TRUE(waitForFile(folder.file("child-ended")));
}

}  // namespace
}  // namespace rgen_test
