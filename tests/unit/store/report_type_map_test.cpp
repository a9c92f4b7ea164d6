// Cases of the report-type lookup that hosts hardly meet, and failing library calls. The table of
// what counts is in host/report_type_lookup_test.cpp.
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
    // The status, or on success the two file names.
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
    // Neither child has a text, so each clears the name that an earlier child has set.
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
