// Texts about statuses, and the versions of the loaded libraries.
//
// SPDX-License-Identifier: MIT
#include "host_library/host_library_fixture.h"
#include "support/every_status.h"
#include "support/test_platform.h"

namespace rgen_test {
namespace {

TEST(StatusTexts, OfEveryStatusAreComplete) {
    std::uint64_t index = 0;
    for (const RgenDescribedStatus& expected : everyStatus) {
        SCOPED_TRACE(expected.text);
        RgenStatus status = 1;
        ASSERT_EQ(1, rgenh_getStatusAt(index++, &status));
        EXPECT_EQ(statusHex(expected.status), statusHex(status));
        EXPECT_STREQ(expected.text, rgenh_getStatusText(status));
        EXPECT_STREQ(expected.name, rgenh_getStatusName(status));
        ASSERT_NE(nullptr, rgenh_getStatusCause(status, 0));
        EXPECT_STRNE("", rgenh_getStatusCause(status, 0));
        EXPECT_EQ(nullptr, rgenh_getStatusCause(status, 3));
        const std::string next = rgenh_getStatusNextStep(status);
        ASSERT_FALSE(next.empty());
        EXPECT_EQ('.', next.back());
    }
    RgenStatus unchanged = 7;
    EXPECT_EQ(0, rgenh_getStatusAt(index, &unchanged));
    EXPECT_EQ(0, rgenh_getStatusAt(UINT64_MAX, &unchanged));
    EXPECT_EQ(7, unchanged);
    EXPECT_EQ(0, rgenh_getStatusAt(0, nullptr));
}

TEST(StatusTexts, OfOtherNumbersAreThoseOfTheLibrary) {
    EXPECT_STREQ("Unknown code.", rgenh_getStatusText(5));
    EXPECT_STREQ("Undescribed error", rgenh_getStatusText(-5));
    EXPECT_STREQ("", rgenh_getStatusName(5));
    EXPECT_EQ(nullptr, rgenh_getStatusCause(5, 0));
    EXPECT_EQ(nullptr, rgenh_getStatusCause(RGEN_OK, UINT64_MAX));
    EXPECT_STREQ("", rgenh_getStatusNextStep(5));
    EXPECT_STREQ("RGEN_E_UNKNOWN", rgenh_getStatusName(RGEN_E_UNKNOWN));
}

TEST(Versions, AreThoseOfTheLoadedFiles) {
    RgenhVersions versions = {};
    versions.size = sizeof versions;
    ASSERT_EQ(RGEN_OK, rgenh_getVersions(&versions, nullptr));
    const std::string expected = std::to_string(RGEN_VERSION_MAJOR) + "." +
                                 std::to_string(RGEN_VERSION_MINOR) + "." +
                                 std::to_string(RGEN_VERSION_PATCH);
    EXPECT_EQ(expected, versions.library);
    EXPECT_EQ(expected, versions.host);
    EXPECT_TRUE(exists(versions.libraryPath)) << versions.libraryPath;
    EXPECT_TRUE(exists(versions.hostPath)) << versions.hostPath;
    EXPECT_STRNE(versions.libraryPath, versions.hostPath);
    EXPECT_EQ(sizeof versions, versions.size);
}

TEST(Versions, DoNotDependOnHowTheHostIsLinked) {
    EXPECT_EQ(0, ChildHost("host_at_fixed_address", {}).exitCode());
}

TEST(Versions, OfTooSmallARecordAreRefused) {
    RgenhError error = {};
    error.size = sizeof error;
    RgenhVersions versions = {};
    versions.size = sizeof versions - 1;
    EXPECT_EQ(RGEN_E_BAD_PARAMETER, rgenh_getVersions(&versions, &error));
    EXPECT_EQ(RGENH_ERROR_ARGUMENT, error.kind);
    EXPECT_STREQ("", versions.library);
}

}  // namespace
}  // namespace rgen_test
