// SPDX-License-Identifier: MIT
#include "host_library/host_library_fixture.h"

namespace rgen_test {

HostRequest::HostRequest(const std::vector<RgenhValue>& values, const std::string& format,
                         const std::string& outputPath) {
    RgenhRequestParts parts = {};
    parts.size = sizeof parts;
    parts.reportType = defaultGuidText;
    parts.format = format.c_str();
    parts.outputPath = outputPath.c_str();
    parts.outputMode = outputPath.empty() ? RGEN_OUTPUT_BYTES : RGEN_OUTPUT_FILE;
    parts.values = values.data();
    parts.valueCount = values.size();
    RgenhError error = {};
    error.size = sizeof error;
    request_ = rgenh_newRequest(&parts, &error);
    EXPECT_NE(nullptr, request_) << error.message;
}

HostLibraryTest::HostLibraryTest() {
    error.size = sizeof error;
    host = rgenh_newReportGenerator(&error);
    EXPECT_NE(nullptr, host);
    EXPECT_EQ(RGEN_OK, rgenh_setDataDirPath(host, folder.path().c_str(), &error)) << error.message;
}

HostLibraryTest::~HostLibraryTest() {
    release();
    EXPECT_EQ(RGEN_OK, rgenh_freeReportGenerator(host, nullptr));
}

std::string HostLibraryTest::kindAndArgument() const {
    return std::to_string(error.kind) + " " + std::to_string(error.argument);
}

std::string HostLibraryTest::bytesOf(const RgenhRequest* request) {
    Result result;
    const RgenStatus status =
        rgenh_generateReport(host, rgenh_getRequestInput(request), result.get(), &error);
    return status < 0 ? error.message : result.bytes();
}

std::string HostLibraryTest::bytesOf(const std::vector<RgenhValue>& values) {
    const HostRequest request(values);
    return bytesOf(request.get());
}

RgenhJob* HostLibraryTest::start(RgenReportGenerator* owner, const HostRequest& request) {
    RgenhJob* const job = rgenh_startReport(owner, request.get(), nullptr, nullptr, &error);
    EXPECT_NE(nullptr, job) << error.message;
    return job;
}

std::string HostLibraryTest::finish(RgenhJob* job) {
    Result result;
    const RgenStatus status = rgenh_takeJobResult(job, result.get(), &error);
    rgenh_freeJob(job);
    return status < 0 ? error.message : result.bytes();
}

std::string takeText(RgenAnsiString& text) {
    const std::string copy = text.data == nullptr ? "(null)" : std::string(text.data, text.length);
    rgen_freeRgenAnsiString(&text);
    return copy;
}

}  // namespace rgen_test
