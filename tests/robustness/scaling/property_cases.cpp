// Texts that go into XML documents: libxml2 reads them as content, with references in them, and
// references with markup in their names are taken out again.
//
// SPDX-License-Identifier: MIT
#include <memory>

#include "robustness/scaling/scaling_case.h"
#include "store/xml/parser_context.h"
#include "store/xml/property_document.h"
#include "support/host_records.h"
#include "support/temp_folder.h"

namespace rgen_test {
namespace {

struct HostileText {
    const char* name;
    const char* part;
    const char* ending;
};

constexpr HostileText hostileTexts[] = {
    {"references with markup", "&<b>;", ""},
    {"letters and references with markup", "a&<b>;", ""},
    {"references with long names", "&<bbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbb>;", ""},
    {"ampersands without an end", "&", ""},
    {"ampersands and letters without an end", "&a ", ""},
    {"ampersands with one end", "&", ";"},
    {"ampersands with ends", "&;", ""},
    {"semicolons", ";", ""},
    {"one reference that ends nowhere", "a", "&"},
    {"references to entities", "&a;", ""},
    {"references to blanks", "& a b;", ""},
    {"predefined references", "&amp;", ""},
    {"character references", "&#65;", ""},
    {"hexadecimal references", "&#x41;", ""},
    {"empty character references", "&#;", ""},
    {"character references without an end", "&#6", ""},
    {"markup", "<b>", ""},
    {"ends of sections", "]]>", ""},
    {"line breaks", "\r\n", ""},
    {"control characters", "\x01", ""},
    {"bytes that are no UTF-8", "\xE4", ""},
    {"sequences of UTF-8", "\xC3\xA4", ""},
};

std::string textOf(const HostileText& hostile, std::size_t size) {
    return repeatedText(hostile.part, size) + hostile.ending;
}

std::function<void()> building(const std::string& text) {
    return [properties = rgen::PropertyMap{{"name", text}}] {
        const rgen::XmlSilence silence;
        rgen::buildPropertyDocument(properties);
    };
}

// Stores the text and reads it back.
std::function<void()> storing(const std::string& text) {
    const auto folder = std::make_shared<TempFolder>();
    const auto generator = std::make_shared<Generator>(folder->path());
    const auto pairs = std::make_shared<PairSet>();
    pairs->add("name", text);
    return [folder, generator, pairs] {
        const RgenGuid guid = defaultGuid();
        rgen_setPersistentDataFromAnsiStringPairSet(generator->get(), &guid, pairs->get());
        RgenCAnsiStringPairSet read{};
        rgen_getPersistentData(generator->get(), &guid, &read);
        rgen_freeRgenCAnsiStringSet(&read);
    };
}

}  // namespace

std::vector<ScalingCase> propertyCases() {
    std::vector<ScalingCase> cases;
    for (const HostileText& hostile : hostileTexts) {
        const std::string name = hostile.name;
        cases.push_back({"property: " + name, usualBytes,
                         [&hostile](std::size_t size) { return building(textOf(hostile, size)); }});
        cases.push_back({"persistent data: " + name, usualBytes / 2,
                         [&hostile](std::size_t size) { return storing(textOf(hostile, size)); }});
    }
    return cases;
}

}  // namespace rgen_test
