// Converted reports are verified.
//
// SPDX-License-Identifier: MIT
#include "host_library/host_library_fixture.h"

namespace rgen_test {
namespace {

const char* const wholePdf = "%PDF-1.7 ... %%EOF";

class Pdfs : public HostLibraryTest {
protected:
    std::string generatePdf() {
        Result result;
        const RgenStatus status = rgenh_generateReport(host, input.get(), result.get(), &error);
        if (error.kind == RGENH_ERROR_CONVERSION) {
            EXPECT_EQ(RGEN_E_EXTERNAL_FAILED, status);
            EXPECT_EQ(output, error.path);
        }
        return error.message;
    }

    std::string verify(const std::string& path) {
        const RgenStatus status = rgenh_verifyPdf(path.c_str(), &error);
        EXPECT_EQ(status < 0, error.kind == RGENH_ERROR_CONVERSION);
        return error.message;
    }

    const std::string note = output + ".error.txt";
};

TEST_F(Pdfs, ThatTheConverterMakesAreFine) {
    converter.obey({{"write", output, wholePdf}});
    EXPECT_EQ("", generatePdf());
    EXPECT_EQ(wholePdf, readFile(output));
}

TEST_F(Pdfs, ThatTheConverterDoesNotMakeAreFailures) {
    EXPECT_EQ(output + ": the converter made no file", generatePdf());
    converter.obey({{"write", output, "<html>"}});
    EXPECT_EQ(output + ": the converter's file is not a whole pdf", generatePdf());
    converter.obey({{"write", output, "%PDF-1.7 without an end"}});
    EXPECT_EQ(output + ": the converter's file is not a whole pdf", generatePdf());
}

TEST_F(Pdfs, ThatFailHaveTheMessageOfTheConverter) {
    converter.obey({{"write", note, "no browser at all"}});
    EXPECT_EQ(output + ": the converter made no file: no browser at all", generatePdf());
    converter.obey({{"write", output, wholePdf}, {"write", note, "a page about it"}});
    EXPECT_EQ(output + ": the converter failed: a page about it", generatePdf());
}

TEST_F(Pdfs, HaveMessagesInUtf8WhateverTheConverterWrites) {
    writeFile(note, "a \xFF\n\x1B[31m b");
    EXPECT_EQ(output + ": the converter made no file: a \xEF\xBF\xBD  [31m b", verify(output));
}

TEST_F(Pdfs, WithoutAPathAreErrors) {
    RgenCInputParams withoutPath = *input.get();
    withoutPath.outputPath = {};
    Result result;
    EXPECT_GT(0, rgenh_generateReport(host, &withoutPath, result.get(), &error));
    EXPECT_NE(RGENH_ERROR_UNKNOWN, error.kind) << error.message;
    EXPECT_STREQ("", error.path);
}

TEST_F(Pdfs, AreNotBlamedForAnEarlierMessage) {
    writeFile(note, "old");
    converter.obey({{"write", output, wholePdf}});
    EXPECT_EQ("", generatePdf());
    EXPECT_FALSE(exists(note));
}

TEST_F(Pdfs, WithADoubleQuoteAreRefused) {
    input.converterBaseArg("a\"b");
    EXPECT_EQ("the path or base of a pdf contains a double quote", generatePdf());
    EXPECT_EQ("7 2", kindAndArgument());
    EXPECT_FALSE(exists(html));
    input.converterBaseArg("").output(RGEN_OUTPUT_FILE, output + "\"");
    EXPECT_EQ("the path or base of a pdf contains a double quote", generatePdf());
    EXPECT_EQ("7 2", kindAndArgument());
}

TEST_F(Pdfs, ThatAreNotConvertedAreNotVerified) {
    input.skipExternalConversion(1);
    EXPECT_EQ("", generatePdf());
    EXPECT_EQ(bytes, readFile(output));
    writeFile(note, "kept");
    EXPECT_EQ("", generatePdf());
    EXPECT_TRUE(exists(note));
}

TEST_F(Pdfs, AreCheckedByThemselves) {
    const std::string path = folder.file("other.pdf");
    EXPECT_EQ(path + ": the converter made no file", verify(path));
    writeFile(path, wholePdf);
    EXPECT_EQ("", verify(path));
    writeFile(path, "%PDF-1.7 %%EOF" + std::string(1019, ' '));
    EXPECT_EQ("", verify(path));
    writeFile(path, "%PDF-1.7 %%EOF" + std::string(1020, ' '));
    EXPECT_EQ(path + ": the converter's file is not a whole pdf", verify(path));
    writeFile(path, "");
    EXPECT_EQ(path + ": the converter's file is not a whole pdf", verify(path));
    writeFile(path + ".error.txt", "no browser\nat all\n\n");
    EXPECT_EQ(path + ": the converter's file is not a whole pdf: no browser at all", verify(path));
    writeFile(path, wholePdf);
    for (const char* nothing : {"", "\r\n"}) {
        writeFile(path + ".error.txt", nothing);
        EXPECT_EQ(path + ": the converter failed", verify(path));
    }
    createFolder(folder.file("folder.pdf"));
    EXPECT_NE("", verify(folder.file("folder.pdf")));
    const std::string cyrillic = folder.file("\xD0\xBE\xD1\x82\xE2\x82\xAC.pdf");
    writeFile(cyrillic, wholePdf);
    EXPECT_EQ("", verify(cyrillic));
    EXPECT_EQ(RGEN_E_UNKNOWN, rgenh_verifyPdf("a\xFF", &error));
    EXPECT_EQ("3 1", kindAndArgument());
}

}  // namespace
}  // namespace rgen_test
