// Which "type" elements of config.xml serve which GUID, and with which two files.
//
// Each row is one configuration. The persistent data file is seen as the file that a store creates,
// the template by its name, which is what each template writes as the report.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

#include "strata_repgenlib/rgen.h"
#include "support/host_records.h"
#include "support/status_printer.h"
#include "support/temp_folder.h"

namespace {

using rgen_test::Generator;
using rgen_test::InputParams;
using rgen_test::Result;
using rgen_test::statusHex;
using rgen_test::TempFolder;

const char* const wantedGuid = "01234567-89ab-cdef-0123-456789abcdef";

struct LookupRow {
    const char* label;
    std::string content;
    RgenStatus status;
    std::string persistDataFile;
    std::string reportTypeFile;
};

std::ostream& operator<<(std::ostream& stream, const LookupRow& row) {
    return stream << row.label;
}

std::string inReportTypes(const std::string& types) {
    return "<config><reportTypes>" + types + "</reportTypes></config>";
}

std::string typeElement(const std::string& guid, const std::string& inner) {
    return "<type guid=\"" + guid + "\">" + inner + "</type>";
}

std::string fileElements(const std::string& persistDataFile, const std::string& reportTypeFile) {
    return "<persistDataFile>" + persistDataFile + "</persistDataFile><reportTypeFile>" +
           reportTypeFile + "</reportTypeFile>";
}

// One type for the GUID text, with the files p1.xml and t1.xsl.
std::string withGuid(const std::string& guid) {
    return inReportTypes(typeElement(guid, fileElements("p1.xml", "t1.xsl")));
}

// One type for the wanted GUID, with that content.
std::string withInner(const std::string& inner) {
    return inReportTypes(typeElement(wantedGuid, inner));
}

// Two types for the wanted GUID; the first one names p1.xml and t1.xsl.
std::string withSecond(const std::string& guid, const std::string& inner) {
    return inReportTypes(typeElement(wantedGuid, fileElements("p1.xml", "t1.xsl")) +
                         typeElement(guid, inner));
}

LookupRow served(const char* label, const std::string& content,
                 const std::string& persistDataFile = "p1.xml",
                 const std::string& reportTypeFile = "t1.xsl") {
    return {label, content, RGEN_OK, persistDataFile, reportTypeFile};
}

LookupRow refused(const char* label, const std::string& content, RgenStatus status) {
    return {label, content, status, "", ""};
}

class ReportTypeLookup : public testing::TestWithParam<LookupRow> {
protected:
    ReportTypeLookup() {
        for (const char* name : {"t1.xsl", "t2.xsl", "t3.xsl"}) {
            rgen_test::writeFile(
                folder_.dataFile(std::string("templates/html/") + name),
                std::string("<xsl:stylesheet version='1.0' xmlns:xsl='"
                            "http://www.w3.org/1999/XSL/Transform'>"
                            "<xsl:output method='text'/><xsl:template match='/'>") +
                    name + "</xsl:template></xsl:stylesheet>");
        }
    }

    TempFolder folder_;
};

TEST_P(ReportTypeLookup, GivesTheFilesOfTheReportType) {
    const LookupRow& row = GetParam();
    rgen_test::writeFile(folder_.dataFile("config.xml"), row.content);
    const Generator generator(folder_.path());
    const RgenGuid guid = rgen_test::guidFromText(wantedGuid);

    EXPECT_EQ(statusHex(row.status),
              statusHex(rgen_test::storePairs(generator, guid, {{"name", "text"}})));
    std::vector<std::string> files{"config.xml"};
    if (!row.persistDataFile.empty()) {
        files.push_back(row.persistDataFile);
    }
    files.push_back("templates");
    EXPECT_EQ(files, rgen_test::namesIn(folder_.dataDir()));

    InputParams input;
    input.guid(guid).variants().addInt64("n", 1);
    Result result;
    EXPECT_EQ(statusHex(row.status),
              statusHex(rgen_generateReport(generator.get(), input.get(), result.get())));
    EXPECT_EQ(row.reportTypeFile, result.bytes());
    EXPECT_EQ(row.content, rgen_test::readFile(folder_.dataFile("config.xml")));
}

INSTANTIATE_TEST_SUITE_P(
    Guids, ReportTypeLookup,
    testing::Values(served("lower case", withGuid(wantedGuid)),
                    served("capitals", withGuid("01234567-89AB-CDEF-0123-456789ABCDEF")),
                    refused("text after a blank",
                            withGuid("01234567-89ab-cdef-0123-456789abcdef x"),
                            RGEN_E_NO_VALID_TYPE_MAP),
                    served("mixed case", withGuid("01234567-89aB-CdEf-0123-456789AbCdEF")),
                    served("blanks around", withGuid("  01234567-89ab-cdef-0123-456789abcdef ")),
                    served("white space around",
                           withGuid("&#9;&#10;&#13;01234567-89ab-cdef-0123-456789abcdef\n\t")),
                    refused("braces", withGuid("{01234567-89ab-cdef-0123-456789abcdef}"),
                            RGEN_E_NO_VALID_TYPE_MAP),
                    refused("one digit short", withGuid("01234567-89ab-cdef-0123-456789abcde"),
                            RGEN_E_NO_VALID_TYPE_MAP),
                    refused("one digit more", withGuid("01234567-89ab-cdef-0123-456789abcdef0"),
                            RGEN_E_NO_VALID_TYPE_MAP),
                    refused("short first group", withGuid("1234567-89ab-cdef-0123-456789abcdef"),
                            RGEN_E_NO_VALID_TYPE_MAP),
                    refused("no hyphens", withGuid("0123456789abcdef0123456789abcdef"),
                            RGEN_E_NO_VALID_TYPE_MAP),
                    refused("hyphens elsewhere", withGuid("0123456-789ab-cdef-0123-456789abcdef"),
                            RGEN_E_NO_VALID_TYPE_MAP),
                    refused("a letter beyond f", withGuid("01234567-89ab-cdef-0123-456789abcdeg"),
                            RGEN_E_NO_VALID_TYPE_MAP),
                    refused("blank inside", withGuid("01234567-89ab-cdef -0123-456789abcdef"),
                            RGEN_E_NO_VALID_TYPE_MAP),
                    refused("line break after text",
                            withGuid("01234567-89ab-cdef-0123-456789abcdef&#10;x"),
                            RGEN_E_NO_VALID_TYPE_MAP),
                    refused("no-break space around",
                            withGuid("\xC2\xA0"
                                     "01234567-89ab-cdef-0123-456789abcdef"),
                            RGEN_E_NO_VALID_TYPE_MAP),
                    refused("empty", withGuid(""), RGEN_E_NO_VALID_TYPE_MAP),
                    refused("blanks only", withGuid("   "), RGEN_E_NO_VALID_TYPE_MAP),
                    refused("another", withGuid("01234567-89ab-cdef-0123-456789abcdee"),
                            RGEN_E_GUID_NOT_IN_CONFIG),
                    refused("no attribute",
                            inReportTypes("<type>" + fileElements("p1.xml", "t1.xsl") + "</type>"),
                            RGEN_E_NO_TYPE_MAP)));

INSTANTIATE_TEST_SUITE_P(
    Elements, ReportTypeLookup,
    testing::Values(
        served("inner names in any case", withInner("<PERSISTDATAFILE>p1.xml</PERSISTDATAFILE>"
                                                    "<rePORTtypefile>t1.xsl</rePORTtypefile>")),
        served("other order", withInner("<reportTypeFile>t1.xsl</reportTypeFile>"
                                        "<persistDataFile>p1.xml</persistDataFile>")),
        served("other children between",
               withInner("text <a/><!-- c --><persistDataFile>p1.xml</persistDataFile><?pi x?>"
                         "<b>c</b><reportTypeFile>t1.xsl</reportTypeFile>")),
        served("two groups of types",
               "<config><reportTypes><type guid=\"x\"/></reportTypes><reportTypes>" +
                   typeElement(wantedGuid, fileElements("p1.xml", "t1.xsl")) +
                   "</reportTypes></config>"),
        served("other elements around",
               "<config><other/><reportTypes><other guid=\"1\"/>" +
                   typeElement(wantedGuid, fileElements("p1.xml", "t1.xsl")) +
                   "</reportTypes><other/></config>"),
        refused("no root of that name",
                "<Config><reportTypes>" +
                    typeElement(wantedGuid, fileElements("p1.xml", "t1.xsl")) +
                    "</reportTypes></Config>",
                RGEN_E_NO_TYPE_MAP),
        refused("reportTypes in another case",
                "<config><ReportTypes>" +
                    typeElement(wantedGuid, fileElements("p1.xml", "t1.xsl")) +
                    "</ReportTypes></config>",
                RGEN_E_NO_TYPE_MAP),
        refused("type in another case",
                inReportTypes("<Type guid=\"01234567-89ab-cdef-0123-456789abcdef\">" +
                              fileElements("p1.xml", "t1.xsl") + "</Type>"),
                RGEN_E_NO_TYPE_MAP),
        refused("guid in another case",
                inReportTypes("<type GUID=\"01234567-89ab-cdef-0123-456789abcdef\">" +
                              fileElements("p1.xml", "t1.xsl") + "</type>"),
                RGEN_E_NO_TYPE_MAP),
        refused("type too deep",
                inReportTypes("<group>" +
                              typeElement(wantedGuid, fileElements("p1.xml", "t1.xsl")) +
                              "</group>"),
                RGEN_E_NO_TYPE_MAP),
        refused("a name space",
                "<config xmlns=\"urn:x\"><reportTypes>" +
                    typeElement(wantedGuid, fileElements("p1.xml", "t1.xsl")) +
                    "</reportTypes></config>",
                RGEN_E_NO_TYPE_MAP),
        served("file elements of any name space",
               withInner("<persistDataFile xmlns=\"urn:x\">p1.xml</persistDataFile>"
                         "<a:reportTypeFile xmlns:a=\"urn:y\">t1.xsl</a:reportTypeFile>")),
        refused("no types", inReportTypes(""), RGEN_E_NO_TYPE_MAP),
        refused("root alone", "<config/>", RGEN_E_NO_TYPE_MAP),
        refused("files too deep",
                withInner("<files>" + fileElements("p1.xml", "t1.xsl") + "</files>"),
                RGEN_E_NO_VALID_TYPE_MAP)));

INSTANTIATE_TEST_SUITE_P(
    FileNames, ReportTypeLookup,
    testing::Values(
        served("white space around",
               withInner(fileElements(" \t\n p1.xml &#13;\n", "\r\n t1.xsl\t"))),
        served("CDATA and references",
               withInner(fileElements("<![CDATA[p1]]>.xml", "t&#49;<!-- c -->.xsl"))),
        served("elements inside are left out",
               withInner(fileElements("p1<b>no</b>.xml", "t1<c/>.xsl"))),
        served("the last element of a name wins",
               withInner(fileElements("p1.xml", "t1.xsl") + fileElements("p2.xml", "t2.xsl")),
               "p2.xml", "t2.xsl"),
        served("the last element wins in another case",
               withInner(fileElements("p1.xml", "t1.xsl") +
                         "<PersistDataFile>p2.xml</PersistDataFile>"),
               "p2.xml", "t1.xsl"),
        refused("an empty last element takes the name away",
                withInner(fileElements("p1.xml", "t1.xsl") + "<persistDataFile/>"),
                RGEN_E_NO_VALID_TYPE_MAP),
        refused("an instruction of that name takes the name away",
                withInner(fileElements("p1.xml", "t1.xsl") + "<?reportTypeFile t2.xsl?>"),
                RGEN_E_NO_VALID_TYPE_MAP),
        refused("persistDataFile alone", withInner("<persistDataFile>p1.xml</persistDataFile>"),
                RGEN_E_NO_VALID_TYPE_MAP),
        refused("reportTypeFile alone", withInner("<reportTypeFile>t1.xsl</reportTypeFile>"),
                RGEN_E_NO_VALID_TYPE_MAP),
        refused("both empty", withInner("<persistDataFile/><reportTypeFile/>"),
                RGEN_E_NO_VALID_TYPE_MAP),
        refused("one of white space", withInner(fileElements("p1.xml", " \n ")),
                RGEN_E_NO_VALID_TYPE_MAP),
        refused("persistDataFile of white space", withInner(fileElements(" ", "t1.xsl")),
                RGEN_E_NO_VALID_TYPE_MAP),
        refused("each file in a type of its own",
                inReportTypes(typeElement(wantedGuid, "<persistDataFile>p1.xml</persistDataFile>") +
                              typeElement(wantedGuid, "<reportTypeFile>t1.xsl</reportTypeFile>")),
                RGEN_E_NO_VALID_TYPE_MAP),
        refused("both of white space", withInner(fileElements(" ", "\t")),
                RGEN_E_NO_VALID_TYPE_MAP),
        refused("incomplete beside a complete type",
                inReportTypes(typeElement("00000000-0000-0000-0000-000000000001",
                                          fileElements("p2.xml", "t2.xsl")) +
                              typeElement(wantedGuid, "<persistDataFile>p1.xml</persistDataFile>")),
                RGEN_E_GUID_NOT_IN_CONFIG),
        refused("blank template beside a complete type",
                inReportTypes(typeElement("00000000-0000-0000-0000-000000000001",
                                          fileElements("p2.xml", "t2.xsl")) +
                              typeElement(wantedGuid, fileElements("p1.xml", " "))),
                RGEN_E_GUID_NOT_IN_CONFIG),
        refused("blank data file beside a complete type",
                inReportTypes(typeElement("00000000-0000-0000-0000-000000000001",
                                          fileElements("p2.xml", "t2.xsl")) +
                              typeElement(wantedGuid, fileElements(" ", "t1.xsl"))),
                RGEN_E_GUID_NOT_IN_CONFIG)));

INSTANTIATE_TEST_SUITE_P(
    Repeated, ReportTypeLookup,
    testing::Values(
        served("the later type wins", withSecond(wantedGuid, fileElements("p2.xml", "t2.xsl")),
               "p2.xml", "t2.xsl"),
        served("in another case too",
               withSecond("01234567-89AB-CDEF-0123-456789ABCDEF", fileElements("p2.xml", "t2.xsl")),
               "p2.xml", "t2.xsl"),
        served("a blank data file keeps the earlier",
               withSecond(wantedGuid, fileElements(" ", "t2.xsl")), "p1.xml", "t2.xsl"),
        served("a blank template keeps the earlier",
               withSecond(wantedGuid, fileElements("p2.xml", " ")), "p2.xml", "t1.xsl"),
        served("an empty element adds nothing",
               withSecond(wantedGuid, "<persistDataFile/><reportTypeFile>t2.xsl</reportTypeFile>")),
        served("an empty template adds nothing",
               withSecond(wantedGuid,
                          "<persistDataFile>p2.xml</persistDataFile><reportTypeFile/>")),
        served("an incomplete type adds nothing",
               withSecond(wantedGuid, "<reportTypeFile>t2.xsl</reportTypeFile>")),
        served("a type with persistent data alone adds nothing",
               withSecond(wantedGuid, "<persistDataFile>p2.xml</persistDataFile>")),
        served("an invalid type adds nothing", withSecond("x", fileElements("p2.xml", "t2.xsl"))),
        served("two halves make a whole",
               inReportTypes(typeElement(wantedGuid, fileElements("p3.xml", " ")) +
                             typeElement(wantedGuid, fileElements(" ", "t3.xsl"))),
               "p3.xml", "t3.xsl")));

// ---- File names are used unchanged ----------------------------------------------------------

RgenStatus storeIn(const TempFolder& folder, const std::string& persistDataFile) {
    rgen_test::writeFile(folder.dataFile("config.xml"),
                         withInner(fileElements(persistDataFile, "t1.xsl")));
    const Generator generator(folder.path());
    return rgen_test::storePairs(generator, rgen_test::guidFromText(wantedGuid), {{"a", "b"}});
}

TEST(PersistDataFileName, MayReachIntoASubfolder) {
    const TempFolder folder;
    rgen_test::createFolder(folder.dataFile("sub"));
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(storeIn(folder, "sub/data.xml")));
    EXPECT_TRUE(rgen_test::exists(folder.dataFile("sub/data.xml")));
}

TEST(PersistDataFileName, InAMissingFolderCannotBeCreated) {
    const TempFolder folder;
    EXPECT_EQ(statusHex(RGEN_E_CREATE_PERSIST), statusHex(storeIn(folder, "sub/data.xml")));
    EXPECT_FALSE(rgen_test::exists(folder.dataFile("sub")));
}

TEST(PersistDataFileName, MayLeaveTheDataDirectory) {
    const TempFolder folder;
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(storeIn(folder, "../outside.xml")));
    EXPECT_TRUE(rgen_test::exists(folder.file("outside.xml")));
}

TEST(PersistDataFileName, IsTakenLiterally) {
    for (const char* name : {"a%20b.xml", "a b.xml", "-", "%41.xml", "\xC3\xA9t\xC3\xA9.xml"}) {
        SCOPED_TRACE(name);
        const TempFolder folder;
        EXPECT_EQ(statusHex(RGEN_OK), statusHex(storeIn(folder, name)));
        EXPECT_TRUE(rgen_test::exists(folder.dataFile(name)));
        const Generator generator(folder.path());
        EXPECT_EQ((rgen_test::TextMap{{"a", "b"}}),
                  rgen_test::persistentData(generator, rgen_test::guidFromText(wantedGuid)).pairs);
        EXPECT_EQ(2U, rgen_test::namesIn(folder.dataDir()).size());
    }
}

}  // namespace
