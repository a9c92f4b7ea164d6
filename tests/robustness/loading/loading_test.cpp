// The library loaded at run time, as plug-in hosts and other languages do it: beside many other
// libraries, and where memory is exhausted.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "support/temp_folder.h"
#include "support/test_platform.h"

namespace rgen_test {
namespace {

constexpr const char* reportTemplate =
    "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform'>"
    "<xsl:output method='text'/><xsl:template match='/'>"
    "<xsl:value-of select=\"//property[@name='size']\"/></xsl:template></xsl:stylesheet>";

class LoadedLibrary : public testing::Test {
protected:
    LoadedLibrary() {
        writeFile(folder.dataFile("templates/html/test_stylesheet.xsl"), reportTemplate);
        writeFile(folder.dataFile("config.xml"),
                  "<config><reportTypes><type guid=\"deadbabe-0000-0000-0000-000000000000\">"
                  "<persistDataFile>data.xml</persistDataFile>"
                  "<reportTypeFile>test_stylesheet.xsl</reportTypeFile></type></reportTypes>"
                  "</config>");
        writeFile(folder.dataFile("data.xml"),
                  "<data><properties><property name=\"p\">stored</property>"
                  "<property name=\"q\">stored, too</property></properties></data>");
        writeFile(folder.file("in.xml"),
                  "<data><properties>"
                  "<property name=\"n\" type=\"int64\" hint=\"Size\">1</property>"
                  "<property name=\"s\" type=\"string\" hint=\"Generic\">text</property>"
                  "<property name=\"b\" type=\"byte_array\" hint=\"Dump\">0x01</property>"
                  "</properties></data>");
    }

    // Each library is a file of its own, or the system would load one of them once.
    std::vector<std::string> copies(const std::string& kind, int count) const {
        const std::string library = readFile(programFolder() + "/libcrowd_" + kind + ".so");
        std::vector<std::string> paths;
        for (int number = 0; number < count; ++number) {
            paths.push_back(folder.file(kind + std::to_string(number) + ".so"));
            writeFile(paths.back(), library);
        }
        return paths;
    }

    int crowdedHost(const std::string& order, const std::vector<std::string>& others) const {
        std::vector<std::string> arguments = {libraryPath, folder.path(), order};
        arguments.insert(arguments.end(), others.begin(), others.end());
        return ChildHost("crowded_host", arguments).exitCode();
    }

    // The number of points that the host has tried.
    void sweep(const std::string& host, const std::string& call, const std::string& thread,
               const std::string& takenKeys) const {
        const std::string name = host + " " + call + " " + thread + " " + takenKeys;
        ChildHost child(host, {libraryPath, folder.path(), call, thread, takenKeys});
        ASSERT_EQ(0, child.exitCode()) << name;
        const std::string points = readFile(folder.file("points"));
        std::printf("[  points  ] %s: %s\n", name.c_str(), points.c_str());
        EXPECT_LT(2, std::stoi(points)) << name;
    }

    const TempFolder folder;
    const std::string libraryPath = programFolder() + "/libstrata_repgenlib.so";
};

std::vector<std::string> operator+(std::vector<std::string> left,
                                   const std::vector<std::string>& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

TEST_F(LoadedLibrary, WorksBesideAHundredOthers) {
    const auto others = copies("static", 30) + copies("dynamic", 35) + copies("key", 35);
    EXPECT_EQ(0, crowdedHost("first", others));
    EXPECT_EQ(0, crowdedHost("last", others));
}

TEST_F(LoadedLibrary, NeedsNoStaticThreadStorage) {
    EXPECT_EQ(0, crowdedHost("full", copies("static", 400)));
}

// The first exception of a thread needs memory in such a host: none may be thrown.
TEST_F(LoadedLibrary, NewGeneratorWithoutMemoryInAHostInC) {
    for (const std::string keys : {"0", "40"}) {
        sweep("failing_host_in_c", "new", "main", keys);
        sweep("failing_host_in_c", "new", "other", keys);
    }
}

TEST_F(LoadedLibrary, EveryCallWithoutMemoryInAHostInCpp) {
    for (const std::string call : {"new", "report", "persist", "simulate"}) {
        for (const std::string thread : {"main", "other"})
            sweep("failing_host_in_cpp", call, thread, "0");
        sweep("failing_host_in_cpp", call, "other", "40");
    }
}

}  // namespace
}  // namespace rgen_test
