// rgen_setDataDirPath on systems where "/" is the one separator.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "strata_repgenlib/rgen.h"
#include "support/host_records.h"
#include "support/status_printer.h"
#include "support/temp_folder.h"

namespace {

using rgen_test::Generator;
using rgen_test::persistentData;
using rgen_test::statusHex;
using rgen_test::TempFolder;

TEST(SetDataDirPath, TheBackslashIsAnOrdinaryCharacter) {
    const TempFolder folder;
    for (const char* name : {"a\\b", "ends\\", "\\starts"}) {
        SCOPED_TRACE(name);
        const std::string parent = folder.file(name);
        rgen_test::createFolder(parent);
        const Generator generator(parent);
        EXPECT_EQ(statusHex(RGEN_E_OPEN_PERSIST),
                  statusHex(persistentData(generator, rgen_test::defaultGuid()).status));
        EXPECT_TRUE(rgen_test::exists(parent + "/.rgen/config.xml"));
    }
    EXPECT_EQ((std::vector<std::string>{"\\starts", "a\\b", "ends\\"}),
              rgen_test::namesIn(folder.path()));
}

TEST(SetDataDirPath, TakesALineBreak) {
    const TempFolder folder;
    const std::string parent = folder.file("two\nlines");
    rgen_test::createFolder(parent);
    for (const char* ending : {"", "/"}) {
        const Generator generator(parent + ending);
        EXPECT_EQ(statusHex(RGEN_E_OPEN_PERSIST),
                  statusHex(persistentData(generator, rgen_test::defaultGuid()).status));
    }
    EXPECT_TRUE(rgen_test::exists(parent + "/.rgen/config.xml"));
}

TEST(SetDataDirPath, RaisesOnANameThatTheFileSystemRefuses) {
    const TempFolder folder;
    const Generator generator;
    const std::string longName(300, 'n');
    EXPECT_THROW(rgen_setDataDirPath(generator.get(), folder.file(longName).c_str()),
                 std::runtime_error);
}

TEST(SetDataDirPath, TakesAPathOfManyThousandCharacters) {
    const TempFolder folder;
    std::string path = folder.path();
    while (path.size() < 3500) {
        path += "/.";
    }
    const Generator generator(path);
    EXPECT_EQ(statusHex(RGEN_E_OPEN_PERSIST),
              statusHex(persistentData(generator, rgen_test::defaultGuid()).status));
    EXPECT_TRUE(rgen_test::exists(folder.dataFile("config.xml")));
}

}  // namespace
