// What becomes of a value's text and of a name in a file, and what is read back of it.
//
// Values are read as XML content, so "&" starts a reference there; names are not interpreted. Each
// row is checked in a dump, in persistent data from pairs and in persistent data from values. The
// bytes EF BF BD are the replacement character, which replaces bytes that are no character.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "strata_repgenlib/rgen.h"
#include "support/host_records.h"
#include "support/status_printer.h"
#include "support/temp_folder.h"

namespace {

using rgen_test::Generator;
using rgen_test::InputParams;
using rgen_test::PersistentData;
using rgen_test::statusHex;
using rgen_test::TempFolder;
using rgen_test::TextMap;
using rgen_test::VariantSet;

struct ContentRow {
    const char* label;
    std::string given;
    std::string inFile;
    // Null: the property is left out when it is read back.
    const char* readBack;
};

std::ostream& operator<<(std::ostream& stream, const ContentRow& row) {
    return stream << row.label;
}

std::string fileWith(const std::string& name, const std::string& text) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<data>\n  <properties>\n    "
           "<property name=\"" +
           name + "\"" + text + "\n  </properties>\n</data>\n";
}

// The three functions that write one name and text to a file, and those that read it.
class ContentTable : public testing::TestWithParam<ContentRow> {
protected:
    ContentTable() : generator_(folder_.path()) {}

    std::string dumped(const std::string& name, const std::string& text) const {
        InputParams input;
        input.variants().addString(name, text);
        const std::string path = folder_.file("dump.xml");
        EXPECT_EQ(statusHex(RGEN_OK), statusHex(rgen_dumpRawInputDataToFile(
                                          generator_.get(), input.get(), path.c_str())));
        return rgen_test::readFile(path);
    }
    std::string storedFromValues(const std::string& name, const std::string& text) const {
        const RgenGuid guid = rgen_test::defaultGuid();
        VariantSet values;
        values.addString(name, text);
        EXPECT_EQ(statusHex(RGEN_OK), statusHex(rgen_setPersistentDataFromCVariantSet(
                                          generator_.get(), &guid, values.get())));
        return rgen_test::readFile(folder_.dataFile("persist_data.xml"));
    }
    std::string storedFromPairs(const std::string& name, const std::string& text) const {
        EXPECT_EQ(statusHex(RGEN_OK), statusHex(rgen_test::storePairs(
                                          generator_, rgen_test::defaultGuid(), {{name, text}})));
        return rgen_test::readFile(folder_.dataFile("persist_data.xml"));
    }
    void expectFiles(const std::string& name, const std::string& text,
                     const std::string& file) const {
        EXPECT_EQ(file, dumped(name, text));
        EXPECT_EQ(file, storedFromValues(name, text));
        EXPECT_EQ(file, storedFromPairs(name, text));
    }
    PersistentData readBack() const {
        return rgen_test::persistentData(generator_, rgen_test::defaultGuid());
    }

    TempFolder folder_;
    Generator generator_;
};

// ---- Values ---------------------------------------------------------------------------------

using ValueContent = ContentTable;

TEST_P(ValueContent, InTheFileAndReadBack) {
    const ContentRow& row = GetParam();
    expectFiles("n", row.given, fileWith("n", row.inFile));
    const PersistentData data = readBack();
    if (row.readBack == nullptr) {
        EXPECT_EQ(statusHex(RGEN_E_NO_VALID_PERSIST_VALUES), statusHex(data.status));
        EXPECT_EQ(TextMap{}, data.pairs);
    } else {
        EXPECT_EQ(statusHex(RGEN_OK), statusHex(data.status));
        EXPECT_EQ((TextMap{{"n", row.readBack}}), data.pairs);
    }
}

ContentRow value(const char* label, const std::string& given, const std::string& inFile,
                 const char* readBack) {
    return {label, given, ">" + inFile + "</property>", readBack};
}

// The text is read back unchanged; the file contains it without escapes.
ContentRow unchanged(const char* label, const char* text) {
    return value(label, text, text, text);
}

ContentRow emptied(const char* label, const char* given) {
    return value(label, given, "", nullptr);
}

INSTANTIATE_TEST_SUITE_P(
    Ampersands, ValueContent,
    testing::Values(
        emptied("one", "&"), emptied("with semicolon", "&;"), emptied("numeric, empty", "&#;"),
        emptied("character zero", "&#0;"), emptied("unclosed decimal", "&#12"),
        value("unclosed decimal, text around", "x &#12 y", "x  y", "x  y"),
        value("hexadecimal up to a blank", "x &#x41 y; z", "x  y; z", "x  y; z"),
        value("between blanks", "a & b", "a  b", "a  b"), value("two", "&&", "&amp;", "&"),
        value("five", "&&&&&", "&amp;&amp;&amp;&amp;", "&&&&"),
        value("query string", "?a=1&b=2&c=3", "?a=1b=2&amp;c=3", "?a=1b=2&c=3"),
        value("unclosed amp", "&amp", "amp", "amp"), value("unclosed lt", "&lt", "lt", "lt"),
        value("undefined", "&undefined;", "&undefined;", nullptr),
        value("undefined in Cyrillic", "&n\xD0\xB0;", "&n\xD0\xB0;", nullptr),
        value("blank inside", "&a b;", "&a b;", "b;"), value("digit", "&1;", "&1;", "1;"),
        value("blank inside, text around", "x &a b; y", "x &a b; y", "x  b; y"),
        value("percent sign", "&%;", "&%;", "%;")));

INSTANTIATE_TEST_SUITE_P(
    References, ValueContent,
    testing::Values(value("amp", "&amp;", "&amp;", "&"), value("lt", "&lt;", "&lt;", "<"),
                    value("gt", "&gt;", "&gt;", ">"), value("quot", "&quot;", "\"", "\""),
                    value("apos", "&apos;", "'", "'"),
                    value("amp twice", "&amp;amp;", "&amp;amp;", "&amp;"),
                    value("decimal", "&#65;", "A", "A"), value("hexadecimal", "&#x41;", "A", "A"),
                    value("control character", "&#1;", "&#xFFFD;", "\xEF\xBF\xBD"),
                    value("beyond the last character", "&#x110000;", "\xEF\xBF\xBD",
                          "\xEF\xBF\xBD"),
                    value("far beyond", "&#99999999999;", "\xEF\xBF\xBD", "\xEF\xBF\xBD"),
                    value("surrogate", "&#xD800;", "\xED\xA0\x80",
                          "\xEF\xBF\xBD"
                          "\xEF\xBF\xBD"
                          "\xEF\xBF\xBD"),
                    value("no character", "&#xFFFE;", "\xEF\xBF\xBE", nullptr),
                    value("no hexadecimal digits", "&#xZZ;", "ZZ;", "ZZ;"),
                    value("minus", "x&#-5;y", "x-5;y", "x-5;y")));

// A reference with markup in it is dropped: in a file it would be markup.
INSTANTIATE_TEST_SUITE_P(
    MarkupInReferences, ValueContent,
    testing::Values(value("an element", "a&<b>x</b>;b", "ab", "ab"),
                    value("a property", "a&</property><property name=\"m\">t;b", "ab", "ab"),
                    value("two", "a&<b/>;b&<c/>;c", "abc", "abc"),
                    value("an address", "R&D <rd@x.org>; &amp;", "R &amp;", "R &")));

INSTANTIATE_TEST_SUITE_P(
    Markup, ValueContent,
    testing::Values(value("tag", "<b>", "&lt;b&gt;", "<b>"),
                    value("closing tag", "</property>", "&lt;/property&gt;", "</property>"),
                    value("comment", "<!-- x -->", "&lt;!-- x --&gt;", "<!-- x -->"),
                    value("end of CDATA", "]]>", "]]&gt;", "]]>"), unchanged("quotes", "\"'\""),
                    value("carriage return", "a\rb", "a&#13;b", "a\rb"),
                    value("line of a text file", "a\r\nb", "a&#13;\nb", "a\r\nb"),
                    unchanged("line feed", "a\nb"), unchanged("tab", "a\tb"),
                    value("blanks around", "  a  ", "  a  ", "a"),
                    value("blank", " ", " ", nullptr), unchanged("markers", "%s {0} %20 $x \\n"),
                    ContentRow{"empty", "", "/>", nullptr}));

INSTANTIATE_TEST_SUITE_P(
    Bytes, ValueContent,
    testing::Values(unchanged("Cyrillic", "\xD0\xBE\xD1\x82\xD1\x87\xD1\x91\xD1\x82"),
                    unchanged("outside the basic plane", "\xF0\x9F\x98\x80"),
                    unchanged("combining", "e\xCC\x81"),
                    value("0x01", "\x01", "&#xFFFD;", "\xEF\xBF\xBD"),
                    value("0x1F", "\x1F", "&#xFFFD;", "\xEF\xBF\xBD"), unchanged("0x7F", "\x7F"),
                    value("U+FFFE", "\xEF\xBF\xBE", "\xEF\xBF\xBE", nullptr),
                    value("0xFF",
                          "a\xFF"
                          "b",
                          "a\xFF"
                          "b",
                          "a"
                          "\xEF\xBF\xBD"
                          "b"),
                    value("cut two bytes", "a\xC3", "a\xC3",
                          "a"
                          "\xEF\xBF\xBD"),
                    value("cut three bytes", "a\xE2\x82", "a\xE2\x82",
                          "a"
                          "\xEF\xBF\xBD"
                          "\xEF\xBF\xBD"),
                    value("too long form", "a\xC0\x80", "a\xC0\x80",
                          "a"
                          "\xEF\xBF\xBD"
                          "\xEF\xBF\xBD"),
                    value("beyond Unicode", "a\xF4\x90\x80\x80", "a\xF4\x90\x80\x80",
                          "a"
                          "\xEF\xBF\xBD"
                          "\xEF\xBF\xBD"
                          "\xEF\xBF\xBD"
                          "\xEF\xBF\xBD"),
                    value("Windows-1251", "\xEE\xF2\xF7", "\xEE\xF2\xF7",
                          "\xEF\xBF\xBD"
                          "\xEF\xBF\xBD"
                          "\xEF\xBF\xBD")));

// ---- Names ----------------------------------------------------------------------------------

using NameContent = ContentTable;

TEST_P(NameContent, InTheFileAndReadBack) {
    const ContentRow& row = GetParam();
    expectFiles(row.given, "text", fileWith(row.inFile, ">text</property>"));
    const PersistentData data = readBack();
    if (row.readBack == nullptr) {
        EXPECT_EQ(statusHex(RGEN_E_NO_VALID_PERSIST_VALUES), statusHex(data.status));
    } else {
        EXPECT_EQ(statusHex(RGEN_OK), statusHex(data.status));
        EXPECT_EQ((TextMap{{row.readBack, "text"}}), data.pairs);
    }
}

ContentRow sameName(const char* name, const std::string& inFile) {
    return {name, name, inFile, name};
}

INSTANTIATE_TEST_SUITE_P(
    Markup, NameContent,
    testing::Values(sameName("name", "name"), sameName("two words", "two words"),
                    sameName("&", "&amp;"), sameName("a & b", "a &amp; b"),
                    sameName("&&", "&amp;&amp;"), sameName("&amp;", "&amp;amp;"),
                    sameName("&lt;", "&amp;lt;"), sameName("&#65;", "&amp;#65;"),
                    sameName("&undefined;", "&amp;undefined;"),
                    sameName("?a=1&b=2", "?a=1&amp;b=2"), sameName("<b>", "&lt;b&gt;"),
                    sameName("\"", "&quot;"), sameName("'", "'"), sameName("]]>", "]]&gt;"),
                    sameName("a\rb", "a&#13;b"), sameName("a\nb", "a&#10;b"),
                    sameName("a\tb", "a&#9;b"), sameName("%20", "%20"),
                    ContentRow{"blanks around", "  a  ", "  a  ", "a"},
                    ContentRow{"white space around", "\t\na\r", "&#9;&#10;a&#13;", "a"},
                    ContentRow{"blank", " ", " ", nullptr}, ContentRow{"empty", "", "", nullptr}));

INSTANTIATE_TEST_SUITE_P(Bytes, NameContent,
                         testing::Values(sameName("\xD0\xBE\xD1\x82\xD1\x87\xD1\x91\xD1\x82",
                                                  "\xD0\xBE\xD1\x82\xD1\x87\xD1\x91\xD1\x82"),
                                         sameName("\xF0\x9F\x98\x80", "\xF0\x9F\x98\x80"),
                                         ContentRow{"0x01", "a\x01", "a&#xFFFD;",
                                                    "a"
                                                    "\xEF\xBF\xBD"},
                                         ContentRow{"0x1F", "\x1F", "&#xFFFD;", "\xEF\xBF\xBD"},
                                         ContentRow{"U+FFFE", "\xEF\xBF\xBE", "\xEF\xBF\xBE",
                                                    "\xEF\xBF\xBE"},
                                         ContentRow{"0xFF",
                                                    "a\xFF"
                                                    "b",
                                                    "a\xFF"
                                                    "b",
                                                    "a"
                                                    "\xEF\xBF\xBD"
                                                    "b"},
                                         ContentRow{"cut two bytes", "a\xC3", "a\xC3",
                                                    "a"
                                                    "\xEF\xBF\xBD"},
                                         ContentRow{"Windows-1251", "\xEE\xF2\xF7", "\xEE\xF2\xF7",
                                                    "\xEF\xBF\xBD"
                                                    "\xEF\xBF\xBD"
                                                    "\xEF\xBF\xBD"}));

}  // namespace
