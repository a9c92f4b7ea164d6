// Names, values and hints of every type through storage, dump and reports. Markup in a name or
// value never becomes an element, and a text that was read once is read unchanged from then on.
//
// SPDX-License-Identifier: MIT
#include <cstddef>
#include <initializer_list>
#include <set>
#include <string_view>

#include "fuzz_support.h"
#include "fuzz_targets.h"

namespace rgen_fuzz {
namespace {

const char* const textTemplate =
    "<xsl:stylesheet version=\"1.0\" xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\">"
    "<xsl:output method=\"text\"/><xsl:template match=\"/\">"
    "<xsl:for-each select=\"data/properties/property\"><xsl:value-of select=\"@name\"/>="
    "<xsl:value-of select=\".\"/>;</xsl:for-each></xsl:template></xsl:stylesheet>";

const char* const pageTemplate =
    "<xsl:stylesheet version=\"1.0\" xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\">"
    "<xsl:output method=\"html\"/><xsl:template match=\"/\"><html><body>"
    "<xsl:for-each select=\"data/properties/property\"><p><xsl:value-of select=\"@name\"/>="
    "<xsl:copy-of select=\"node()\"/></p></xsl:for-each></body></html></xsl:template>"
    "</xsl:stylesheet>";

const Generator& generator() {
    static const Generator instance = [] {
        writeWorkFile("values/.rgen/templates/txt/test_stylesheet.xsl", textTemplate);
        writeWorkFile("values/.rgen/templates/html/test_stylesheet.xsl", pageTemplate);
        return Generator("values");
    }();
    return instance;
}

// The values of one input, and what is known of them.
struct Given {
    ValueSet values;
    // Names that enter the library.
    std::set<std::string> names;
    // True while every value is a text without references, and no name occurs twice.
    bool plain = true;
    // Of all names and texts.
    std::size_t characters = 0;

    void addNext(InputReader& reader);
};

void Given::addNext(InputReader& reader) {
    RgenCVariant& item = values.add();
    const std::size_t type = reader.choice(8);
    const std::uint64_t hint = reader.number();
    const std::string name = reader.text();
    const bool enters = type != 3;
    if (type == 3) {
        rgen_createRgenCVariantHandle(name.c_str(), &item, hint, &item);
    } else if (type == 2) {
        const std::string bytes = reader.bytes();
        rgen_createRgenCVariantByteArray(name.c_str(),
                                         reinterpret_cast<const std::uint8_t*>(bytes.data()),
                                         bytes.size(), hint, &item);
    } else if (type == 1) {
        const auto number = static_cast<std::int64_t>(reader.number());
        rgen_createRgenCVariantInt64(name.c_str(), number, hint, &item);
    } else {
        const std::string text = reader.text();
        rgen_createRgenCVariantString(name.c_str(), text.c_str(), hint, &item);
        plain = plain && text.find('&') == std::string::npos;
        characters += name.size() + text.size();
    }
    plain = plain && type != 1 && type != 2;
    if (enters) plain = names.insert(name).second && plain;
}

// Every "<" starts one of these.
void requireOnlyTags(const std::string& text, std::initializer_list<std::string_view> tags) {
    for (std::size_t at = text.find('<'); at != std::string::npos; at = text.find('<', at + 1)) {
        bool known = false;
        for (const std::string_view tag : tags)
            known = known || text.compare(at + 1, tag.size(), tag) == 0;
        require(known, "markup of a value became an element", text);
    }
}

std::size_t countOf(const std::string& text, std::string_view part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

void checkFile(const std::string& file, const Given& given) {
    requireOnlyTags(file, {"?xml version", "data>", "/data>", "properties>", "/properties>",
                           "properties/>", "property name=\"", "/property>"});
    require(countOf(file, "<property name=\"") == given.names.size(), "properties got lost", file);
}

void checkStorage(Given& given) {
    const Generator& target = generator();
    RgenCInputParams input = {};
    input.variants = given.values.record();
    requireOneOf(rgen_setPersistentDataFromCVariantSet(target.get(), &defaultGuid, &input.variants),
                 {RGEN_OK}, "rgen_setPersistentDataFromCVariantSet");
    checkFile(readWorkFile("values/.rgen/persist_data.xml"), given);
    if (input.variants.items != nullptr) {
        requireOneOf(
            rgen_dumpRawInputDataToFile(target.get(), &input, workPath("dump.xml").c_str()),
            {RGEN_OK}, "rgen_dumpRawInputDataToFile");
        checkFile(readWorkFile("dump.xml"), given);
    }
    TextMap pairs;
    requireOneOf(readPersistentData(target, pairs),
                 {RGEN_OK, RGEN_E_NO_PERSIST_VALUES, RGEN_E_NO_VALID_PERSIST_VALUES},
                 "rgen_getPersistentData");
    require(pairs.size() <= given.names.size(), "more came back than was stored");
    requireStableStorage(target, pairs);
}

// Only the values of the input are in these reports.
void checkReports(Given& given) {
    removeFromWork("values/.rgen/persist_data.xml");
    const RgenCVariantSet values = given.values.record();
    const RgenStatus expected = given.names.empty() ? RGEN_E_EMPTY_INPUT : RGEN_OK;
    std::string report;
    requireOneOf(generateBytes(generator(), values, "txt", report), {expected}, "a text report");
    if (given.plain && !given.names.empty()) {
        require(report.size() == given.characters + 2 * given.names.size(),
                "the text report has another length", report);
    }
    std::string page;
    requireOneOf(generateBytes(generator(), values, "html", page), {expected}, "a page");
    requireOnlyTags(page, {"html>", "/html>", "body>", "/body>", "p>", "/p>"});
    require(countOf(page, "<p>") == given.names.size() || given.names.empty(),
            "properties got lost in a page", page);
}

}  // namespace

void fuzzValues(const std::string& input) {
    constexpr std::size_t mostValues = 16;
    InputReader reader(input);
    Given given;
    for (std::size_t i = 0; i < mostValues && !reader.atEnd(); ++i)
        given.addNext(reader);
    checkStorage(given);
    checkReports(given);
}

}  // namespace rgen_fuzz
