// Hosts in C and C++, with a C++ runtime of their own or without one, survive exceptions inside the
// libraries.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>

#include "support/report_fixture.h"
#include "support/test_platform.h"

namespace rgen_test {
namespace {

class HostPrograms : public ::testing::Test {
protected:
    HostPrograms() {
        writeFile(folder.dataFile("config.xml"),
                  "<config><reportTypes><type guid=\"deadbabe-0000-0000-0000-000000000000\">"
                  "<persistDataFile>data.xml</persistDataFile>"
                  "<reportTypeFile>type.xsl</reportTypeFile></type></reportTypes></config>");
        writeFile(folder.dataFile("templates/html/type.xsl"), textStylesheet(valueOf("v")));
    }

    int run(const std::string& program) { return ChildHost(program, {folder.path()}).exitCode(); }

    int load(const std::string& program) {
        const std::string place = programFolder() + nativePath("/");
        return ChildHost(program, {folder.path(), place + RGEN_TEST_HOST_LIBRARY,
                                   place + RGEN_TEST_FIRST_LIBRARY})
            .exitCode();
    }

    const TempFolder folder;
};

TEST_F(HostPrograms, InCSurvive) {
    EXPECT_EQ(0, run("host_in_c"));
}

TEST_F(HostPrograms, InCppKeepTheirExceptions) {
    for (const std::string runtime : {"shared", "static", "whole"}) {
        EXPECT_EQ(0, run("host_in_cpp_" + runtime)) << runtime;
    }
}

TEST_F(HostPrograms, ThatLoadTheLibrariesKeepTheirExceptions) {
    for (const std::string runtime : {"shared", "static", "whole"}) {
        EXPECT_EQ(0, load("loading_host_" + runtime)) << runtime;
    }
}

TEST_F(HostPrograms, ThatAreTwoInOneProcessDoNotDisturbEachOther) {
    const std::string place = programFolder() + nativePath("/");
    ChildHost hosts("two_hosts",
                    {folder.path(), place + RGEN_TEST_PLUG_IN, place + RGEN_TEST_OTHER_PLUG_IN});
    EXPECT_EQ(0, hosts.exitCode());
}

}  // namespace
}  // namespace rgen_test
