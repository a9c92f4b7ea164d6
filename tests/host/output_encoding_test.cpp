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

// All that libxml2 has built in, and what only the C library of Linux converts; elsewhere these are
// unknown.
TEST_F(OutputEncoding, EveryEncodingMakesTheSameReportTwice) {
    const char* const encodings[] = {
        "UTF-8",       "UTF-16",      "UTF-16LE",    "UTF-16BE",     "UCS-2",        "UCS-4",
        "UTF-7",       "UTF-32",      "US-ASCII",    "ASCII",        "HTML",         "EBCDIC",
        "ISO-8859-1",  "ISO-8859-2",  "ISO-8859-3",  "ISO-8859-4",   "ISO-8859-5",   "ISO-8859-6",
        "ISO-8859-7",  "ISO-8859-8",  "ISO-8859-9",  "ISO-8859-10",  "ISO-8859-11",  "ISO-8859-13",
        "ISO-8859-14", "ISO-8859-15", "ISO-8859-16", "windows-1250", "windows-1251", "windows-1252",
        "windows-874", "KOI8-R",      "KOI8-U",      "IBM437",       "IBM850",       "IBM866",
        "macintosh",   "Shift_JIS",   "EUC-JP",      "ISO-2022-JP",  "EUC-KR",       "ISO-2022-KR",
        "GB2312",      "GBK",         "GB18030",     "Big5",         "Big5-HKSCS",   "TIS-620",
        "VISCII",      "ISO-2022-CN", "JOHAB",       "EUC-TW",       "UTF8",         "latin1"};
    const std::string letters = "abc \xC3\xA9 \xD0\xB6 \xE2\x82\xAC \xE6\xBC\xA2 \xF0\x9F\x98\x80";
    for (const std::string encoding : encodings) {
        SCOPED_TRACE(encoding);
        for (const std::string method : {"html", "xml", "text"}) {
            const Report made = reportOfTemplate(
                "<?xml version=\"1.0\" encoding=\"" + encoding + "\"?>" +
                stylesheet("method=\"" + method + "\" encoding=\"" + encoding + "\"",
                           "<xsl:template match=\"/\"><p t=\"" + letters + "\">" + letters +
                               "</p></xsl:template>"));
            EXPECT_TRUE(made.status == statusHex(RGEN_OK) ||
                        made.status == statusHex(RGEN_E_XSLT_RESULT))
                << method << ": " << made.status;
            EXPECT_EQ(made, reportOfValue("value")) << method;
        }
    }
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
