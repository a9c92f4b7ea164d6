// The version of a loaded library is that of the code in memory, also when its file has been
// removed since, as updates do. Windows does not remove files of loaded libraries.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "abi/library_loader.h"
#include "strata_repgenlib/rgen_host.h"
#include "support/temp_folder.h"

namespace rgen_test {
namespace {

TEST(LoadedHostLibrary, KnowsItsVersionWhenItsFileIsRemoved) {
    const TempFolder folder;
    const std::string copy = folder.file("copy.so");
    std::filesystem::copy_file(RGEN_TEST_HOST_LIBRARY, copy);
    // The copy does not find it in its own folder.
    const LoadedLibrary first;
    const LoadedLibrary library(copy.c_str());
    ASSERT_TRUE(library.isLoaded());
    std::filesystem::remove(copy);
    RgenhVersions versions = {};
    versions.size = sizeof versions;
    const auto getVersions = library.function<decltype(&rgenh_getVersions)>("rgenh_getVersions");
    EXPECT_EQ(RGEN_OK, getVersions(&versions, nullptr));
    EXPECT_EQ(copy, versions.hostPath);
    EXPECT_STREQ(versions.library, versions.host);
    EXPECT_STRNE("unknown", versions.host);
}

}  // namespace
}  // namespace rgen_test
