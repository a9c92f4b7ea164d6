// The data directory path on Windows: "/" becomes "\".
//
// SPDX-License-Identifier: MIT
#include <algorithm>
#include <string>

#include "store/data_directory.h"
#include "unit/unit_fixture.h"

namespace rgen_test {
namespace {

class DataDirectoryWindowsTest : public UnitTest {};

TEST_F(DataDirectoryWindowsTest, EverySlashBecomesABackslash) {
    std::string slashes = folder.path();
    std::replace(slashes.begin(), slashes.end(), '\\', '/');
    for (const std::string& given : {slashes, slashes + "/", folder.path() + "/"}) {
        EXPECT_EQ(statusHex(RGEN_OK), statusHex(rgen::setDataDir(generator, given)));
        EXPECT_EQ(folder.path() + "\\.rgen\\", generator.dataDirPath) << given;
    }
}

TEST_F(DataDirectoryWindowsTest, LoadUsesTheFormedPath) {
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(rgen::setDataDir(generator, folder.path())));
    rgen::ReportTypeEntry entry;
    EXPECT_EQ(statusHex(RGEN_OK),
              statusHex(rgen::loadReportType(generator, rgen::defaultReportTypeGuid, entry)));
    EXPECT_TRUE(exists(generator.dataDirPath + "config.xml"));
    EXPECT_EQ(std::string::npos, generator.dataDirPath.find('/'));
}

}  // namespace
}  // namespace rgen_test
