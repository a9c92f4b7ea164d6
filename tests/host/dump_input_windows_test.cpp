// A dump or persistent data file that another handle holds open without sharing.
//
// SPDX-License-Identifier: MIT
#include <windows.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "strata_repgenlib/rgen.h"
#include "support/host_records.h"
#include "support/status_printer.h"
#include "support/temp_folder.h"

namespace {

using rgen_test::Generator;
using rgen_test::InputParams;
using rgen_test::statusHex;
using rgen_test::TempFolder;

// Holds a file open so that no other handle can open or remove it.
class HeldFile {
public:
    explicit HeldFile(const std::string& path)
        : handle_(CreateFileW(std::filesystem::u8path(path).c_str(), GENERIC_READ, 0, nullptr,
                              OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)) {
        EXPECT_NE(INVALID_HANDLE_VALUE, handle_);
    }
    ~HeldFile() { CloseHandle(handle_); }
    HeldFile(const HeldFile&) = delete;
    HeldFile& operator=(const HeldFile&) = delete;

private:
    HANDLE handle_;
};

TEST(HeldOpen, ADumpFileCannotBeReplaced) {
    const TempFolder folder;
    const std::string path = folder.file("dump.xml");
    rgen_test::writeFile(path, "old");
    const Generator generator;
    InputParams input;
    {
        const HeldFile held(path);
        EXPECT_EQ(statusHex(RGEN_E_DELETE_DUMP), statusHex(rgen_dumpRawInputDataToFile(
                                                     generator.get(), input.get(), path.c_str())));
    }
    EXPECT_EQ("old", rgen_test::readFile(path));
}

TEST(HeldOpen, APersistentDataFileCannotBeReplaced) {
    const TempFolder folder;
    const Generator generator(folder.path());
    const RgenGuid guid = rgen_test::defaultGuid();
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(rgen_test::storePairs(generator, guid, {{"a", "1"}})));
    {
        const HeldFile held(folder.dataFile("persist_data.xml"));
        EXPECT_EQ(statusHex(RGEN_E_DELETE_PERSIST),
                  statusHex(rgen_test::storePairs(generator, guid, {{"a", "2"}})));
        EXPECT_EQ(statusHex(RGEN_E_OPEN_PERSIST),
                  statusHex(rgen_test::persistentData(generator, guid).status));
    }
    EXPECT_EQ((rgen_test::TextMap{{"a", "1"}}), rgen_test::persistentData(generator, guid).pairs);
}

TEST(HeldOpen, AConfigurationCannotBeRead) {
    const TempFolder folder;
    const Generator generator(folder.path());
    const RgenGuid guid = rgen_test::defaultGuid();
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(rgen_test::storePairs(generator, guid, {{"a", "1"}})));
    const HeldFile held(folder.dataFile("config.xml"));
    EXPECT_EQ(statusHex(RGEN_E_OPEN_CONFIG),
              statusHex(rgen_test::persistentData(generator, guid).status));
}

TEST(DumpRawInputDataPath, BothSeparatorsNameTheSameFile) {
    const TempFolder folder;
    const Generator generator;
    InputParams input;
    for (const char* name : {"/a%20b.xml", "\\a%20b.xml"}) {
        const std::string path = folder.path() + name;
        EXPECT_EQ(statusHex(RGEN_OK), statusHex(rgen_dumpRawInputDataToFile(
                                          generator.get(), input.get(), path.c_str())));
        EXPECT_EQ(std::vector<std::string>{"a%20b.xml"}, rgen_test::namesIn(folder.path()));
    }
}

}  // namespace
