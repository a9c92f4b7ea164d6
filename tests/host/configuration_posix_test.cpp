// Configurations that cannot be written or opened, as far as a POSIX file system can bring it
// about.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "strata_repgenlib/rgen.h"
#include "support/host_records.h"
#include "support/status_printer.h"
#include "support/temp_folder.h"

namespace {

using rgen_test::Generator;
using rgen_test::persistentData;
using rgen_test::statusHex;
using rgen_test::TempFolder;

TEST(DefaultConfiguration, CannotBeWrittenThroughALinkIntoNowhere) {
    const TempFolder folder;
    rgen_test::createFolder(folder.dataDir());
    std::filesystem::create_symlink(folder.file("none/config.xml"), folder.dataFile("config.xml"));
    const Generator generator(folder.path());
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(statusHex(RGEN_E_CREATE_CONFIG),
                  statusHex(persistentData(generator, rgen_test::defaultGuid()).status));
    }
    EXPECT_FALSE(rgen_test::exists(folder.file("none")));
}

TEST(DefaultConfiguration, ThatCannotBeWrittenFailsEveryOperation) {
    const TempFolder folder;
    rgen_test::createFolder(folder.dataDir());
    std::filesystem::create_symlink(folder.file("none/config.xml"), folder.dataFile("config.xml"));
    const Generator generator(folder.path());
    const RgenGuid guid = rgen_test::defaultGuid();
    rgen_test::InputParams input;
    input.variants().addInt64("n", 1);
    rgen_test::Result result;
    EXPECT_EQ(statusHex(RGEN_E_CREATE_CONFIG),
              statusHex(rgen_test::storePairs(generator, guid, {{"a", "b"}})));
    EXPECT_EQ(statusHex(RGEN_E_CREATE_CONFIG),
              statusHex(rgen_setPersistentDataFromCVariantSet(generator.get(), &guid,
                                                              input.variants().get())));
    EXPECT_EQ(statusHex(RGEN_E_CREATE_CONFIG),
              statusHex(rgen_generateReport(generator.get(), input.get(), result.get())));
}

}  // namespace
