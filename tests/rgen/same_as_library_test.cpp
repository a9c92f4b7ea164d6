// rgen compiles and runs templates itself to say what is wrong with them. What it says is true only
// if its run has the result of the library's.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstddef>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "base/console.h"
#include "base/roomy_stack.h"
#include "commands/embedded_files.h"
#include "library/library_calls.h"
#include "support/report_fixture.h"
#include "templates/data_document.h"
#include "templates/template_run.h"
#include "templates/template_text.h"

namespace cli {
namespace {

using rgen_test::defaultGuidText;
using rgen_test::Report;
using rgen_test::stylesheet;
using rgen_test::textStylesheet;

Report reportOf(const TemplateRun& run) {
    switch (run.outcome) {
        case TemplateRun::Outcome::Done:
            return rgen_test::reportOf(run.result);
        case TemplateRun::Outcome::NotCompiled:
            return rgen_test::failure(RGEN_E_XSLT_PARSE);
        case TemplateRun::Outcome::NotApplied:
            return rgen_test::failure(RGEN_E_XSLT_APPLY);
        default:
            return rgen_test::failure(RGEN_E_XSLT_RESULT);
    }
}

std::string embedded(const std::string& path) {
    for (const EmbeddedFile& file : acquisitionSample()) {
        if (file.path == path) return std::string(file.content);
    }
    ADD_FAILURE() << "there is no " << path;
    return {};
}

std::string body(const std::string& instructions) {
    return "<xsl:template match=\"/\">" + instructions + "</xsl:template>";
}

/// Changes of the kind that authors make by mistake. The same seed makes the same changes on every
/// system: the standard's distributions would not.
class Mutator {
public:
    explicit Mutator(std::uint32_t seed) : random_(seed) {}

    std::string mutated(std::string text) {
        const std::size_t changes = 1 + below(3);
        for (std::size_t i = 0; i < changes; ++i)
            change(text);
        return text;
    }

private:
    std::size_t below(std::size_t limit) { return limit == 0 ? 0 : random_() % limit; }

    void change(std::string& text) {
        static const std::vector<std::string> pieces = {"<",
                                                        ">",
                                                        "/>",
                                                        "&",
                                                        "&nbsp;",
                                                        "\"",
                                                        "'",
                                                        "{",
                                                        "}",
                                                        "$x",
                                                        "no-",
                                                        "xsl:",
                                                        "</p>",
                                                        "<p>",
                                                        "select=\"1\"",
                                                        "disable-output-escaping=\"yes\"",
                                                        "]",
                                                        "(",
                                                        "::",
                                                        " div 0",
                                                        "<xsl:text>a</xsl:text>",
                                                        "<!--",
                                                        "xmlns=\"u\" "};
        const std::size_t at = below(text.size());
        const std::size_t length = 1 + below(12);
        switch (below(4)) {
            case 0:
                text.erase(at, length);
                break;
            case 1:
                text.insert(at, pieces[below(pieces.size())]);
                break;
            case 2:
                text.insert(below(text.size()), text.substr(at, length * 8));
                break;
            default:
                text.replace(at, 1, pieces[below(pieces.size())]);
        }
    }

    std::mt19937 random_;
};

class SameAsLibrary : public rgen_test::ReportTest {
protected:
    SameAsLibrary() : type_{strata::repgen::Guid(defaultGuidText), defaultGuidText, {}, {}, {}} {
        type_.persistDataFile = "persist_data.xml";
        setDataDir(own_, folder.path());
    }

    void readValues(const std::string& json) {
        const std::string path = folder.file("values.json");
        rgen_test::writeFile(path, json);
        Console console(true);
        ValueArguments values;
        values.data.push_back(path);
        input_ = collectInput(values, own_, console);
        document_ = dataDocument({folder.path()}, type_, input_);
    }

    Report librarys(const std::string& text) {
        rgen_test::replaceFile(folder.dataFile("templates/html/test_stylesheet.xsl"), text);
        const repgen::Request request{type_.guid, "html", libraryValues(input_.values), {}};
        Report report;
        // The depth that a template may have depends on the stack.
        runWithRoomyStack([&] {
            try {
                const repgen::Bytes bytes = own_.generateBytes(request);
                report = rgen_test::reportOf({bytes.begin(), bytes.end()});
            } catch (const repgen::StatusError& error) {
                report = rgen_test::failure(error.status());
            }
        });
        return report;
    }

    Report own(const std::string& text) {
        return reportOf(runTemplate(TemplateText("a.xsl", text).text(), document_));
    }

    void expectSame(const std::string& text) { EXPECT_EQ(librarys(text), own(text)) << text; }

    repgen::Generator own_;
    ReportType type_;
    ReportInput input_;
    std::string document_;
};

TEST_F(SameAsLibrary, TheSample) {
    readValues(embedded("acquisition.json"));
    for (const char* const format : {"html", "pdf", "txt"}) {
        const std::string text =
            embedded(std::string(".rgen/templates/") + format + "/acquisition.xsl");
        ASSERT_FALSE(librarys(text).bytes.empty());
        expectSame(text);
    }
}

TEST_F(SameAsLibrary, ValuesOfAllKinds) {
    rgen_test::writeFile(
        folder.dataFile("persist_data.xml"),
        "<data><properties><property name=\"kept\">a &amp;amp; b</property>"
        "<property name=\"Text\">from persistent data</property></properties></data>");
    readValues(
        "{\"Text\": \"a & <b> 'c' \\\"d\\\"\", \"Number\": -12, \"Size:size\": 500107862016,"
        "\"Date:date\": 1772726400, \"Time:time\": 1772726400, \"At:datetime\": 1772726400,"
        "\"Bytes:bytes\": \"01 AB FF\", \"Address:address\": \"0x1f\", \"Empty\": \"\","
        "\"Lines\": \"one\\ntwo\\tthree\\r\\nfour\", \"\\u00e9t\\u00e9\": \"\\ud83d\\ude00\","
        "\"<name> & 'quotes' \\\"x\\\"\": \"y\"}");
    const std::string each =
        "<xsl:for-each select=\"data/properties/property\">[<xsl:value-of select=\"@name\"/>=<"
        "xsl:value-of select=\".\"/>|<xsl:value-of select=\"position()\"/>]</xsl:for-each>";
    expectSame(textStylesheet(each));
    expectSame(
        stylesheet("method=\"xml\" indent=\"yes\"", body("<a><xsl:copy-of select=\"data\"/></a>")));
}

TEST_F(SameAsLibrary, CharactersThatXmlCannotContainDoNotStopTheRun) {
    readValues("{\"v\": \"a\\u0001b\\uFFFEc <&>\"}");
    const Report own = this->own(textStylesheet("<xsl:value-of select=\"//property\"/>"));
    EXPECT_EQ(own, rgen_test::reportOf("a\xEF\xBF\xBD"
                                       "b\xEF\xBF\xBD"
                                       "c <&>"));
}

TEST_F(SameAsLibrary, EveryMethodAndEncoding) {
    readValues("{\"v\": \"\\u00e9 \\u20ac <&> \\ud83d\\ude00\"}");
    const std::string content = body(
        "<html><head><title>T</title></head><body><br/><p class=\"{//property}\">"
        "<xsl:value-of select=\"//property\"/></p><script>a &lt; b</script></body></html>");
    for (const char* const method : {"html", "xml", "text"}) {
        for (const char* const encoding :
             {"UTF-8", "UTF-16", "ISO-8859-1", "US-ASCII", "windows-1251", "none"}) {
            for (const char* const more : {"indent=\"yes\"", "indent=\"no\" standalone=\"yes\"",
                                           "omit-xml-declaration=\"yes\" doctype-public=\"p\""}) {
                expectSame(stylesheet(
                    std::string("method=\"") + method + "\" encoding=\"" + encoding + "\" " + more,
                    content));
            }
        }
    }
}

TEST_F(SameAsLibrary, Failures) {
    readValues("{\"v\": \"1\"}");
    for (const char* const text : {"", "no template", "<a>", "<html/>"})
        expectSame(text);
    for (const char* const instructions :
         {"", "<xsl:value-of select=\"1 +\"/>", "<xsl:value-of select=\"no-such()\"/>",
          "<xsl:value-of select=\"$none\"/>", "<xsl:call-template name=\"none\"/>",
          "<xsl:message terminate=\"yes\">Stop</xsl:message>",
          "<xsl:message terminate=\"maybe\">Go on</xsl:message>a", "&nbsp;a", "a & b",
          "<xsl:value-of select=\"document('none.xml')\"/>a",
          "<xsl:value-of select=\"document('')\"/>a", "<xsl:text>a<b/></xsl:text>",
          "<xsl:value-off select=\"1\"/>a", "<xsl:apply-templates select=\"//none\"/>"}) {
        expectSame(textStylesheet(instructions));
    }
    expectSame(textStylesheet("<xsl:value-of select=\"" + std::string(600, '(') + "1" +
                              std::string(600, ')') + "\"/>"));
}

TEST_F(SameAsLibrary, TopLevelFailures) {
    readValues("{\"v\": \"1\"}");
    for (const char* const topLevel :
         {"<xsl:include href=\"none.xsl\"/>", "<xsl:import href=\"none.xsl\"/>",
          "<xsl:include href=\"\"/>", "<xsl:import href=\"\"/>", "<xsl:include href=\"#a\"/>",
          "<xsl:template match=\"a[\"/>", "<xsl:template/>", "<p/>",
          "<xsl:key name=\"a\" match=\"b\"/>", "<xsl:variable name=\"a\" select=\"$a\"/>",
          "<xsl:attribute-set name=\"a\" use-attribute-sets=\"a\"/>"}) {
        expectSame(stylesheet("method=\"text\"", topLevel + body("a")));
    }
}

TEST_F(SameAsLibrary, RecursionEndsAtTheSameDepth) {
    readValues("{\"v\": \"1\"}");
    for (const int depth : {1400, 1490, 1500, 2900, 2990, 3000, 100000}) {
        expectSame(stylesheet(
            "method=\"text\"",
            body("<xsl:call-template name=\"n\"><xsl:with-param name=\"i\" select=\"" +
                 std::to_string(depth) + "\"/></xsl:call-template>") +
                "<xsl:template name=\"n\"><xsl:param name=\"i\"/><xsl:if test=\"$i &gt; 0\">"
                "<xsl:call-template name=\"n\"><xsl:with-param name=\"i\" select=\"$i - 1\"/>"
                "</xsl:call-template></xsl:if>.</xsl:template>"));
    }
}

TEST_F(SameAsLibrary, TemplatesWithMistakes) {
    readValues(embedded("acquisition.json"));
    Mutator mutator(20260309);
    std::map<std::string, int> statuses;
    const std::string page = embedded(".rgen/templates/html/acquisition.xsl");
    const std::string text = embedded(".rgen/templates/txt/acquisition.xsl");
    constexpr int rounds = 300;
    for (int i = 0; i < rounds && !HasFailure(); ++i) {
        const std::string changed = mutator.mutated(i % 2 == 0 ? page : text);
        const Report expected = librarys(changed);
        ++statuses[expected.status];
        EXPECT_EQ(expected, own(changed)) << i;
    }
    // The changes were neither all harmless nor all of one kind.
    EXPECT_GT(statuses.size(), 2U);
}

}  // namespace
}  // namespace cli
