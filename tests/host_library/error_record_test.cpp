// The error record: who sets what, and when.
//
// SPDX-License-Identifier: MIT
#include <cstring>

#include "host_library/host_library_fixture.h"

namespace rgen_test {
namespace {

using ErrorRecord = HostLibraryTest;

TEST_F(ErrorRecord, IsOverwrittenByASuccess) {
    ASSERT_GT(0, rgenh_setDataDirPath(host, folder.file("missing").c_str(), &error));
    EXPECT_STRNE("", error.message);
    EXPECT_STRNE("", error.path);
    std::memset(&error.kind, 0x7F, 24);
    ASSERT_EQ(RGEN_OK, rgenh_setDataDirPath(host, folder.path().c_str(), &error));
    EXPECT_EQ(RGENH_ERROR_NONE, error.kind);
    EXPECT_EQ(RGEN_OK, error.status);
    EXPECT_EQ(0, error.systemError);
    EXPECT_EQ(0, error.argument);
    EXPECT_EQ(RGENH_NO_ENTRY, error.entry);
    EXPECT_STREQ("", error.path);
    EXPECT_STREQ("", error.message);
    EXPECT_EQ(sizeof error, error.size);
}

TEST_F(ErrorRecord, NamesStatusPathAndText) {
    const std::string missing = folder.file("missing");
    EXPECT_EQ(RGEN_E_DIR_NOT_FOUND, rgenh_setDataDirPath(host, missing.c_str(), &error));
    EXPECT_EQ(RGENH_ERROR_STATUS, error.kind);
    EXPECT_EQ(RGEN_E_DIR_NOT_FOUND, error.status);
    EXPECT_EQ(missing, error.path);
    EXPECT_EQ(missing + ": " + rgen_getStatusCodeDescription(host, RGEN_E_DIR_NOT_FOUND) +
                  " (0xC0000002 RGEN_E_DIR_NOT_FOUND)",
              error.message);
}

TEST_F(ErrorRecord, OfTooSmallASizeStaysUnchangedAndNothingIsDone) {
    const std::string other = folder.file("other");
    createFolder(other);
    for (const std::uint64_t size : {0U, 8U, RGENH_ERROR_SIZE - 1U}) {
        RgenhError small;
        std::memset(&small, 0x5A, sizeof small);
        small.size = size;
        const RgenhError before = small;
        EXPECT_EQ(RGEN_E_BAD_PARAMETER, rgenh_setDataDirPath(host, other.c_str(), &small));
        EXPECT_EQ(0, std::memcmp(&before, &small, sizeof small));
        EXPECT_EQ(nullptr, rgenh_newReportGenerator(&small));
        EXPECT_EQ(RGEN_E_BAD_PARAMETER, rgenh_freeReportGenerator(host, &small));
    }
    putTemplate(textStylesheet("still the old folder"));
    EXPECT_EQ("still the old folder", bytesOf({rgenh_textValue("v", "x")}));
}

TEST_F(ErrorRecord, OfTooSmallASizeKeepsEveryFunctionFromItsWork) {
    RgenhError small = {};
    small.size = RGENH_ERROR_SIZE - 1;
    const HostRequest request({rgenh_textValue("v", "x")});
    RgenhRequestParts parts = {};
    parts.size = sizeof parts;
    EXPECT_EQ(nullptr, rgenh_newRequest(&parts, &small));
    EXPECT_EQ(nullptr, rgenh_startReport(host, request.get(), nullptr, nullptr, &small));
    Result result;
    EXPECT_EQ(RGEN_E_BAD_PARAMETER,
              rgenh_generateReport(host, request.input(), result.get(), &small));
    EXPECT_EQ(RGEN_E_BAD_PARAMETER, rgenh_freeReportGenerator(host, &small));
    EXPECT_EQ(RGEN_E_BAD_PARAMETER, rgenh_setTranslator(host, nullptr, nullptr, 2, &small));
    EXPECT_EQ(RGEN_E_BAD_PARAMETER, rgenh_isStorable("\xFF", 1, RGENH_PLAIN, &small));
    RgenhJob* const job = rgenh_startReport(host, request.get(), nullptr, nullptr, &error);
    EXPECT_EQ(RGEN_E_BAD_PARAMETER, rgenh_waitForJob(job, 0, &small));
    EXPECT_EQ(RGEN_E_BAD_PARAMETER, rgenh_cancelJob(job, &small));
    EXPECT_EQ(RGEN_E_BAD_PARAMETER, rgenh_takeJobResult(job, result.get(), &small));
    EXPECT_EQ(std::uint64_t{RGEN_TYPE_EMPTY}, result.record().type);
    EXPECT_EQ(RGENH_ERROR_NONE, small.kind);
    rgenh_freeJob(job);
}

TEST_F(ErrorRecord, OfALaterVersionIsAccepted) {
    error.size = sizeof error + 100;
    EXPECT_EQ(RGEN_E_DIR_NOT_FOUND, rgenh_setDataDirPath(host, folder.file("no").c_str(), &error));
    EXPECT_EQ(RGENH_ERROR_STATUS, error.kind);
    EXPECT_EQ(sizeof error + 100, error.size);
}

TEST_F(ErrorRecord, MayBeNull) {
    EXPECT_EQ(RGEN_E_DIR_NOT_FOUND,
              rgenh_setDataDirPath(host, folder.file("missing").c_str(), nullptr));
    EXPECT_EQ(RGEN_E_UNKNOWN, rgenh_setDataDirPath(host, "\xFF", nullptr));
    EXPECT_EQ(RGEN_E_BAD_PARAMETER, rgenh_setDataDirPath(nullptr, "x", nullptr));
    RgenReportGenerator* const fresh = rgenh_newReportGenerator(nullptr);
    Result result;
    EXPECT_EQ(RGEN_E_UNKNOWN, rgenh_generateReport(fresh, input.get(), result.get(), nullptr));
    EXPECT_EQ(RGEN_OK, rgenh_freeReportGenerator(fresh, nullptr));
}

TEST_F(ErrorRecord, OfAnEmptyPathBeginsWithTheText) {
    EXPECT_EQ(RGEN_E_DIR_NOT_FOUND, rgenh_setDataDirPath(host, "", &error));
    EXPECT_EQ(std::string(rgen_getStatusCodeDescription(host, RGEN_E_DIR_NOT_FOUND)) +
                  " (0xC0000002 RGEN_E_DIR_NOT_FOUND)",
              error.message);
}

TEST_F(ErrorRecord, CutsLongTextsBetweenTwoCharacters) {
    std::string path = folder.file("");
    while (path.size() < RGENH_PATH_SIZE + 10)
        path += "\xE2\x82\xAC";
    ASSERT_GT(0, rgenh_setDataDirPath(host, path.c_str(), &error));
    const std::string cut = error.path;
    EXPECT_LE(std::size_t{RGENH_PATH_SIZE - 4}, cut.size());
    EXPECT_EQ(path.substr(0, cut.size()), cut);
    EXPECT_EQ('\xAC', cut.back());
    EXPECT_GT(std::size_t{RGENH_MESSAGE_SIZE}, std::strlen(error.message));
}

TEST_F(ErrorRecord, HasNoLineBreaksInItsMessage) {
    EXPECT_GT(0, rgenh_setDataDirPath(host, "no\nsuch\x1B[31m\x7F", &error));
    EXPECT_EQ(std::string::npos, std::string(error.message).find_first_of("\n\x1B\x7F"));
    EXPECT_STREQ("no\nsuch\x1B[31m\x7F", error.path);
}

TEST_F(ErrorRecord, HasRoomForTheReasonOfALongPath) {
    const std::string path = folder.file(std::string(RGENH_MESSAGE_SIZE, 'x'));
    ASSERT_GT(0, rgenh_setDataDirPath(host, path.c_str(), &error));
    const std::string message = error.message;
    const std::size_t reason = message.find("...: ");
    ASSERT_NE(std::string::npos, reason) << message;
    EXPECT_EQ(path.substr(0, reason), message.substr(0, reason));
    EXPECT_LT(reason + 10, message.size());
}

TEST_F(ErrorRecord, HasUtf8OnlyAndOneLine) {
    InputParams request;
    request.guid(guidFromText("ffffffff-4e5f-6071-8293-a4b5c6d7e8f9"));
    request.variants().addString("v", "x");
    // Not a path in this mode, so the library does not look at it.
    request.output(RGEN_OUTPUT_BYTES, "a\xFF");
    Result result;
    EXPECT_GT(0, rgenh_generateReport(host, request.get(), result.get(), &error));
    EXPECT_STREQ("", error.path);
    EXPECT_GT(0, rgenh_setDataDirPath(host, "a\xC2\x85\xE2\x80\xA8\xE2\x80\xA9\x7Fz", &error));
    EXPECT_EQ(0U, std::string(error.message).find("a    z: ")) << error.message;
}

TEST_F(ErrorRecord, HasTheSizeThatTheHeaderSays) {
    EXPECT_EQ(std::size_t{RGENH_ERROR_SIZE}, sizeof(RgenhError));
    EXPECT_EQ(std::size_t{56}, sizeof(RgenhValue));
}

}  // namespace
}  // namespace rgen_test
