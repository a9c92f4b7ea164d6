// A host that has an XML library of its own, the same one that is inside the library. Neither may
// notice the other: no handler, no memory function and no setting is shared.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/xmlmemory.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "abi/library_loader.h"
#include "strata_repgenlib/rgen.h"
#include "support/temp_folder.h"

namespace {

using rgen_test::LoadedLibrary;
using rgen_test::TempFolder;

int allocations = 0;
int messages = 0;

void* countingMalloc(std::size_t size) {
    ++allocations;
    return std::malloc(size);
}

void* countingRealloc(void* block, std::size_t size) {
    ++allocations;
    return std::realloc(block, size);
}

char* countingCopy(const char* text) {
    const std::size_t size = std::strlen(text) + 1;
    return static_cast<char*>(std::memcpy(countingMalloc(size), text, size));
}

void countMessage(void*, const xmlError*) {
    ++messages;
}

// The host's library with the host's settings, as a program sets them at its start.
void startHostsXmlLibrary() {
    ASSERT_EQ(0, xmlMemSetup(std::free, countingMalloc, countingRealloc, countingCopy));
    xmlInitParser();
    xmlSetStructuredErrorFunc(&messages, countMessage);
}

// How often the host's library allocates and complains for one broken document.
struct Counts {
    int allocations;
    int messages;
};

Counts countsOfABrokenDocument() {
    allocations = messages = 0;
    xmlDoc* document = xmlReadDoc(reinterpret_cast<const xmlChar*>("<a>&undefined;</b>"), nullptr,
                                  nullptr, XML_PARSE_RECOVER);
    xmlFreeDoc(document);
    return {allocations, messages};
}

// Lets the loaded library read a broken configuration and make a broken report.
void disturbLoadedLibrary(const LoadedLibrary& library) {
    const TempFolder folder;
    rgen_test::writeFile(folder.dataFile("config.xml"), "<config>&undefined;<broken>");
    const auto newGenerator =
        library.function<decltype(&rgen_newReportGenerator)>("rgen_newReportGenerator");
    const auto setDataDirPath =
        library.function<decltype(&rgen_setDataDirPath)>("rgen_setDataDirPath");
    const auto getPersistentData =
        library.function<decltype(&rgen_getPersistentData)>("rgen_getPersistentData");
    const auto freeGenerator =
        library.function<decltype(&rgen_freeReportGenerator)>("rgen_freeReportGenerator");
    const RgenGuid guid = {0xDEADBABEU, 0, 0, {}};
    RgenReportGenerator* generator = newGenerator();
    EXPECT_EQ(RGEN_OK, setDataDirPath(generator, folder.path().c_str()));
    EXPECT_EQ(RGEN_E_NO_TYPE_MAP, getPersistentData(generator, &guid, nullptr));
    freeGenerator(generator);
}

TEST(OwnXmlLibrary, OfTheHostIsNotTouched) {
    startHostsXmlLibrary();
    const Counts before = countsOfABrokenDocument();
    EXPECT_LT(0, before.allocations);
    EXPECT_LT(0, before.messages);
    for (int load = 0; load < 3; ++load) {
        const LoadedLibrary library;
        allocations = messages = 0;
        disturbLoadedLibrary(library);
        EXPECT_EQ(0, allocations);
        EXPECT_EQ(0, messages);
        const Counts meanwhile = countsOfABrokenDocument();
        EXPECT_EQ(before.allocations, meanwhile.allocations);
        EXPECT_EQ(before.messages, meanwhile.messages);
    }
    const Counts afterwards = countsOfABrokenDocument();
    EXPECT_EQ(before.allocations, afterwards.allocations);
    EXPECT_EQ(before.messages, afterwards.messages);
    EXPECT_EQ(static_cast<void*>(&messages), xmlStructuredErrorContext);
    xmlSetStructuredErrorFunc(nullptr, nullptr);
}

}  // namespace
