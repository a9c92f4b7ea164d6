// A generator of the host library with a data directory of its own.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_HOST_LIBRARY_FIXTURE_H
#define RGEN_TESTS_HOST_LIBRARY_FIXTURE_H

#include <string>
#include <vector>

#include "strata_repgenlib/rgen_host.h"
#include "support/conversion_fixture.h"

namespace rgen_test {

// A request of the host library, freed with its scope.
class HostRequest {
public:
    // Mode 2 and the format html, unless the parts say otherwise.
    explicit HostRequest(const std::vector<RgenhValue>& values, const std::string& format = "html",
                         const std::string& outputPath = "");
    ~HostRequest() { rgenh_freeRequest(request_); }
    HostRequest(const HostRequest&) = delete;
    HostRequest& operator=(const HostRequest&) = delete;

    const RgenhRequest* get() const { return request_; }
    const RgenCInputParams* input() const { return rgenh_getRequestInput(request_); }

private:
    RgenhRequest* request_;
};

// The data directory, templates and the stand-in converter of ConversionTest, and a generator of
// the host library for them.
class HostLibraryTest : public ConversionTest {
protected:
    HostLibraryTest();
    ~HostLibraryTest() override;

    // "kind argument" of the last error, such as "7 2".
    std::string kindAndArgument() const;
    // Generates in mode 2; the bytes, or the message of the error.
    std::string bytesOf(const RgenhRequest* request);
    std::string bytesOf(const std::vector<RgenhValue>& values);

    RgenhJob* start(RgenReportGenerator* owner, const HostRequest& request);
    // Waits for a job; its bytes in mode 2, or the message of its error. Frees the job.
    std::string finish(RgenhJob* job);

    RgenhError error = {};
    RgenReportGenerator* host;
    const RgenGuid guid = defaultGuid();
};

// A text of the library, freed at once.
std::string takeText(RgenAnsiString& text);

}  // namespace rgen_test

#endif
