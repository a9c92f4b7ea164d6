// The data directory path on Linux: only "/" separates.
//
// SPDX-License-Identifier: MIT
#include "store/data_directory.h"
#include "unit/unit_fixture.h"

namespace rgen_test {
namespace {

class DataDirectoryPosixTest : public UnitTest {
protected:
    // The data directory path made of a folder inside the case's own one.
    std::string formed(const std::string& name) {
        createFolder(folder.file(name));
        EXPECT_EQ(statusHex(RGEN_OK), statusHex(rgen::setDataDir(generator, folder.file(name))));
        return generator.dataDirPath;
    }
};

TEST_F(DataDirectoryPosixTest, BackslashIsAnOrdinaryCharacter) {
    EXPECT_EQ(folder.path() + "/a\\b/.rgen/", formed("a\\b"));
    EXPECT_EQ(folder.path() + "/a\\/.rgen/", formed("a\\"));
}

TEST_F(DataDirectoryPosixTest, PathWithALineBreakNeverEndsInASeparator) {
    EXPECT_EQ(folder.path() + "/a\nb//.rgen/", formed("a\nb/"));
    EXPECT_EQ(folder.path() + "/a\rb//.rgen/", formed("a\rb/"));
    EXPECT_EQ(folder.path() + "/a\n/.rgen/", formed("a\n"));
}

TEST_F(DataDirectoryPosixTest, RelativePathStaysRelative) {
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(rgen::setDataDir(generator, ".")));
    EXPECT_EQ("./.rgen/", generator.dataDirPath);
}

}  // namespace
}  // namespace rgen_test
