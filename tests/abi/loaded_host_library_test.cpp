// The host library as a host without its import library uses it: loaded by the name of its file
// alone, with the first library from the same folder, and unloaded again after jobs have run.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string>

#include "abi/library_loader.h"
#include "strata_repgenlib/rgen_host.h"
#include "support/process_figures.h"
#include "support/temp_folder.h"
#include "support/test_platform.h"

namespace rgen_test {
namespace {

constexpr const char* const hostLibrary = RGEN_TEST_HOST_LIBRARY;

/// The functions that the cases call.
struct HostFunctions {
    explicit HostFunctions(const LoadedLibrary& library)
        : newGenerator(library.function<decltype(newGenerator)>("rgenh_newReportGenerator")),
          freeGenerator(library.function<decltype(freeGenerator)>("rgenh_freeReportGenerator")),
          setDataDirPath(library.function<decltype(setDataDirPath)>("rgenh_setDataDirPath")),
          newRequest(library.function<decltype(newRequest)>("rgenh_newRequest")),
          freeRequest(library.function<decltype(freeRequest)>("rgenh_freeRequest")),
          startReport(library.function<decltype(startReport)>("rgenh_startReport")),
          takeJobResult(library.function<decltype(takeJobResult)>("rgenh_takeJobResult")),
          freeJob(library.function<decltype(freeJob)>("rgenh_freeJob")),
          getVersions(library.function<decltype(getVersions)>("rgenh_getVersions")) {}

    decltype(&rgenh_newReportGenerator) newGenerator;
    decltype(&rgenh_freeReportGenerator) freeGenerator;
    decltype(&rgenh_setDataDirPath) setDataDirPath;
    decltype(&rgenh_newRequest) newRequest;
    decltype(&rgenh_freeRequest) freeRequest;
    decltype(&rgenh_startReport) startReport;
    decltype(&rgenh_takeJobResult) takeJobResult;
    decltype(&rgenh_freeJob) freeJob;
    decltype(&rgenh_getVersions) getVersions;
};

/// The status of a report of a job. The folder has no report type, so the job fails; everything is
/// freed.
RgenStatus jobStatus(const HostFunctions& host, const TempFolder& folder) {
    const RgenhValue value = rgenh_textValue("Device", "Disk");
    RgenhRequestParts parts = {};
    parts.size = sizeof parts;
    parts.reportType = "00000000-0000-0000-0000-000000000001";
    parts.format = "txt";
    parts.values = &value;
    parts.valueCount = 1;
    RgenReportGenerator* const generator = host.newGenerator(nullptr);
    EXPECT_EQ(RGEN_OK, host.setDataDirPath(generator, folder.path().c_str(), nullptr));
    RgenhRequest* const request = host.newRequest(&parts, nullptr);
    RgenhJob* const job = host.startReport(generator, request, nullptr, nullptr, nullptr);
    EXPECT_NE(nullptr, job);
    const RgenStatus status = host.takeJobResult(job, nullptr, nullptr);
    host.freeJob(job);
    host.freeRequest(request);
    host.freeGenerator(generator, nullptr);
    return status;
}

TEST(LoadedHostLibrary, FindsTheFirstLibraryInItsFolder) {
    const LoadedLibrary library(hostLibrary);
    ASSERT_TRUE(library.isLoaded());
    RgenhVersions versions = {};
    versions.size = sizeof versions;
    ASSERT_EQ(RGEN_OK, HostFunctions(library).getVersions(&versions, nullptr));
    const std::string expected = std::to_string(RGEN_VERSION_MAJOR) + "." +
                                 std::to_string(RGEN_VERSION_MINOR) + "." +
                                 std::to_string(RGEN_VERSION_PATCH);
    EXPECT_EQ(expected, versions.library);
    EXPECT_EQ(expected, versions.host);
    EXPECT_TRUE(libraryIsInMemory());
}

TEST(LoadedHostLibrary, HidesWhatItIsMadeOf) {
    const LoadedLibrary library(hostLibrary);
    ASSERT_TRUE(library.isLoaded());
    for (const char* name : {"_ZTI5Error", "rgenh_cancel@16", "_rgenh_cancel", "rgenh_textValue",
                             "_ZN5rgenh13ArgumentErrorD1Ev", "xmlReadFile"}) {
        EXPECT_EQ(nullptr, library.address(name)) << name;
    }
}

TEST(LoadedHostLibrary, LeavesTheProcessAfterJobsAndMayComeBack) {
    const TempFolder folder;
    const int rounds = loopCount(200);
    for (int round = 0; round < rounds; ++round) {
        {
            const LoadedLibrary library(hostLibrary);
            ASSERT_TRUE(library.isLoaded());
            ASSERT_EQ(RGEN_E_GUID_NOT_IN_CONFIG, jobStatus(HostFunctions(library), folder));
        }
        ASSERT_FALSE(isLibraryLoaded(hostLibrary));
        ASSERT_FALSE(libraryIsInMemory());
    }
}

}  // namespace
}  // namespace rgen_test
