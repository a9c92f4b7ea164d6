// The output modes, as far as they are the same on every system.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

#include "support/converter_control.h"
#include "support/report_fixture.h"
#include "support/test_platform.h"
#include "support/working_folder.h"

namespace rgen_test {
namespace {

class Delivery : public ReportTest {
protected:
    Delivery() {
        for (const char* format : {"html", "txt", "pdf"})
            putTemplate(reportTemplate(), format);
        input.variants().addString("v", "value");
    }

    static std::string reportTemplate() {
        return stylesheet("method=\"html\" encoding=\"UTF-8\"",
                          "<xsl:template match=\"/\"><p>" + valueOf("v") + "</p></xsl:template>");
    }

    InputParams input;
    const std::string bytes = "<p>value</p>\n";
};

class FileMode : public Delivery {};
class BytesMode : public Delivery {};
class UnknownMode : public Delivery {};
class DeleteOnCloseReport : public DeleteOnCloseTest {};

TEST_F(FileMode, WritesExactlyTheTransformationsBytes) {
    for (const std::string format : {"html", "txt"}) {
        SCOPED_TRACE(format);
        const std::string path = folder.file("report." + format);
        input.format(format).output(RGEN_OUTPUT_FILE, path);
        EXPECT_EQ(statusHex(RGEN_OK), generate(input));
        EXPECT_EQ(bytes, readFile(path));
    }
    EXPECT_EQ((std::vector<std::string>{".rgen", "report.html", "report.txt"}),
              namesIn(folder.path()));
}

TEST_F(FileMode, ReplacesAnExistingFile) {
    const std::string path = folder.file("report.html");
    writeFile(path, std::string(100000, 'o'));
    input.output(RGEN_OUTPUT_FILE, path);
    EXPECT_EQ(statusHex(RGEN_OK), generate(input));
    EXPECT_EQ(bytes, readFile(path));
}

TEST_F(FileMode, LeavesAnExistingFileAloneWhenAnEarlierStepFails) {
    const std::string path = folder.file("report.html");
    writeFile(path, "old");
    putTemplate("no template");
    input.output(RGEN_OUTPUT_FILE, path);
    EXPECT_EQ(statusHex(RGEN_E_XSLT_PARSE), generate(input));
    EXPECT_EQ("old", readFile(path));
}

TEST_F(FileMode, RefusesAFolderAtTheOutputPath) {
    createFolder(folder.file("empty"));
    writeFile(folder.file("filled/file"), "kept");
    for (const std::string format : {"html", "pdf"}) {
        for (const std::string name : {"empty", "filled"}) {
            SCOPED_TRACE(format + " " + name);
            input.format(format).output(RGEN_OUTPUT_FILE, folder.file(name));
            EXPECT_EQ(statusHex(RGEN_E_OVERWRITE_OUTPUT), generate(input));
            EXPECT_TRUE(isFolder(folder.file(name)));
            EXPECT_FALSE(exists(folder.file(name + ".html")));
        }
    }
    EXPECT_EQ("kept", readFile(folder.file("filled/file")));
}

TEST_F(FileMode, RefusesAMissingParentFolder) {
    for (const std::string format : {"html", "txt", "pdf"}) {
        SCOPED_TRACE(format);
        input.format(format).output(RGEN_OUTPUT_FILE, folder.file("missing/report"));
        EXPECT_EQ(statusHex(RGEN_E_CREATE_OUTPUT), generate(input));
        EXPECT_FALSE(exists(folder.file("missing")));
    }
}

TEST_F(FileMode, RefusesAnEmptyPath) {
    input.output(RGEN_OUTPUT_FILE, "");
    EXPECT_EQ(statusHex(RGEN_E_CREATE_OUTPUT), generate(input));
}

TEST_F(FileMode, TakesPathsInAnyScript) {
    const std::string name =
        "\xD0\xBE\xD1\x82\xD1\x87\xD1\x91\xD1\x82 \xE6\xBC\xA2 \xF0\x9F\x93\x84 e\xCC\x81.html";
    input.output(RGEN_OUTPUT_FILE, folder.file(name));
    EXPECT_EQ(statusHex(RGEN_OK), generate(input));
    EXPECT_EQ((std::vector<std::string>{".rgen", name}), namesIn(folder.path()));
    EXPECT_EQ(bytes, readFile(folder.file(name)));
}

TEST_F(FileMode, TakesNamesThatAreSpecialElsewhere) {
    for (const std::string name : {"a%20b.html", "a b", "-", "#1", "$HOME", "'q'"}) {
        SCOPED_TRACE(name);
        input.output(RGEN_OUTPUT_FILE, folder.file(name));
        EXPECT_EQ(statusHex(RGEN_OK), generate(input));
        EXPECT_EQ(bytes, readFile(folder.file(name)));
    }
}

TEST_F(FileMode, ResolvesARelativePathAgainstTheCurrentFolder) {
    createFolder(folder.file("current"));
    const WorkingFolder current(folder.file("current"));
    input.output(RGEN_OUTPUT_FILE, "report.html");
    EXPECT_EQ(statusHex(RGEN_OK), generate(input));
    EXPECT_EQ(bytes, readFile(folder.file("current/report.html")));
}

TEST_F(FileMode, WritesAPdfUnconvertedWhenTheConversionIsSkipped) {
    const ConverterControl converter(folder);
    converter.obey({{"mark", folder.file("started")}});
    input.format("pdf");
    for (const std::uint64_t skip : {std::uint64_t{1}, std::uint64_t{2}, std::uint64_t{1} << 63}) {
        SCOPED_TRACE(skip);
        input.skipExternalConversion(skip).output(RGEN_OUTPUT_FILE, folder.file("report.pdf"));
        writeFile(folder.file("report.pdf.html"), "not ours");
        EXPECT_EQ(statusHex(RGEN_OK), generate(input));
        EXPECT_EQ(bytes, readFile(folder.file("report.pdf")));
        EXPECT_EQ("not ours", readFile(folder.file("report.pdf.html")));
    }
    EXPECT_FALSE(exists(folder.file("started")));
}

TEST_F(FileMode, WritesALargeReportWhole) {
    const std::string longText(3000000, 'x');
    input.variants().addString("v", longText);
    input.output(RGEN_OUTPUT_FILE, folder.file("report.html"));
    EXPECT_EQ(statusHex(RGEN_OK), generate(input));
    EXPECT_EQ("<p>" + longText + "</p>\n", readFile(folder.file("report.html")));
}

TEST_F(FileMode, WritesZeroBytesAndLineEndsAsTheyAre) {
    putTemplate(stylesheet("method=\"text\" encoding=\"UTF-16LE\"",
                           "<xsl:template match=\"/\">a<xsl:text>\n</xsl:text></xsl:template>"));
    input.output(RGEN_OUTPUT_FILE, folder.file("report.html"));
    EXPECT_EQ(statusHex(RGEN_OK), generate(input));
    EXPECT_EQ(std::string("a\0\n\0", 4), readFile(folder.file("report.html")));
}

TEST_F(BytesMode, ReturnsTheBytesUnderTheStubName) {
    Result result;
    ASSERT_EQ(RGEN_OK, rgen_generateReport(generator.get(), input.get(), result.get()));
    EXPECT_EQ("Return stub name", toText(result.record().name));
    EXPECT_EQ(16U, result.record().name.length);
    EXPECT_EQ(std::uint64_t{RGEN_TYPE_BYTE_ARRAY}, result.record().type);
    EXPECT_EQ(std::uint64_t{RGEN_HINT_DUMP}, result.record().hint);
    EXPECT_EQ(bytes, result.bytes());
}

TEST_F(BytesMode, ReturnsWhatTheFileWouldHold) {
    for (const std::string format : {"html", "txt", "pdf"}) {
        SCOPED_TRACE(format);
        input.format(format).skipExternalConversion(1);
        const Report inMemory = report(input);
        input.output(RGEN_OUTPUT_FILE, folder.file("report"));
        EXPECT_EQ(statusHex(RGEN_OK), generate(input));
        EXPECT_EQ(reportOf(readFile(folder.file("report"))), inMemory);
    }
}

TEST_F(BytesMode, DoesNotTouchTheFileAtTheOutputPath) {
    writeFile(folder.file("report.pdf"), "old");
    input.format("pdf").output(RGEN_OUTPUT_BYTES, folder.file("report.pdf"));
    Result result;
    ASSERT_EQ(RGEN_OK, rgen_generateReport(generator.get(), input.get(), result.get()));
    EXPECT_EQ(bytes, result.bytes());
    EXPECT_EQ("old", readFile(folder.file("report.pdf")));
    EXPECT_EQ((std::vector<std::string>{".rgen", "report.pdf"}), namesIn(folder.path()));
}

TEST_F(BytesMode, NeverStartsTheConverter) {
    const ConverterControl converter(folder);
    converter.obey({{"mark", folder.file("started")}});
    input.format("pdf").skipExternalConversion(0);
    EXPECT_EQ(reportOf(bytes), report(input));
    EXPECT_FALSE(exists(folder.file("started")));
}

TEST_F(BytesMode, DoesNotLookAtTheOutputPath) {
    for (const std::string& path : {folder.path(), std::string("missing/folder/report"),
                                    std::string("\xFF\xFE"), std::string(40000, 'p')}) {
        SCOPED_TRACE(path.substr(0, 30));
        input.output(RGEN_OUTPUT_BYTES, path);
        EXPECT_EQ(statusHex(RGEN_OK), generate(input));
    }
}

TEST_F(DeleteOnCloseReport, OverwritesAnExistingFile) {
    const std::string path = folder.file("report.html");
    writeFile(path, std::string(1000, 'o'));
    input.output(RGEN_OUTPUT_DELETE_ON_CLOSE, path);
    EXPECT_TRUE(closesOnBytes(generateHandle(), "value"));
    EXPECT_FALSE(exists(path));
}

TEST_F(DeleteOnCloseReport, NeverConverts) {
    for (const std::string format : {"txt", "pdf"}) {
        SCOPED_TRACE(format);
        input.format(format).output(RGEN_OUTPUT_DELETE_ON_CLOSE, folder.file("report"));
        EXPECT_TRUE(closesOnBytes(generateHandle(), "value"));
        EXPECT_EQ(std::vector<std::string>{".rgen"}, namesIn(folder.path()));
    }
}

TEST_F(UnknownMode, IsRefusedAfterTheTransformationAndTouchesNothing) {
    int calls = 0;
    rgen_setTranslateFunction(
        generator.get(),
        [](const char* text, void* context) {
            ++*static_cast<int*>(context);
            return text;
        },
        &calls);
    putTemplate(textStylesheet("QT_TRANSLATE_NOOP(\"QObject\", \"a\")"));
    writeFile(folder.file("report.html"), "old");
    RgenCVariant result{};
    result.type = 99;
    int expectedCalls = 0;
    for (const std::uint64_t mode :
         {std::uint64_t{3}, std::uint64_t{1} << 32, std::numeric_limits<std::uint64_t>::max()}) {
        SCOPED_TRACE(mode);
        input.output(mode, folder.file("report.html"));
        EXPECT_EQ(statusHex(RGEN_E_UNKNOWN_OUTPUT_MODE),
                  statusHex(rgen_generateReport(generator.get(), input.get(), &result)));
        EXPECT_EQ(++expectedCalls, calls);
        EXPECT_EQ(99U, result.type);
        EXPECT_EQ("old", readFile(folder.file("report.html")));
    }
}

TEST_F(Delivery, OfNoBytesLeavesTheResultRecordOfMode2Alone) {
    putTemplate(textStylesheet("<xsl:comment>no text</xsl:comment>"));
    InputParams request;
    request.variants().addString("v", "value");
    request.output(RGEN_OUTPUT_BYTES, "");
    RgenCVariant record = {};
    record.type = 77;
    const RgenStatus status = rgen_generateReport(generator.get(), request.get(), &record);
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(status));
    EXPECT_EQ(77U, record.type);
    EXPECT_EQ(nullptr, record.name.data);
}

}  // namespace
}  // namespace rgen_test
