// Symbolic links that lead to themselves. On Windows they need rights that programs rarely have.
//
// SPDX-License-Identifier: MIT
#include <filesystem>

#include "host_library/ordinary_failures_fixture.h"

namespace rgen_test {
namespace {

TEST_F(OrdinaryFailures, OfCircularLinksAreErrors) {
    const auto makeCircle = [](const std::string& path) {
        std::filesystem::create_symlink(std::filesystem::path(path).filename(), path);
    };
    const std::string circle = folder.file("circle");
    makeCircle(circle);
    const std::string parent = folder.file("looped");
    createFolder(parent);
    makeCircle(parent + nativePath("/.rgen"));
    makeCircle(folder.dataFile("templates/html/loop.xsl"));
    makeCircle(folder.dataFile("loop.xml"));
    RgenCAnsiStringPairSet pairs = {};
    RgenCVariantSet set = {};
    EXPECT_GT(0, rgenh_setDataDirPath(host, circle.c_str(), &error));
    EXPECT_GT(0, generateIn(parent));
    EXPECT_GT(0, generateInto("html", circle));
    putTemplateName("loop.xsl");
    EXPECT_GT(0, generate());
    EXPECT_EQ(RGENH_ERROR_FILE_SYSTEM, error.kind);
    EXPECT_EQ(folder.dataFile("templates/html/loop.xsl"), error.path);
    putTemplateName("test_stylesheet.xsl", "loop.xml");
    EXPECT_GT(0, rgenh_getPersistentData(host, &guid, &pairs, &error));
    EXPECT_GT(0,
              rgenh_setPersistentDataFromAnsiStringPairSet(host, &guid, PairSet().get(), &error));
    EXPECT_GE(0, rgenh_getSimulatedRawDataFromFile(host, circle.c_str(), &set, &error));
    restore();
}

}  // namespace
}  // namespace rgen_test
