// Failures through rgen.hpp: statuses, exceptions of the library, conversions, cancellation.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>

#include "support/conversion_fixture.h"
#include "wrapper_fixture.h"

namespace rgen_test {
namespace {

const std::string wholePdf = "%PDF-1.7 x %%EOF";

TEST_F(WrapperTest, AStatusErrorSaysAllOfIt) {
    try {
        own.generateFile({type, "txt", {{"v", 1}}}, folder.file("report.txt"));
        FAIL() << "nothing was thrown";
    } catch (const repgen::StatusError& error) {
        EXPECT_EQ(statusHex(RGEN_E_TEMPLATE_NOT_FOUND), statusHex(error.status()));
        EXPECT_EQ("RGEN_E_TEMPLATE_NOT_FOUND", error.name());
        EXPECT_EQ("Template is not found in folder", error.text());
        EXPECT_FALSE(error.isCancellation());
        EXPECT_EQ(folder.file("report.txt") +
                      ": Template is not found in folder (0xC0000009 RGEN_E_TEMPLATE_NOT_FOUND)",
                  error.what());
    }
    EXPECT_STREQ("Template is not found in folder", repgen::statusText(RGEN_E_TEMPLATE_NOT_FOUND));
}

TEST_F(WrapperTest, EveryOperationThrowsItsStatus) {
    const repgen::Guid unknown("ffffffff-0000-0000-0000-000000000000");
    const std::string missing = folder.file("missing/file");
    EXPECT_EQ("RGEN_E_DIR_NOT_FOUND", statusOf([&] { own.setDataDir(missing); }));
    EXPECT_EQ("RGEN_E_DIR_NOT_FOUND", statusOf([&] { repgen::Generator other(missing); }));
    EXPECT_EQ("RGEN_E_EMPTY_INPUT", statusOf([&] { own.generateBytes({type}); }));
    EXPECT_EQ("RGEN_E_GUID_NOT_IN_CONFIG", statusOf([&] {
                  own.generateBytes({unknown, "html", {{"v", 1}}});
              }));
    EXPECT_EQ("RGEN_E_CREATE_OUTPUT", statusOf([&] {
                  own.generateFile({type, "html", {{"v", 1}}}, missing);
              }));
    EXPECT_EQ("RGEN_E_CREATE_OUTPUT", statusOf([&] {
                  own.generateOpenFile({type, "html", {{"v", 1}}}, missing);
              }));
    putTemplate(textStylesheet(""));
    EXPECT_EQ("RGEN_E_XSLT_RESULT", statusOf([&] { reportTextOf("x"); }));
    EXPECT_EQ("RGEN_E_OPEN_PERSIST", statusOf([&] { own.persistentData(type); }));
    EXPECT_EQ("RGEN_E_GUID_NOT_IN_CONFIG", statusOf([&] {
                  own.setPersistentData(unknown, {{"a", "b"}});
              }));
    EXPECT_EQ("RGEN_E_GUID_NOT_IN_CONFIG", statusOf([&] {
                  own.setPersistentValues(unknown, {{"a", "b"}});
              }));
    EXPECT_EQ("RGEN_E_CREATE_PERSIST", statusOf([&] { own.dump({{"a", "b"}}, missing); }));
}

TEST_F(WrapperTest, TextsThatWouldBeCutAreRefused) {
    const std::string cut("a\0b", 3);
    EXPECT_THROW(reportTextOf(cut), repgen::ArgumentError);
    EXPECT_THROW(reportText({type, "html", {{cut, 1}}}), repgen::ArgumentError);
    EXPECT_THROW(reportText({type, "html", {}, {{cut, "x"}}}), repgen::ArgumentError);
    EXPECT_THROW(reportText({type, "html", {}, {{"v", cut}}}), repgen::ArgumentError);
    EXPECT_THROW(reportText({type, cut, {{"v", 1}}}), repgen::ArgumentError);
    EXPECT_THROW(own.setPersistentData(type, {{"v", cut}}), repgen::ArgumentError);
    EXPECT_EQ("[x]", reportTextOf("x"));
}

TEST_F(WrapperTest, PathsThatAreNotUtf8AreEncodingErrors) {
    EXPECT_THROW(own.setDataDir("\xFF"), repgen::EncodingError);
    EXPECT_THROW(own.generateFile({type, "html", {{"v", 1}}}, "\xFF"), repgen::EncodingError);
    EXPECT_THROW(own.dump({}, "\xFF"), repgen::EncodingError);
    EXPECT_THROW(own.simulatedInput("\xFF"), repgen::EncodingError);
    EXPECT_EQ("[x]", reportTextOf("x"));
}

TEST_F(WrapperTest, AFileErrorSaysWhatTheSystemSays) {
    repgen::Generator withoutFolder;
    try {
        withoutFolder.persistentData(type);
        FAIL() << "nothing was thrown";
    } catch (const repgen::FileError& error) {
        EXPECT_EQ(RGENH_ERROR_FILE_SYSTEM, error.kind());
        EXPECT_NE(0, error.systemError());
        EXPECT_EQ("RGEN_E_UNKNOWN", error.name());
    }
}

TEST_F(WrapperTest, EveryErrorIsAnError) {
    const auto kindOf = [](const auto& call) {
        try {
            call();
        } catch (const repgen::Error& error) {
            EXPECT_STRNE("", error.what());
            EXPECT_FALSE(error.text().empty() || error.hint().empty());
            return error.kind();
        }
        return 0;
    };
    repgen::Generator withoutFolder;
    const repgen::Request request{type, "html", {{"v", 1}}};
    EXPECT_EQ(RGENH_ERROR_STATUS, kindOf([&] { own.generateBytes({type}); }));
    EXPECT_EQ(RGENH_ERROR_ENCODING, kindOf([&] { own.setDataDir("\xFF"); }));
    EXPECT_EQ(RGENH_ERROR_FILE_SYSTEM, kindOf([&] { withoutFolder.generateBytes(request); }));
    EXPECT_EQ(RGENH_ERROR_ARGUMENT, kindOf([&] {
                  own.generateBytes({type, "html", {{"a", std::string("\0", 1)}}});
              }));
    EXPECT_EQ(RGENH_ERROR_ARGUMENT, kindOf([] { repgen::Guid("none"); }));
    EXPECT_EQ("[1]", reportText(request));
}

class WrapperConversion : public ConversionTest {
protected:
    WrapperConversion() : own(folder.path()) {}

    void convert() { own.generateFile(pdf, output); }

    std::string problem() {
        try {
            convert();
        } catch (const repgen::ConversionError& error) {
            return error.what() + ("|" + error.reason());
        }
        return {};
    }

    repgen::Generator own;
    const repgen::Request pdf{repgen::Guid(defaultGuidText), "pdf", {{"v", "value \xD0\xB6"}}};
};

TEST_F(WrapperConversion, AWholePdfIsTaken) {
    converter.obey({{"write", output, wholePdf}});
    convert();
    EXPECT_EQ(wholePdf, readFile(output));
}

TEST_F(WrapperConversion, AMissingOrPartialPdfIsNot) {
    EXPECT_EQ(output + ": the converter made no file|", problem());
    for (const char* part : {"", "%PDF", "%PDF-1.7 x", "%%EOF", " %PDF-1.7 %%EOF"}) {
        converter.obey({{"write", output, part}});
        EXPECT_EQ(output + ": the converter's file is not a whole pdf|", problem()) << part;
    }
}

TEST_F(WrapperConversion, TheReasonIsTheConvertersText) {
    converter.obey({{"write", output + ".error.txt", "no engine"}});
    EXPECT_EQ(output + ": the converter made no file: no engine|no engine", problem());
    converter.obey({{"write", output, wholePdf}, {"write", output + ".error.txt", "page"}});
    EXPECT_EQ(output + ": the converter failed: page|page", problem());
}

TEST_F(WrapperConversion, TheTextOfAnEarlierFailureIsForgotten) {
    writeFile(output + ".error.txt", "earlier");
    converter.obey({{"write", output, wholePdf}});
    convert();
    EXPECT_FALSE(exists(output + ".error.txt"));
    writeFile(output + ".error.txt", "earlier");
    converter.obey({});
    std::filesystem::remove(repgen::Path(output).native());
    EXPECT_EQ(output + ": the converter made no file|", problem());
}

TEST_F(WrapperConversion, DoubleQuotesAreRefusedWhereTheConverterWouldSeeThem) {
    const std::string quoted = output + "\"";
    EXPECT_THROW(own.generateFile(pdf, quoted), repgen::ArgumentError);
    repgen::Request based = pdf;
    based.converterBase = "a\"b";
    EXPECT_THROW(own.generateFile(based, output), repgen::ArgumentError);
    based.convert = false;
    own.generateFile(based, output);
    EXPECT_EQ(bytes, readFile(output));
}

TEST_F(WrapperConversion, WithoutConversionThePageIsTheReport) {
    repgen::Request page = pdf;
    page.convert = false;
    writeFile(output + ".error.txt", "of somebody");
    own.generateFile(page, output);
    EXPECT_EQ(bytes, readFile(output));
    EXPECT_TRUE(exists(output + ".error.txt"));
}

TEST_F(WrapperConversion, CancellingAnotherTypeHasNoEffect) {
    converter.obey(waiting({}, {{"write", output, wholePdf}}));
    std::thread generating([&] { EXPECT_NO_THROW(convert()); });
    if (waitForStarted()) own.cancel(repgen::Guid(secondGuidText));
    release();
    generating.join();
    EXPECT_EQ(wholePdf, readFile(output));
}

TEST_F(WrapperConversion, CancellationIsAStatusError) {
    converter.obey(waiting({}));
    bool isCancelled = false;
    std::thread generating([&] {
        try {
            convert();
        } catch (const repgen::StatusError& error) {
            isCancelled = error.isCancellation();
        }
    });
    if (waitForStarted()) {
        own.cancel(pdf.type);
        own.cancel();
    }
    generating.join();
    EXPECT_TRUE(isCancelled);
}

}  // namespace
}  // namespace rgen_test
