// rgen_setDataDirPath: what it accepts, what it stores, and a generator that has none.
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
#include "support/working_folder.h"

namespace {

using rgen_test::Generator;
using rgen_test::InputParams;
using rgen_test::persistentData;
using rgen_test::Result;
using rgen_test::statusHex;
using rgen_test::TempFolder;

RgenStatus setPath(const Generator& generator, const std::string& path) {
    return rgen_setDataDirPath(generator.get(), path.c_str());
}

// The first call that needs the configuration; a fresh data directory has no persistent data.
void expectFreshDataDirectory(const Generator& generator) {
    EXPECT_EQ(statusHex(RGEN_E_OPEN_PERSIST),
              statusHex(persistentData(generator, rgen_test::defaultGuid()).status));
}

TEST(SetDataDirPath, CreatesNothing) {
    const TempFolder folder;
    const Generator generator;
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(setPath(generator, folder.path())));
    EXPECT_TRUE(rgen_test::namesIn(folder.path()).empty());
}

TEST(SetDataDirPath, TheDataDirectoryIsAFolderInsideThePath) {
    const TempFolder folder;
    const Generator generator;
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(setPath(generator, folder.path())));
    expectFreshDataDirectory(generator);
    EXPECT_EQ(std::vector<std::string>{".rgen"}, rgen_test::namesIn(folder.path()));
    EXPECT_EQ(std::vector<std::string>{"config.xml"}, rgen_test::namesIn(folder.dataDir()));
}

TEST(SetDataDirPath, ASeparatorAtTheEndChangesNothing) {
    const TempFolder folder;
    const Generator generator;
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(setPath(generator, folder.file(""))));
    expectFreshDataDirectory(generator);
    EXPECT_EQ(std::vector<std::string>{".rgen"}, rgen_test::namesIn(folder.path()));
}

TEST(SetDataDirPath, AMissingPathKeepsThePreviousOne) {
    const TempFolder folder;
    const Generator generator(folder.path());
    EXPECT_EQ(statusHex(RGEN_E_DIR_NOT_FOUND), statusHex(setPath(generator, folder.file("none"))));
    expectFreshDataDirectory(generator);
    EXPECT_EQ(std::vector<std::string>{".rgen"}, rgen_test::namesIn(folder.path()));
}

TEST(SetDataDirPath, AnEmptyPathNamesNothing) {
    const TempFolder folder;
    const Generator generator(folder.path());
    EXPECT_EQ(statusHex(RGEN_E_DIR_NOT_FOUND), statusHex(setPath(generator, "")));
    expectFreshDataDirectory(generator);
    EXPECT_TRUE(rgen_test::exists(folder.dataDir()));
}

TEST(SetDataDirPath, ASecondPathReplacesTheFirst) {
    const TempFolder first;
    const TempFolder second;
    const Generator generator(first.path());
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(setPath(generator, second.path())));
    expectFreshDataDirectory(generator);
    EXPECT_FALSE(rgen_test::exists(first.dataDir()));
    EXPECT_TRUE(rgen_test::exists(second.dataDir()));
}

TEST(SetDataDirPath, APathThatEndsInTheDataDirectoryGetsASecondLevel) {
    const TempFolder folder;
    rgen_test::createFolder(folder.dataDir());
    const Generator generator;
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(setPath(generator, folder.dataDir())));
    expectFreshDataDirectory(generator);
    EXPECT_EQ(std::vector<std::string>{".rgen"}, rgen_test::namesIn(folder.dataDir()));
    EXPECT_TRUE(rgen_test::exists(folder.file(".rgen/.rgen/config.xml")));
}

TEST(SetDataDirPath, CopiesThePath) {
    const TempFolder folder;
    const Generator generator;
    std::string path = folder.path();
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(setPath(generator, path)));
    path.assign(path.size(), 'x');
    expectFreshDataDirectory(generator);
    EXPECT_TRUE(rgen_test::exists(folder.dataDir()));
}

TEST(SetDataDirPath, TakesARelativePath) {
    const TempFolder folder;
    rgen_test::createFolder(folder.file("inside"));
    const rgen_test::WorkingFolder current(folder.path());
    const Generator generator;
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(setPath(generator, "inside")));
    expectFreshDataDirectory(generator);
    EXPECT_TRUE(rgen_test::exists(folder.file("inside/.rgen/config.xml")));
}

TEST(SetDataDirPath, TakesBlanksAndLettersOfOtherScripts) {
    // "report" in Russian, a letter outside the basic plane, a blank and a percent sign.
    const TempFolder folder(" \xD0\xBE\xD1\x82\xD1\x87\xD1\x91\xD1\x82 \xF0\x9F\x98\x80 %20");
    const Generator generator;
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(setPath(generator, folder.path())));
    expectFreshDataDirectory(generator);
    EXPECT_EQ(std::vector<std::string>{"config.xml"}, rgen_test::namesIn(folder.dataDir()));
    EXPECT_EQ(statusHex(RGEN_OK),
              statusHex(rgen_test::storePairs(generator, rgen_test::defaultGuid(), {{"a", "b"}})));
    EXPECT_EQ((rgen_test::TextMap{{"a", "b"}}),
              persistentData(generator, rgen_test::defaultGuid()).pairs);
}

TEST(SetDataDirPath, AcceptsAnExistingRegularFile) {
    const TempFolder folder;
    const std::string file = folder.file("regular");
    rgen_test::writeFile(file, "content");
    const Generator generator;
    ASSERT_EQ(statusHex(RGEN_OK), statusHex(setPath(generator, file)));
    // What fails later is the file system's business: the configuration status or its exception.
    try {
        EXPECT_EQ(statusHex(RGEN_E_OPEN_CONFIG),
                  statusHex(persistentData(generator, rgen_test::defaultGuid()).status));
    } catch (const std::runtime_error&) {
        EXPECT_TRUE(rgen_test::exists(file));
    }
    EXPECT_EQ("content", rgen_test::readFile(file));
}

TEST(SetDataDirPath, InvalidUtf8RaisesAndKeepsThePreviousPath) {
    const TempFolder folder;
    const Generator generator(folder.path());
    const std::string invalid[] = {"\xFF",         "\xC3",     "\xE2\x82",
                                   "\xED\xA0\x80", "\xC0\x80", "\xF4\x90\x80\x80",
                                   "\xF0\x9F\x98", "\x80"};
    for (const std::string& bytes : invalid) {
        EXPECT_THROW(setPath(generator, folder.file(bytes)), std::range_error);
        EXPECT_THROW(setPath(generator, folder.file("a" + bytes + "b")), std::range_error);
    }
    expectFreshDataDirectory(generator);
    EXPECT_EQ(std::vector<std::string>{".rgen"}, rgen_test::namesIn(folder.path()));
}

// ---- No data directory ----------------------------------------------------------------------

TEST(WithoutDataDirPath, EachOperationRaisesAndNothingStaysLocked) {
    const TempFolder folder;
    const rgen_test::WorkingFolder current(folder.path());
    const Generator generator;
    const RgenGuid guid = rgen_test::defaultGuid();
    rgen_test::PairSet pairs;
    InputParams input;
    input.variants().addInt64("n", 1);
    Result result;
    for (int round = 0; round < 2; ++round) {
        EXPECT_THROW(rgen_getPersistentData(generator.get(), &guid, nullptr), std::runtime_error);
        EXPECT_THROW(
            rgen_setPersistentDataFromAnsiStringPairSet(generator.get(), &guid, pairs.get()),
            std::runtime_error);
        EXPECT_THROW(
            rgen_setPersistentDataFromCVariantSet(generator.get(), &guid, input.variants().get()),
            std::runtime_error);
        EXPECT_THROW(rgen_generateReport(generator.get(), input.get(), result.get()),
                     std::runtime_error);
    }
    EXPECT_TRUE(rgen_test::namesIn(folder.path()).empty());
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(setPath(generator, folder.path())));
    expectFreshDataDirectory(generator);
}

TEST(WithoutDataDirPath, DumpAndSimulationWork) {
    const TempFolder folder;
    const Generator generator;
    InputParams input;
    input.variants().addInt64("n", 1);
    EXPECT_EQ(statusHex(RGEN_OK),
              statusHex(rgen_dumpRawInputDataToFile(generator.get(), input.get(),
                                                    folder.file("dump.xml").c_str())));
    EXPECT_EQ(0, rgen_test::simulatedData(generator, folder.file("dump.xml")).result);
}

// ---- The directory vanishes -----------------------------------------------------------------

TEST(DataDirectory, IsCreatedAnewWhenItVanished) {
    const TempFolder folder;
    const Generator generator(folder.path());
    expectFreshDataDirectory(generator);
    rgen_test::removeAll(folder.dataDir());
    expectFreshDataDirectory(generator);
    EXPECT_EQ(std::vector<std::string>{"config.xml"}, rgen_test::namesIn(folder.dataDir()));
}

TEST(DataDirectory, RaisesWhenItsParentVanished) {
    const TempFolder folder;
    const std::string parent = folder.file("parent");
    rgen_test::createFolder(parent);
    const Generator generator(parent);
    rgen_test::removeAll(parent);
    const RgenGuid guid = rgen_test::defaultGuid();
    EXPECT_THROW(rgen_getPersistentData(generator.get(), &guid, nullptr), std::runtime_error);
    rgen_test::createFolder(parent);
    expectFreshDataDirectory(generator);
}

}  // namespace
