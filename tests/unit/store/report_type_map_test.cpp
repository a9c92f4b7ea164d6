// The report-type lookup, statement by statement.
//
// SPDX-License-Identifier: MIT
#include "store/report_type_map.h"

#include <libxml/parser.h>

#include <string>

#include "store/xml/handles.h"
#include "store/xml/parser_context.h"
#include "support/fault_injection.h"
#include "unit/unit_fixture.h"

namespace rgen_test {
namespace {

const std::string guid = otherGuidText;

// A type element with the two file elements.
std::string type(const std::string& guidText, const std::string& persistDataFile,
                 const std::string& reportTypeFile) {
    return "<type guid=\"" + guidText + "\"><persistDataFile>" + persistDataFile +
           "</persistDataFile><reportTypeFile>" + reportTypeFile + "</reportTypeFile></type>";
}

class LookupReportType : public UnitTest {
protected:
    // The status, and on success the two file names behind it.
    std::string lookup(const std::string& types) {
        return lookupIn("<config><reportTypes>" + types + "</reportTypes></config>");
    }
    std::string lookupIn(const std::string& text) {
        const rgen::XmlSilence silence;
        const rgen::XmlPtr<xmlDoc> document(
            xmlReadDoc(rgen::xmlText(text.c_str()), nullptr, "UTF-8", XML_PARSE_RECOVER));
        rgen::ReportTypeEntry entry;
        const rgen::Status status =
            rgen::lookupReportType(generator, document.get(), otherGuid, entry);
        if (status != RGEN_OK) return statusHex(status);
        return entry.persistDataFile + "|" + entry.reportTypeFile;
    }
};

TEST_F(LookupReportType, FindsBothNames) {
    EXPECT_EQ("p.xml|r.xsl", lookup(type(guid, "p.xml", "r.xsl")));
    EXPECT_EQ("p.xml|r.xsl", lookup(type("deadbabe-0000-0000-0000-000000000000", "x", "y") +
                                    type(guid, " p.xml\n", "\tr.xsl ")));
}

TEST_F(LookupReportType, GuidIsTakenInAnyLetterCaseAndTrimmed) {
    EXPECT_EQ("p|r", lookup(type("0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F9", "p", "r")));
    EXPECT_EQ("p|r", lookup(type("0A1b2c3D-4E5F-6071-8293-a4b5c6d7e8F9", "p", "r")));
    EXPECT_EQ("p|r", lookup(type(" \t" + guid + "&#10; ", "p", "r")));
}

TEST_F(LookupReportType, UnusableGuidsAreSkipped) {
    for (const std::string& text :
         {std::string(), std::string("  "), "{" + guid + "}", guid + "0", guid.substr(1),
          std::string("0a1b2c3d4e5f60718293a4b5c6d7e8f9"), guid + " x",
          std::string("0a1b2c3g-4e5f-6071-8293-a4b5c6d7e8f9")}) {
        EXPECT_EQ(statusHex(RGEN_E_NO_VALID_TYPE_MAP), lookup(type(text, "p", "r"))) << text;
        EXPECT_EQ("p|r", lookup(type(text, "x", "y") + type(guid, "p", "r"))) << text;
    }
}

TEST_F(LookupReportType, InnerNamesAreTakenInAnyLetterCase) {
    EXPECT_EQ("p|r", lookup("<type guid='" + guid +
                            "'><PERSISTDATAFILE>p</PERSISTDATAFILE>"
                            "<reporttypeFILE>r</reporttypeFILE></type>"));
    EXPECT_EQ("p|r", lookup("<type guid='" + guid +
                            "'><reportTypeFile>r</reportTypeFile>"
                            "<persistDataFile>p</persistDataFile></type>"));
}

TEST_F(LookupReportType, OuterNamesAreTakenAsWrittenOnly) {
    const std::string inner = type(guid, "p", "r");
    EXPECT_EQ(statusHex(RGEN_E_NO_TYPE_MAP),
              lookupIn("<Config><reportTypes>" + inner + "</reportTypes></Config>"));
    EXPECT_EQ(statusHex(RGEN_E_NO_TYPE_MAP),
              lookupIn("<config><reporttypes>" + inner + "</reporttypes></config>"));
    EXPECT_EQ(statusHex(RGEN_E_NO_TYPE_MAP),
              lookupIn("<config xmlns='urn:x'><reportTypes>" + inner + "</reportTypes></config>"));
    EXPECT_EQ(statusHex(RGEN_E_NO_TYPE_MAP),
              lookup("<Type guid='" + guid + "'><persistDataFile>p</persistDataFile></Type>"));
    EXPECT_EQ(statusHex(RGEN_E_NO_TYPE_MAP),
              lookup("<type GUID='" + guid + "'><persistDataFile>p</persistDataFile></type>"));
}

TEST_F(LookupReportType, NothingSelectedIsNoTypeMap) {
    EXPECT_EQ(statusHex(RGEN_E_NO_TYPE_MAP), lookup(""));
    EXPECT_EQ(statusHex(RGEN_E_NO_TYPE_MAP), lookup("<type/>"));
    EXPECT_EQ(statusHex(RGEN_E_NO_TYPE_MAP), lookupIn("<config/>"));
    EXPECT_EQ(statusHex(RGEN_E_NO_TYPE_MAP), lookupIn("<x/>"));
}

TEST_F(LookupReportType, TypeWithOneFileElementContributesNothing) {
    const std::string persistOnly =
        "<type guid='" + guid + "'><persistDataFile>p</persistDataFile></type>";
    const std::string templateOnly =
        "<type guid='" + guid + "'><reportTypeFile>r</reportTypeFile></type>";
    EXPECT_EQ(statusHex(RGEN_E_NO_VALID_TYPE_MAP), lookup(persistOnly));
    EXPECT_EQ(statusHex(RGEN_E_NO_VALID_TYPE_MAP), lookup(persistOnly + templateOnly));
    EXPECT_EQ("a|b", lookup(type(guid, "a", "b") + persistOnly + templateOnly));
}

TEST_F(LookupReportType, EmptyElementCountsAsMissing) {
    EXPECT_EQ("a|b", lookup(type(guid, "a", "b") + type(guid, "", "new")));
    EXPECT_EQ("a|b", lookup(type(guid, "a", "b") + type(guid, "new", "")));
}

TEST_F(LookupReportType, WhiteSpaceNameKeepsTheEarlierOneAlone) {
    EXPECT_EQ("a|new", lookup(type(guid, "a", "b") + type(guid, "  ", "new")));
    EXPECT_EQ("new|b", lookup(type(guid, "a", "b") + type(guid, "new", " \n")));
}

TEST_F(LookupReportType, LastTypeOfAGuidWins) {
    EXPECT_EQ("c|d", lookup(type(guid, "a", "b") + type(guid, "c", "d")));
    EXPECT_EQ("c|d", lookup(type(guid, "a", "b") +
                            type("0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F9", "c", "d")));
}

TEST_F(LookupReportType, LastElementOfATypeWins) {
    EXPECT_EQ("p2|r", lookup("<type guid='" + guid +
                             "'><persistDataFile>p1</persistDataFile>"
                             "<reportTypeFile>r</reportTypeFile>"
                             "<PersistDataFile>p2</PersistDataFile></type>"));
    // An empty one takes the text away again.
    EXPECT_EQ(statusHex(RGEN_E_NO_VALID_TYPE_MAP),
              lookup("<type guid='" + guid +
                     "'><persistDataFile>p1</persistDataFile>"
                     "<reportTypeFile>r</reportTypeFile><persistDataFile/></type>"));
}

TEST_F(LookupReportType, OnlyWhiteSpaceNamesAreNoValidMap) {
    EXPECT_EQ(statusHex(RGEN_E_NO_VALID_TYPE_MAP), lookup(type(guid, " ", "r")));
    EXPECT_EQ(statusHex(RGEN_E_NO_VALID_TYPE_MAP), lookup(type(guid, "p", " ")));
}

TEST_F(LookupReportType, AbsentGuidAndHalfAnEntryAreNotFound) {
    const std::string another = type("deadbabe-0000-0000-0000-000000000000", "x", "y");
    EXPECT_EQ(statusHex(RGEN_E_GUID_NOT_IN_CONFIG), lookup(another));
    EXPECT_EQ(statusHex(RGEN_E_GUID_NOT_IN_CONFIG), lookup(another + type(guid, " ", "r")));
    EXPECT_EQ(statusHex(RGEN_E_GUID_NOT_IN_CONFIG), lookup(another + type(guid, "p", " ")));
}

// Of the types that are not wanted only their being there counts, each file name for itself.
TEST_F(LookupReportType, OtherTypesMakeTheMapValidAndNothingElse) {
    const std::string other = "deadbabe-0000-0000-0000-000000000000";
    const std::string persistOnly = type(other, "p", " ");
    const std::string templateOnly = type(other, " ", "r");
    EXPECT_EQ(statusHex(RGEN_E_NO_VALID_TYPE_MAP), lookup(persistOnly + persistOnly));
    EXPECT_EQ(statusHex(RGEN_E_NO_VALID_TYPE_MAP),
              lookup(templateOnly + type("no guid", "p", "r")));
    EXPECT_EQ(statusHex(RGEN_E_GUID_NOT_IN_CONFIG), lookup(persistOnly + templateOnly));
    EXPECT_EQ(statusHex(RGEN_E_GUID_NOT_IN_CONFIG), lookup(templateOnly + type(guid, "a", " ")));
    EXPECT_EQ("a|b", lookup(templateOnly + type(guid, "a", "b") + persistOnly));
}

TEST_F(LookupReportType, WantedTypeIsFoundAmongMany) {
    std::string many;
    for (int i = 0; i < 100; ++i)
        many += type("deadbabe-0000-0000-0000-0000000000" + std::to_string(10 + i % 90), "x", "y");
    EXPECT_EQ("a|b", lookup(many + type(guid, "a", "b")));
    EXPECT_EQ("c|d", lookup(type(guid, "a", "b") + many + type(guid, "c", "d") + many));
}

TEST_F(LookupReportType, ChildrenOfEveryKindAreLookedAt) {
    // Neither child has a text, so each takes the name that stands before it away again.
    for (const std::string child : {"<?persistDataFile p?>", "&persistDataFile;"}) {
        EXPECT_EQ(statusHex(RGEN_E_NO_VALID_TYPE_MAP),
                  lookupIn("<!DOCTYPE config [<!ENTITY persistDataFile 'p'>]>"
                           "<config><reportTypes><type guid='" +
                           guid +
                           "'><persistDataFile>p</persistDataFile>"
                           "<reportTypeFile>r</reportTypeFile>" +
                           child + "</type></reportTypes></config>"))
            << child;
    }
}

TEST_F(LookupReportType, TextsAreConcatenatedAndElementsInsideIgnored) {
    EXPECT_EQ("a<b|r", lookup(type(guid, "a<![CDATA[<]]><x>no</x>b<!--c-->", "r")));
}

TEST_F(LookupReportType, NamesAreTakenUnchanged) {
    EXPECT_EQ("../a b/%20.xml|sub\\r.xsl", lookup(type(guid, "../a b/%20.xml", "sub\\r.xsl")));
}

TEST(FindFileName, EmptyNameIsNeverTakenForAFile) {
    const rgen::FileNameTable table = {{"empty", ""}, {"full", "name.xml"}};
    std::string fileName;
    EXPECT_EQ(RGEN_E_XPATH_NODE_EMPTY, rgen::findFileName(table, "empty", fileName));
    EXPECT_EQ(RGEN_E_GUID_NOT_IN_CONFIG, rgen::findFileName(table, "none", fileName));
    EXPECT_EQ(RGEN_OK, rgen::findFileName(table, "full", fileName));
    EXPECT_EQ("name.xml", fileName);
}

TEST_F(LookupReportType, XPathFailuresHaveTheirStatus) {
    {
        const FailingCall failure(Call::NewXPathContext);
        EXPECT_EQ(statusHex(RGEN_E_XPATH_CONTEXT), lookup(type(guid, "p", "r")));
    }
    const FailingCall failure(Call::EvaluateXPath);
    EXPECT_EQ(statusHex(RGEN_E_XPATH_SEARCH), lookup(type(guid, "p", "r")));
}

}  // namespace
}  // namespace rgen_test
