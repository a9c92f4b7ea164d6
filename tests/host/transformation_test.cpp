// What a template can be and do: damaged and hostile templates, entities, references to other
// documents, and the statuses of templates that cannot be used.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/report_fixture.h"
#include "support/working_folder.h"

namespace rgen_test {
namespace {

class Transformation : public ReportTest {
protected:
    // Another stylesheet beside the template, and one at a place of its own.
    void putIncluded(const std::string& path, const std::string& text) {
        writeFile(path, stylesheet("method=\"text\"",
                                   "<xsl:template name=\"helper\">" + text + "</xsl:template>"));
    }

    // A template that calls "helper", which it expects in another stylesheet.
    static std::string calling(const std::string& reference) {
        return "<xsl:stylesheet version=\"1.0\" "
               "xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\">" +
               reference +
               "<xsl:output method=\"text\"/><xsl:template match=\"/\">"
               "<xsl:call-template name=\"helper\"/></xsl:template></xsl:stylesheet>";
    }
};

class Recovery : public ReportTest {};

class Entities : public ReportTest {
protected:
    // A template with an internal document type subset and that body of the root template.
    static std::string withSubset(const std::string& subset, const std::string& body) {
        return "<?xml version=\"1.0\"?><!DOCTYPE t " + subset +
               "><xsl:stylesheet version=\"1.0\" "
               "xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\">"
               "<xsl:output method=\"xml\" omit-xml-declaration=\"yes\" encoding=\"UTF-8\"/>"
               "<xsl:template match=\"/\">" +
               body + "</xsl:template></xsl:stylesheet>";
    }
};

const char* const fileUrl = "file://";

// The URL form of an absolute path.
std::string urlOf(std::string path) {
    for (char& character : path) {
        if (character == '\\') character = '/';
    }
    return fileUrl + ((path[0] == '/' ? "" : "/") + path);
}

struct TemplateRow {
    const char* label;
    std::string text;
};

TEST_F(Transformation, TemplatesThatCannotBeCompiledAreRefused) {
    const std::string utf16("\xFF\xFE<\0x\0/\0>\0", 10);
    const std::vector<TemplateRow> rows = {
        {"no byte", ""},
        {"blanks", "  \n "},
        {"no XML", "this is no template"},
        {"no XSLT", "<html><body/></html>"},
        {"prefix without a namespace", "<xsl:stylesheet/>"},
        {"another namespace", "<stylesheet version='1.0' xmlns='urn:other'/>"},
        {"UTF-16", utf16},
        {"XPath syntax error", textStylesheet("<xsl:value-of select=\"//[\"/>")},
        {"missing select", textStylesheet("<xsl:value-of/>")},
        {"attribute sets in a circle",
         stylesheet("method=\"xml\"",
                    "<xsl:attribute-set name=\"a\" use-attribute-sets=\"b\"/>"
                    "<xsl:attribute-set name=\"b\" use-attribute-sets=\"a\"/>"
                    "<xsl:template match=\"/\"><x xsl:use-attribute-sets=\"a\"/></xsl:template>")},
        {"missing include", calling("<xsl:include href=\"nowhere.xsl\"/>")},
        {"missing import", calling("<xsl:import href=\"nowhere.xsl\"/>")}};
    for (const TemplateRow& row : rows) {
        SCOPED_TRACE(row.label);
        EXPECT_EQ(failure(RGEN_E_XSLT_PARSE), reportOfTemplate(row.text));
    }
}

TEST_F(Transformation, TemplatesThatFailWhileTheyRunAreReported) {
    const std::vector<TemplateRow> rows = {
        {"message that terminates", textStylesheet("<xsl:message terminate=\"yes\"/>done")},
        {"unknown function", textStylesheet("<xsl:value-of select=\"no-such-function()\"/>")},
        {"extension function",
         textStylesheet("<xsl:value-of xmlns:exsl=\"http://exslt.org/common\" "
                        "select=\"exsl:node-set(/)\"/>")},
        {"unknown variable", textStylesheet("<xsl:value-of select=\"$nothing\"/>")},
        {"global variables in a circle",
         stylesheet("method=\"text\"",
                    "<xsl:variable name=\"a\" select=\"$b\"/>"
                    "<xsl:variable name=\"b\" select=\"$a\"/>"
                    "<xsl:template match=\"/\"><xsl:value-of select=\"$a\"/></xsl:template>")}};
    for (const TemplateRow& row : rows) {
        SCOPED_TRACE(row.label);
        EXPECT_EQ(failure(RGEN_E_XSLT_APPLY), reportOfTemplate(row.text));
    }
}

TEST_F(Transformation, ATemplateWithoutOutputGivesNoResult) {
    const std::vector<TemplateRow> rows = {
        {"empty root template", textStylesheet("")},
        {"empty text", textStylesheet("<xsl:value-of select=\"/data/nothing\"/>")},
        {"empty html", stylesheet("method=\"html\"", "<xsl:template match=\"/\"></xsl:template>")},
        {"empty xml", stylesheet("method=\"xml\"", "<xsl:template match=\"/\"></xsl:template>")}};
    for (const TemplateRow& row : rows) {
        SCOPED_TRACE(row.label);
        EXPECT_EQ(failure(RGEN_E_XSLT_RESULT), reportOfTemplate(row.text));
    }
}

TEST_F(Transformation, TheTemplatesOwnOutputSettingsGovernTheBytes) {
    const std::string content =
        "<xsl:template match=\"/\"><p><br/>" + valueOf("v") + "</p></xsl:template>";
    EXPECT_EQ(reportOf("<p><br>value</p>\n"),
              reportOfTemplate(stylesheet("method=\"html\" encoding=\"UTF-8\"", content)));
    EXPECT_EQ(reportOf("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<p><br/>value</p>\n"),
              reportOfTemplate(stylesheet("method=\"xml\" encoding=\"UTF-8\"", content)));
    EXPECT_EQ(
        reportOf("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<p>\n  <br/>\n  <b/>\n</p>\n"),
        reportOfTemplate(stylesheet("method=\"xml\" encoding=\"UTF-8\" indent=\"yes\"",
                                    "<xsl:template match=\"/\"><p><br/><b/></p></xsl:template>")));
    EXPECT_EQ(reportOf("value"), reportOfTemplate(stylesheet("method=\"text\"", content)));
}

TEST_F(Transformation, AllThreeFormatsAreTransformedAlike) {
    InputParams input;
    input.variants().addString("v", "value");
    for (const std::string format : {"html", "txt", "pdf"}) {
        SCOPED_TRACE(format);
        putTemplate(
            stylesheet("method=\"html\" encoding=\"UTF-8\"",
                       "<xsl:template match=\"/\"><p>" + valueOf("v") + "</p></xsl:template>"),
            format);
        input.format(format);
        EXPECT_EQ(reportOf("<p>value</p>\n"), report(input));
    }
}

TEST_F(Transformation, NoStylesheetParameterIsPassed) {
    EXPECT_EQ(reportOf("default"),
              reportOfTemplate(stylesheet(
                  "method=\"text\"",
                  "<xsl:param name=\"v\">default</xsl:param>"
                  "<xsl:template match=\"/\"><xsl:value-of select=\"$v\"/></xsl:template>")));
}

TEST_F(Transformation, RelativeReferencesAreNotResolvedAgainstTheTemplatesFolder) {
    putIncluded(folder.dataFile("templates/html/helper.xsl"), "beside the template");
    for (const std::string word : {"include", "import"}) {
        SCOPED_TRACE(word);
        EXPECT_EQ(failure(RGEN_E_XSLT_PARSE),
                  reportOfTemplate(calling("<xsl:" + word + " href=\"helper.xsl\"/>")));
    }
}

TEST_F(Transformation, RelativeReferencesFollowTheCurrentFolder) {
    putIncluded(folder.file("current/helper.xsl"), "in the current folder");
    const WorkingFolder current(folder.file("current"));
    for (const std::string word : {"include", "import"}) {
        SCOPED_TRACE(word);
        EXPECT_EQ(reportOf("in the current folder"),
                  reportOfTemplate(calling("<xsl:" + word + " href=\"helper.xsl\"/>")));
    }
}

TEST_F(Transformation, AStylesheetThatIncludesItselfIsRefused) {
    for (const std::string word : {"include", "import"}) {
        SCOPED_TRACE(word);
        const std::string url = urlOf(folder.file("self.xsl"));
        const std::string text = calling("<xsl:" + word + " href=\"" + url + "\"/>");
        writeFile(folder.file("self.xsl"), text);
        EXPECT_EQ(failure(RGEN_E_XSLT_PARSE), reportOfTemplate(text));
    }
}

TEST_F(Transformation, ADocumentNamedByAUrlIsRead) {
    writeFile(folder.file("other.xml"), "<other>read</other>");
    EXPECT_EQ(reportOf("read"),
              reportOfTemplate(textStylesheet("<xsl:value-of select=\"document('" +
                                              urlOf(folder.file("other.xml")) + "')\"/>")));
}

TEST_F(Transformation, AMissingDocumentIsAnEmptyNodeSet) {
    EXPECT_EQ(reportOf("0"),
              reportOfTemplate(textStylesheet(
                  "<xsl:value-of select=\"count(document('nowhere-to-be-found.xml'))\"/>")));
}

TEST_F(Transformation, AMessageDoesNotDisturbTheReport) {
    EXPECT_EQ(reportOf("done"),
              reportOfTemplate(textStylesheet("<xsl:message>m</xsl:message>done")));
}

TEST_F(Transformation, AKeyInACircleIsSurvived) {
    const Report result = reportOfTemplate(stylesheet(
        "method=\"text\"",
        "<xsl:key name=\"k\" match=\"property\" use=\"key('k', @name)\"/>"
        "<xsl:template match=\"/\">[<xsl:value-of select=\"key('k', 'v')\"/>]</xsl:template>"));
    EXPECT_TRUE(result == reportOf("[]") || result == failure(RGEN_E_XSLT_APPLY)) << result;
}

TEST_F(Transformation, ManyTemplatesAreCompiled) {
    std::string templates;
    for (int number = 0; number < 20000; ++number) {
        const std::string name = "t" + std::to_string(number);
        templates += "<xsl:template match=\"" + name + "\">" + name + "</xsl:template>";
    }
    EXPECT_EQ(reportOf("done"),
              reportOfTemplate(stylesheet(
                  "method=\"text\"", templates + "<xsl:template match=\"/\">done</xsl:template>")));
}

TEST_F(Transformation, AMatchOfManyAlternativesIsCompiled) {
    std::string match = "property";
    for (int number = 0; number < 20000; ++number)
        match += "|t" + std::to_string(number);
    EXPECT_EQ(reportOf("done"),
              reportOfTemplate(stylesheet(
                  "method=\"text\"", "<xsl:template match=\"" + match + "\">done</xsl:template>")));
}

TEST_F(Transformation, ParenthesesInAnExpressionNestToALimit) {
    const auto nested = [](std::size_t depth) {
        return textStylesheet("<xsl:value-of select=\"" + std::string(depth, '(') + "7" +
                              std::string(depth, ')') + "\"/>");
    };
    EXPECT_EQ(reportOf("7"), reportOfTemplate(nested(99)));
    EXPECT_EQ(failure(RGEN_E_XSLT_PARSE), reportOfTemplate(nested(10000)));
}

TEST_F(Recovery, DamagedTemplatesAreRepairedAndUsed) {
    const std::string whole = textStylesheet("done");
    const std::vector<TemplateRow> rows = {
        {"cut inside the last end tag", whole.substr(0, whole.size() - 5)},
        {"without any end tag after the text", whole.substr(0, whole.find("done") + 4)},
        {"junk after the end", whole + "junk <x>"},
        {"unknown element of XSLT", textStylesheet("<xsl:foo>junk</xsl:foo>done")},
        {"zero byte and junk after the end", whole + std::string("\0<junk", 6)}};
    for (const TemplateRow& row : rows) {
        SCOPED_TRACE(row.label);
        EXPECT_EQ(reportOf("done"), reportOfTemplate(row.text));
    }
}

TEST_F(Recovery, AByteThatIsNotUtf8IsReplaced) {
    EXPECT_EQ(reportOf("a\xEF\xBF\xBDz"), reportOfTemplate(textStylesheet("a\xFFz")));
}

TEST_F(Recovery, ATemplateEndsAtAZeroByte) {
    EXPECT_EQ(reportOf("before"),
              reportOfTemplate(textStylesheet("before" + std::string(1, '\0') + "behind")));
}

TEST_F(Recovery, ATemplateIsCutAt256OpenElements) {
    std::string deep;
    for (int level = 0; level < 400; ++level)
        deep += "<x>";
    deep += "deepest";
    for (int level = 0; level < 400; ++level)
        deep += "</x>";
    const Report result = reportOfTemplate(stylesheet(
        "method=\"xml\"", "<xsl:template match=\"/\"><first/>" + deep + "</xsl:template>"));
    EXPECT_EQ(statusHex(RGEN_OK), result.status);
    EXPECT_NE(std::string::npos, result.bytes.find("<first/>"));
    EXPECT_EQ(std::string::npos, result.bytes.find("deepest"));
}

TEST_F(Entities, AnEntityInsideATextInstructionIsRefused) {
    EXPECT_EQ(failure(RGEN_E_XSLT_PARSE),
              reportOfTemplate(withSubset("[<!ENTITY e \"E\">]", "<xsl:text>a&e;z</xsl:text>")));
    EXPECT_EQ(failure(RGEN_E_XSLT_PARSE),
              reportOfTemplate(textStylesheet("<xsl:text>a&nothing;z</xsl:text>")));
}

TEST_F(Entities, AnEntityInsideAnAttributeTemplateIsRefused) {
    EXPECT_EQ(failure(RGEN_E_XSLT_PARSE),
              reportOfTemplate(withSubset("[<!ENTITY e \"E\">]", "<p class=\"a&e;z\"/>")));
}

TEST_F(Entities, AnEntityElsewhereVanishes) {
    EXPECT_EQ(reportOf("<p>az</p>\n"),
              reportOfTemplate(withSubset("[<!ENTITY e \"E\">]", "<p>a&e;z</p>")));
}

TEST_F(Entities, CharacterReferencesAndTheFivePredefinedEntitiesWork) {
    EXPECT_EQ(reportOf("<p>A&amp;&lt;&gt;\"'</p>\n"),
              reportOfTemplate(withSubset("[]", "<p>&#65;&amp;&lt;&gt;&quot;&apos;</p>")));
}

TEST_F(Entities, AnEntityBombVanishes) {
    std::string subset = "[<!ENTITY e0 \"ha\">";
    for (int level = 1; level <= 12; ++level) {
        const std::string below = "&e" + std::to_string(level - 1) + ";";
        subset += "<!ENTITY e" + std::to_string(level) + " \"";
        for (int repetition = 0; repetition < 10; ++repetition)
            subset += below;
        subset += "\">";
    }
    const Report result = reportOfTemplate(withSubset(subset + "]", "<p>a&e12;z</p>"));
    EXPECT_EQ(statusHex(RGEN_OK), result.status);
    EXPECT_EQ("<p>a", result.bytes.substr(0, 4));
    EXPECT_LT(result.bytes.size(), 100U);
}

TEST_F(Entities, ExternalEntitiesAndDocumentTypesAreNotOpened) {
    writeFile(folder.file("secret.txt"), "secret");
    writeFile(folder.file("subset.dtd"), "<!ENTITY e \"secret\">");
    const std::string secret = urlOf(folder.file("secret.txt"));
    const std::string subset = urlOf(folder.file("subset.dtd"));
    // Twice, since the first report sets what parsing does by default from then on.
    for (int repetition = 0; repetition < 2; ++repetition) {
        EXPECT_EQ(reportOf("<p>az</p>\n"),
                  reportOfTemplate(
                      withSubset("[<!ENTITY e SYSTEM \"" + secret + "\">]", "<p>a&e;z</p>")));
        EXPECT_EQ(reportOf("<p>az</p>\n"),
                  reportOfTemplate(withSubset("SYSTEM \"" + subset + "\"", "<p>a&e;z</p>")));
    }
}

TEST_F(Entities, DocumentsOfATemplateHaveTheirEntitiesSubstituted) {
    writeFile(folder.file("inner.txt"), "inner");
    writeFile(folder.file("outer.xml"), "<!DOCTYPE o [<!ENTITY e SYSTEM \"" +
                                            urlOf(folder.file("inner.txt")) + "\">]><o>a&e;z</o>");
    EXPECT_EQ(reportOf("ainnerz"),
              reportOfTemplate(textStylesheet("<xsl:value-of select=\"document('" +
                                              urlOf(folder.file("outer.xml")) + "')/o\"/>")));
}

}  // namespace
}  // namespace rgen_test
