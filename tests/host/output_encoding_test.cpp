// The encodings that a template can ask for its output.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>

#include "support/report_fixture.h"

namespace rgen_test {
namespace {

class OutputEncoding : public ReportTest {
protected:
    Report textIn(const std::string& encoding, const std::string& text) {
        return reportOfTemplate(
            stylesheet("method=\"text\" encoding=\"" + encoding + "\"",
                       "<xsl:template match=\"/\">" + text + "</xsl:template>"));
    }
};

const char* const eAcute = "\xC3\xA9";

TEST_F(OutputEncoding, Utf8IsTheDefault) {
    EXPECT_EQ(reportOf(eAcute), reportOfTemplate(stylesheet(
                                    "method=\"text\"", std::string("<xsl:template match=\"/\">") +
                                                           eAcute + "</xsl:template>")));
    EXPECT_EQ(reportOf(eAcute), textIn("UTF-8", eAcute));
}

TEST_F(OutputEncoding, Latin1GivesOneByteALetter) {
    EXPECT_EQ(reportOf("\xE9"), textIn("ISO-8859-1", eAcute));
}

TEST_F(OutputEncoding, LatinOfOtherRegionsGivesOneByteALetter) {
    EXPECT_EQ(reportOf("\xD6"), textIn("ISO-8859-5", "\xD0\xB6"));
}

TEST_F(OutputEncoding, AsciiWritesOtherLettersAsReferences) {
    EXPECT_EQ(reportOf("<?xml version=\"1.0\" encoding=\"US-ASCII\"?>\n<p>&#233;&#1078;</p>\n"),
              reportOfTemplate(stylesheet("method=\"xml\" encoding=\"US-ASCII\"",
                                          std::string("<xsl:template match=\"/\"><p>") + eAcute +
                                              "\xD0\xB6</p></xsl:template>")));
}

TEST_F(OutputEncoding, Utf16HoldsZeroBytesAndIsDeliveredWhole) {
    EXPECT_EQ(reportOf(std::string("a\0\xE9\0z\0", 6)),
              textIn("UTF-16LE", std::string("a") + eAcute + "z"));
    EXPECT_EQ(reportOf(std::string("\0a\0\xE9\0z", 6)),
              textIn("UTF-16BE", std::string("a") + eAcute + "z"));
}

TEST_F(OutputEncoding, AnUnknownEncodingGivesUtf8UnderItsName) {
    EXPECT_EQ(reportOf(std::string("<?xml version=\"1.0\" encoding=\"x-nobody-knows\"?>\n<p>") +
                       eAcute + "</p>\n"),
              reportOfTemplate(stylesheet(
                  "method=\"xml\" encoding=\"x-nobody-knows\"",
                  std::string("<xsl:template match=\"/\"><p>") + eAcute + "</p></xsl:template>")));
}

}  // namespace
}  // namespace rgen_test
