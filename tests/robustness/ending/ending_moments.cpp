// SPDX-License-Identifier: MIT
#include "robustness/ending/ending_moments.h"

#include <gtest/gtest.h>

#include "support/temp_folder.h"
#include "support/test_platform.h"

namespace rgen_test {
namespace {

constexpr const char* reportTemplate =
    "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform'>"
    "<xsl:output method='text'/><xsl:template match='/'>"
    "<xsl:value-of select=\"//property[@name='size']\"/></xsl:template></xsl:stylesheet>";

// A number for each hint that numbers keep, its own, and one value of each other kind.
std::string simulatedInput() {
    const std::string names[] = {"Generic", "Time", "Date", "DateTime", "Size", "Address", "Speed"};
    std::string properties;
    int number = 0;
    for (const std::string& name : names) {
        properties += "<property name='" + name + "' type='int64' hint='" + name + "'>" +
                      std::to_string(++number) + "</property>";
    }
    return "<data><properties>" + properties +
           "<property name='text' type='string' hint='Generic'>a text</property>"
           "<property name='bytes' type='byte_array' hint='Dump'>0x01, 0xAB</property>"
           "</properties></data>";
}

}  // namespace

std::string momentsOf(const std::string& host, const std::string& use,
                      const std::string& lateLibrary) {
    const TempFolder folder;
    writeFile(folder.dataFile("templates/html/test_stylesheet.xsl"), reportTemplate);
    writeFile(folder.file("in.xml"), simulatedInput());
    ChildHost child(host,
                    {folder.path(), use, programFolder() + "/" + RGEN_TEST_LIBRARY, lateLibrary});
    EXPECT_EQ(0, child.exitCode()) << host << ", " << use;
    return readFile(folder.file("moments"));
}

}  // namespace rgen_test
