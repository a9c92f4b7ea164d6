// What one persistent text does to the others. A reference that XML does not know, or a byte or
// character that it cannot hold, is stored as it is; when the file is read back, every reference
// after it is lost. Each row is stored beside ten good texts, and those are checked by their
// place in the file, whose order is not defined.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/report_fixture.h"

namespace rgen_test {
namespace {

const char* const goodText = "x < y &amp;amp; z > w";
const char* const readWhole = "x < y &amp; z > w";
const char* const readDamaged = "x  y amp; z  w";

class PersistentRecovery : public ReportTest {
protected:
    struct Place {
        std::string name;
        bool isAfter;
    };

    static std::string goodName(int index) { return "good" + std::to_string(index); }

    void store(const std::string& name, const std::string& text) {
        PairSet pairs;
        for (int index = 0; index < 5; ++index)
            pairs.add(goodName(index), goodText);
        pairs.add(name, text);
        for (int index = 5; index < 10; ++index)
            pairs.add(goodName(index), goodText);
        const RgenGuid guid = defaultGuid();
        ASSERT_EQ(statusHex(RGEN_OK), statusHex(rgen_setPersistentDataFromAnsiStringPairSet(
                                          generator.get(), &guid, pairs.get())));
    }

    // Where the ten good entries are in the file, relative to the damaged one.
    std::vector<Place> places() const {
        const std::string file = readFile(folder.dataFile("persist_data.xml"));
        std::vector<Place> found;
        std::vector<std::size_t> starts;
        for (int index = 0; index < 10; ++index)
            starts.push_back(file.find("name=\"" + goodName(index) + "\""));
        std::size_t other = file.find("<property ");
        for (; other != std::string::npos; other = file.find("<property ", other + 1)) {
            if (file.compare(other + 10, 10, "name=\"good") != 0) break;
        }
        for (int index = 0; index < 10; ++index)
            found.push_back({goodName(index), starts[static_cast<std::size_t>(index)] > other});
        return found;
    }

    void expectDamageAfter(const std::string& name, const std::string& text) {
        SCOPED_TRACE(name + ": " + text);
        store(name, text);
        const PersistentData data = persistentData(generator, defaultGuid());
        EXPECT_EQ(statusHex(RGEN_OK), statusHex(data.status));
        for (const Place& place : places()) {
            EXPECT_EQ(place.isAfter ? readDamaged : readWhole, data.pairs.at(place.name))
                << place.name;
        }
    }

    void expectNoDamage(const std::string& text) {
        SCOPED_TRACE(text);
        store("other", text);
        const PersistentData data = persistentData(generator, defaultGuid());
        for (int index = 0; index < 10; ++index)
            EXPECT_EQ(readWhole, data.pairs.at(goodName(index))) << index;
    }
};

TEST_F(PersistentRecovery, AnUnknownReferenceTakesTheReferencesAfterIt) {
    for (const char* text : {"&foo;", "&f oo;", "&nbsp;", "&AMP;", "&1;", "&-x;", "&%;", "&a:b;",
                             "& amp;", "&amp ;", "&\n;", "a & b; c", "&&amp;", "&lt;&foo;"}) {
        expectDamageAfter("other", text);
    }
}

TEST_F(PersistentRecovery, WhatXmlCannotHoldTakesTheReferencesAfterIt) {
    for (const char* text : {"a\xFFz", "\xC3", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xEF\xBF\xBE",
                             "\xEF\xBF\xBF", "&#xD800;", "&#55296;", "&#xFFFE;", "&#65535;"}) {
        expectDamageAfter("other", text);
    }
}

TEST_F(PersistentRecovery, ANameThatXmlCannotHoldDoesSo) {
    // U+FFFE in a name loses the references of all entries.
    for (const char* name : {"a\xFFz", "\xED\xA0\x80", "\xEF\xBF\xBE", "\xEF\xBF\xBF"}) {
        SCOPED_TRACE(name);
        store(name, "text");
        const PersistentData data = persistentData(generator, defaultGuid());
        for (const Place& place : places()) {
            if (place.isAfter) {
                EXPECT_EQ(readDamaged, data.pairs.at(place.name)) << place.name;
            }
        }
    }
    store("&foo; \x01 &#xD800;", "text");
    for (const auto& entry : persistentData(generator, defaultGuid()).pairs)
        EXPECT_EQ(entry.second == "text" ? "text" : readWhole, entry.second);
}

TEST_F(PersistentRecovery, EverythingElseLeavesTheOthersAlone) {
    for (const char* text : {"a & b",
                             "AT&T",
                             "&",
                             "&;",
                             "&foo",
                             "\x01",
                             "\x1F",
                             "&#1;",
                             "&#0;",
                             "&#x110000;",
                             "&#;",
                             "&#65",
                             "&#xZ;",
                             "&#-5;",
                             "&<b>;",
                             "]]>",
                             "<b>",
                             "&amp;",
                             "&amp;amp;",
                             "&amp;foo;",
                             "&amp;#xD800;",
                             "&#65;",
                             "&#x1FFFE;",
                             "\x7F",
                             "\xC2\x85",
                             "\xF0\x9F\xBF\xBE"}) {
        expectNoDamage(text);
    }
}

TEST_F(PersistentRecovery, AReportGetsTheDamagedTexts) {
    store("other", "&foo;");
    std::string body;
    std::string expected;
    for (const Place& place : places()) {
        body += "[" + valueOf(place.name) + "]";
        expected += place.isAfter ? "[x  y amp; z  w]" : "[x < y & z > w]";
    }
    putTemplate(textStylesheet(body));
    InputParams input;
    EXPECT_EQ(reportOf(expected), report(input));
}

}  // namespace
}  // namespace rgen_test
