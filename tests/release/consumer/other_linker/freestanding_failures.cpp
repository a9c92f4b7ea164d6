// A host in C++ without any runtime, for compilers that link like Microsoft's. Most of its calls
// make the library throw; each must come back with an error record. It ends with code 42 if they
// do, and with the number of the call if not.
//
// SPDX-License-Identifier: MIT
#include "strata_repgenlib/rgen_host.h"

namespace {

constexpr const char* notUtf8 = "\xFF";

// Static: a function with more than a page of variables would call the runtime.
RgenhError error;
RgenCVariant result;
RgenCVariantSet values;
RgenCAnsiStringPairSet pairs;
RgenhRequestParts parts;
const RgenGuid type = {};

class Generator {
public:
    Generator() : handle_(rgenh_newReportGenerator(&error)) {}
    ~Generator() { rgenh_freeReportGenerator(handle_, nullptr); }
    Generator(const Generator&) = delete;
    Generator& operator=(const Generator&) = delete;

    RgenReportGenerator* get() const { return handle_; }

private:
    RgenReportGenerator* handle_;
};

class Request {
public:
    Request() : handle_(rgenh_newRequest(&parts, &error)) {}
    ~Request() { rgenh_freeRequest(handle_); }
    Request(const Request&) = delete;
    Request& operator=(const Request&) = delete;

    const RgenhRequest* get() const { return handle_; }
    const RgenCInputParams* input() const { return rgenh_getRequestInput(handle_); }

private:
    RgenhRequest* handle_;
};

class Job {
public:
    Job(const Generator& generator, const Request& request)
        : handle_(rgenh_startReport(generator.get(), request.get(), nullptr, nullptr, &error)) {}
    ~Job() { rgenh_freeJob(handle_); }
    Job(const Job&) = delete;
    Job& operator=(const Job&) = delete;

    bool isStarted() const { return handle_ != nullptr; }
    RgenStatus take() { return rgenh_takeJobResult(handle_, &result, &error); }

private:
    RgenhJob* handle_;
};

bool failed(RgenStatus status, RgenhErrorKind kind) {
    return status < 0 && error.status == status && error.kind == kind && error.message[0] != '\0';
}

/// Returns the number of the first call that does not fail as it should, or 0.
int callsWithoutFolder(const Generator& generator, const Request& request) {
    RgenReportGenerator* const handle = generator.get();
    if (!failed(rgenh_setDataDirPath(handle, notUtf8, &error), RGENH_ERROR_ENCODING)) return 1;
    if (!failed(rgenh_generateReport(handle, request.input(), &result, &error),
                RGENH_ERROR_FILE_SYSTEM)) {
        return 2;
    }
    if (!failed(rgenh_getPersistentTexts(handle, &type, &pairs, &error), RGENH_ERROR_FILE_SYSTEM)) {
        return 3;
    }
    if (!failed(rgenh_setPersistentValues(handle, &type, nullptr, 0, &error),
                RGENH_ERROR_FILE_SYSTEM)) {
        return 4;
    }
    if (!failed(rgenh_dumpRawInputDataToFile(handle, request.input(), notUtf8, &error),
                RGENH_ERROR_ENCODING)) {
        return 5;
    }
    if (!failed(rgenh_getSimulatedRawDataFromFile(handle, notUtf8, &values, &error),
                RGENH_ERROR_ENCODING)) {
        return 6;
    }
    if (!failed(rgenh_generateReport(handle, nullptr, &result, &error), RGENH_ERROR_ARGUMENT)) {
        return 7;
    }
    const Job job(generator, request);
    return job.isStarted() || error.kind != RGENH_ERROR_ARGUMENT ? 8 : 0;
}

int callsInAFolder(const Generator& generator, const Request& request) {
    if (rgenh_setDataDirPath(generator.get(), ".", &error) != RGEN_OK) return 9;
    if (!failed(rgenh_generateReport(generator.get(), request.input(), &result, &error),
                RGENH_ERROR_STATUS)) {
        return 10;
    }
    Job job(generator, request);
    return job.isStarted() && failed(job.take(), RGENH_ERROR_STATUS) ? 0 : 11;
}

}  // namespace

extern "C" int start() {
    constexpr int rounds = 20;
    error.size = sizeof error;
    parts.size = sizeof parts;
    parts.format = "html";
    parts.outputMode = RGEN_OUTPUT_BYTES;
    for (int round = 0; round < rounds; ++round) {
        const Generator generator;
        const Request request;
        int number = callsWithoutFolder(generator, request);
        if (number == 0) number = callsInAFolder(generator, request);
        if (number != 0) return number;
    }
    return 42;
}
