// A host in C++17 that uses the host library: a job makes a page by the report type of inventories,
// and a call that fails returns its reason. The arguments are the folder of the data directory and
// the file to write.
//
// SPDX-License-Identifier: MIT
#include <iostream>
#include <memory>

#include "strata_repgenlib/rgen_host.h"

namespace {

static_assert(noexcept(rgenh_newReportGenerator(nullptr)), "no function throws");

struct Free {
    void operator()(RgenReportGenerator* generator) const {
        rgenh_freeReportGenerator(generator, nullptr);
    }
    void operator()(RgenhRequest* request) const { rgenh_freeRequest(request); }
    void operator()(RgenhJob* job) const { rgenh_freeJob(job); }
};

std::unique_ptr<RgenhRequest, Free> newPage(const char* path, RgenhError& error) {
    const RgenhValue value = rgenh_textValue("Inventory.Folder", "of a host in C++");
    RgenhRequestParts parts = {};
    parts.size = sizeof parts;
    parts.templateGuid = {
        0xc1d27a64, 0x90e5, 0x4b0c, {0x8f, 0x3a, 0x26, 0xb9, 0x5d, 0x41, 0xe7, 0xf8}};
    parts.format = "html";
    parts.outputPath = path;
    parts.values = &value;
    parts.valueCount = 1;
    return std::unique_ptr<RgenhRequest, Free>(rgenh_newRequest(&parts, &error));
}

RgenStatus makePage(RgenReportGenerator* generator, const char* path, RgenhError& error) {
    const auto request = newPage(path, error);
    const std::unique_ptr<RgenhJob, Free> job(
        rgenh_startReport(generator, request.get(), nullptr, nullptr, &error));
    return rgenh_takeJobResult(job.get(), nullptr, &error);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    RgenhError error = {};
    error.size = sizeof error;
    const std::unique_ptr<RgenReportGenerator, Free> generator(rgenh_newReportGenerator(&error));
    if (rgenh_setDataDirPath(generator.get(), "there is no such folder", &error) >= 0) return 3;
    if (error.status != RGEN_E_DIR_NOT_FOUND || error.kind != RGENH_ERROR_STATUS) return 4;
    RgenStatus status = rgenh_setDataDirPath(generator.get(), argv[1], &error);
    if (status >= 0) status = makePage(generator.get(), argv[2], error);
    std::cout << (status < 0 ? error.message : rgenh_getStatusText(status)) << '\n';
    return status < 0;
}
