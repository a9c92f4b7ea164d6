// Every element of XSLT with every kind of node inside: a report or a documented failure, the same
// one each time, and a CDATA section makes the same report as the same text.
//
// SPDX-License-Identifier: MIT
#include "support/node_kinds.h"

#include <gtest/gtest.h>

#include <string>

#include "support/report_fixture.h"
#include "support/working_folder.h"

namespace rgen_test {
namespace {

using MakeSheet = std::string (*)(const NodeText&, const std::string&, const std::string&);

class NodeKinds : public ReportTest {
protected:
    void expectDocumented(const Report& made) {
        EXPECT_TRUE(made.status == statusHex(RGEN_OK) ||
                    made.status == statusHex(RGEN_E_XSLT_PARSE) ||
                    made.status == statusHex(RGEN_E_XSLT_APPLY))
            << made.status;
    }
    void expectReportsOfAllKinds(MakeSheet makeSheet, const std::vector<NodeText>& places) {
        forEachPlaceAndKind(places, [&](const NodeText& place, const NodeText& kind) {
            SCOPED_TRACE(place.label + ", " + kind.label);
            for (const char* method : {"html", "xml"}) {
                const Report made = reportOfTemplate(makeSheet(place, kind.xml, method));
                expectDocumented(made);
                EXPECT_EQ(made, reportOfValue("value"));
            }
        });
    }
    void expectCdataIsText(MakeSheet makeSheet, const NodeText& place) {
        for (const std::size_t length : {std::size_t{1}, shortLength, longLength}) {
            const std::string text = letters(length);
            for (const char* method : {"html", "xml", "text"}) {
                EXPECT_EQ(reportOfTemplate(makeSheet(place, text, method)),
                          reportOfTemplate(makeSheet(place, cdata(text), method)))
                    << length << " letters, " << method;
            }
        }
    }
    Report ofAttribute(const std::string& content) {
        return reportOfTemplate(
            stylesheet("method=\"xml\" omit-xml-declaration=\"yes\"",
                       "<xsl:template match=\"/\"><p><xsl:attribute name=\"a\">" + content +
                           "</xsl:attribute></p></xsl:template>"));
    }
    static Report attributeWith(const std::string& value) {
        return reportOf("<p a=\"" + value + "\"/>\n");
    }
};

TEST_F(NodeKinds, EveryInstructionTakesEveryKind) {
    expectReportsOfAllKinds(sheetWithBody, bodyPlaces());
}

TEST_F(NodeKinds, EveryTopLevelElementTakesEveryKind) {
    expectReportsOfAllKinds(sheetWithTopLevel, topLevelPlaces());
}

TEST_F(NodeKinds, CdataGivesWhatTextGives) {
    for (const NodeText& place : bodyPlaces()) {
        SCOPED_TRACE(place.label);
        expectCdataIsText(sheetWithBody, place);
    }
    for (const NodeText& place : topLevelPlaces()) {
        SCOPED_TRACE(place.label);
        expectCdataIsText(sheetWithTopLevel, place);
    }
}

TEST_F(NodeKinds, AttributeOfCdataAlone) {
    for (const std::size_t length : {std::size_t{1}, shortLength, longLength}) {
        for (int round = 0; round < 3; ++round)
            EXPECT_EQ(attributeWith(letters(length)), ofAttribute(cdata(letters(length))));
    }
    EXPECT_EQ(attributeWith("&lt;b&gt;"), ofAttribute(cdata("<b>")));
    EXPECT_EQ(attributeWith(""), ofAttribute(cdata("")));
    EXPECT_EQ(attributeWith("  "), ofAttribute(cdata("  ")));
}

TEST_F(NodeKinds, AttributeOfCdataBesideOtherNodes) {
    EXPECT_EQ(attributeWith("onetwo"), ofAttribute("one<![CDATA[two]]>"));
    EXPECT_EQ(attributeWith("onetwo"), ofAttribute("<![CDATA[one]]>two"));
    EXPECT_EQ(attributeWith("onetwo"), ofAttribute("<![CDATA[one]]><![CDATA[two]]>"));
    EXPECT_EQ(attributeWith("one"), ofAttribute("<![CDATA[one]]><!--two-->"));
    EXPECT_EQ(attributeWith("one"), ofAttribute("<?two?><![CDATA[one]]>"));
    EXPECT_EQ(attributeWith("one"), ofAttribute("<xsl:text><![CDATA[one]]></xsl:text>"));
}

TEST_F(NodeKinds, AttributeOfBlanksThatAreKept) {
    const std::string blanks(longLength, ' ');
    EXPECT_EQ(attributeWith(blanks),
              ofAttribute("<xsl:text xml:space=\"preserve\">" + blanks + "</xsl:text>"));
    EXPECT_EQ(attributeWith(blanks),
              reportOfTemplate(stylesheet("method=\"xml\" omit-xml-declaration=\"yes\"",
                                          "<xsl:template match=\"/\"><p><xsl:attribute name=\"a\" "
                                          "xml:space=\"preserve\">" +
                                              blanks + "</xsl:attribute></p></xsl:template>")));
}

// The same instructions in files that the template includes or imports.
TEST_F(NodeKinds, IncludedFilesTakeCdata) {
    const WorkingFolder current(folder.path());
    for (const std::size_t length : {shortLength, longLength}) {
        writeFile(folder.file("part.xsl"),
                  stylesheet("method=\"xml\" omit-xml-declaration=\"yes\"",
                             "<xsl:attribute-set name=\"s\"><xsl:attribute name=\"a\">" +
                                 cdata(letters(length)) + "</xsl:attribute></xsl:attribute-set>"));
        for (const std::string way : {"include", "import"}) {
            const std::string sheet = stylesheet(
                "method=\"xml\" omit-xml-declaration=\"yes\"",
                "<xsl:template match=\"/\"><p xsl:use-attribute-sets=\"s\"/></xsl:template>");
            const std::string call = "<xsl:" + way + " href=\"part.xsl\"/>";
            const std::size_t begin = sheet.find("<xsl:output");
            EXPECT_EQ(attributeWith(letters(length)),
                      reportOfTemplate(std::string(sheet).insert(begin, call)))
                << way;
        }
    }
}

}  // namespace
}  // namespace rgen_test
