// A generator object of the library with a folder of its own.
//
// SPDX-License-Identifier: MIT
#include "unit/unit_fixture.h"

#include <mutex>

#include "platform/platform.h"
#include "store/xml/parser_context.h"

namespace rgen_test {
namespace {

// The XML libraries have their memory functions before any case uses them.
const rgen::XmlParserContextReference parserContext = rgen::sharedXmlParserContext();

}  // namespace

const char* const otherGuidText = "0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f9";

UnitTest::UnitTest() {
    generator.dataDirPath = folder.dataDir() + rgen::platform::pathSeparator;
    generator.parserContext = rgen::sharedXmlParserContext();
}

void UnitTest::putConfig() {
    writeFile(folder.dataFile("config.xml"),
              std::string("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<config><reportTypes>"
                          "<type guid=\"deadbabe-0000-0000-0000-000000000000\">"
                          "<persistDataFile>persist_data.xml</persistDataFile>"
                          "<reportTypeFile>test_stylesheet.xsl</reportTypeFile></type>"
                          "<type guid=\"") +
                  otherGuidText +
                  "\"><persistDataFile>other_data.xml</persistDataFile>"
                  "<reportTypeFile>other.xsl</reportTypeFile></type>"
                  "</reportTypes></config>\n");
}

std::string UnitTest::putTemplate(const std::string& text, const std::string& format) {
    const std::string path = folder.dataFile("templates/" + format + "/test_stylesheet.xsl");
    replaceFile(path, text);
    return path;
}

std::string textTemplate(const std::string& body) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<xsl:stylesheet version=\"1.0\" "
           "xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\">"
           "<xsl:output method=\"text\" encoding=\"UTF-8\"/>"
           "<xsl:template match=\"/\">" +
           body + "</xsl:template></xsl:stylesheet>";
}

bool isUnlocked(rgen::ReportGenerator& generator) {
    const std::unique_lock lock(generator.mutex, std::try_to_lock);
    return lock.owns_lock();
}

}  // namespace rgen_test
