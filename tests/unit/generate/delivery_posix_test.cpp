// Delivery on Linux: no descriptor stays open, and devices, pipes and links as output paths.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <stdexcept>
#include <string>

#include "generate/delivery.h"
#include "support/fault_injection.h"
#include "support/test_platform.h"
#include "unit/unit_fixture.h"

namespace rgen_test {
namespace {

class DeliverPosixTest : public UnitTest {
protected:
    std::string deliver(std::uint64_t mode, const std::string& path) {
        rgen::InputParams request = {};
        request.outputFormat = "html";
        request.outputMode = mode;
        request.outputPath = path;
        return statusHex(
            rgen::deliver(generator, request, {'a', 'b', 'c', 'd'}, *source.getToken(), result));
    }

    rgen::sync::CancellationTokenSource source;
    rgen::Variant result;
};

TEST_F(DeliverPosixTest, EveryFailureOfHandleModeClosesTheDescriptor) {
    const long before = openHandles();
    {
        const FailingCall failure(Call::WriteFile);
        EXPECT_EQ(statusHex(RGEN_E_WRITE_OUTPUT), deliver(1, folder.file("out")));
    }
    {
        const FailingCall rest(Call::WriteFile);
        const FailingCall half(Call::WriteFileShort);
        EXPECT_EQ(statusHex(RGEN_E_WRITE_ALL_OUTPUT), deliver(1, folder.file("out")));
    }
    EXPECT_EQ(statusHex(RGEN_E_CREATE_OUTPUT), deliver(1, folder.path()));
    EXPECT_EQ(statusHex(RGEN_E_WRITE_OUTPUT), deliver(1, "/dev/full"));
    EXPECT_TRUE(exists("/dev/full"));
    EXPECT_EQ(before, openHandles());
    EXPECT_FALSE(result.value.hasValue);
    EXPECT_TRUE(namesIn(folder.path()).empty());
}

TEST_F(DeliverPosixTest, HandleModeGivesADescriptorWithTheBytes) {
    ASSERT_EQ(statusHex(RGEN_OK), deliver(1, folder.file("out")));
    EXPECT_TRUE(namesIn(folder.path()).empty());
    const int descriptor =
        static_cast<int>(reinterpret_cast<std::intptr_t>(result.value.as<void*>()));
    char bytes[8] = {};
    EXPECT_EQ(4, pread(descriptor, bytes, sizeof bytes, 0));
    EXPECT_STREQ("abcd", bytes);
    close(descriptor);
}

TEST_F(DeliverPosixTest, DevicesAndPipesAreNoOutputFiles) {
    ASSERT_EQ(0, mkfifo(folder.file("pipe").c_str(), S_IRUSR | S_IWUSR));
    for (const std::string& path : {std::string("/dev/null"), folder.file("pipe")}) {
        EXPECT_EQ(statusHex(RGEN_E_OVERWRITE_OUTPUT), deliver(0, path)) << path;
        EXPECT_TRUE(exists(path)) << path;
    }
}

TEST_F(DeliverPosixTest, LinkToAFolderIsNotOverwritten) {
    createFolder(folder.file("target"));
    ASSERT_EQ(0, symlink("target", folder.file("link").c_str()));
    EXPECT_EQ(statusHex(RGEN_E_OVERWRITE_OUTPUT), deliver(0, folder.file("link")));
    EXPECT_EQ(2U, namesIn(folder.path()).size());
}

TEST_F(DeliverPosixTest, InvalidUtf8RaisesInHandleMode) {
    EXPECT_THROW(deliver(1, folder.file("a\xFF")), std::range_error);
    EXPECT_TRUE(namesIn(folder.path()).empty());
}

}  // namespace
}  // namespace rgen_test
