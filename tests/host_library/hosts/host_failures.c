/*
 * Every failure is one that leaves rgen.h as an exception.
 *
 * SPDX-License-Identifier: MIT
 */
#include "host_library/hosts/host_failures.h"

#include <string.h>

#define REPORT_TYPE "deadbabe-0000-0000-0000-000000000000"

/* A request of one value; null if there can be none. */
static RgenhRequest* new_request(const struct host_functions* host, const char* format,
                                 const char* path) {
    const RgenhValue value = rgenh_textValue("v", "a & b");
    RgenhRequestParts parts = {0};
    parts.size = sizeof parts;
    parts.reportType = REPORT_TYPE;
    parts.format = format;
    parts.outputPath = path;
    parts.outputMode = path[0] == '\0' ? RGEN_OUTPUT_BYTES : RGEN_OUTPUT_FILE;
    parts.values = &value;
    parts.valueCount = 1;
    return host->new_request(&parts, 0);
}

static RgenStatus generate(const struct host_functions* host, RgenReportGenerator* generator,
                           const char* format, const char* path, RgenhError* error) {
    RgenhRequest* const request = new_request(host, format, path);
    RgenCVariant result = {0};
    const RgenStatus status =
        host->generate(generator, host->request_input(request), &result, error);
    host->free_value(&result);
    host->free_request(request);
    return status;
}

static int makes_good_report(const struct host_functions* host, RgenReportGenerator* generator) {
    RgenhRequest* const request = new_request(host, "html", "");
    RgenCVariant result = {0};
    RgenhError error = {0};
    int is_good = 0;
    error.size = sizeof error;
    if (host->generate(generator, host->request_input(request), &result, &error) == RGEN_OK) {
        const RgenByteArray bytes = result.value.byteArrayValue;
        is_good = bytes.size == 5 && memcmp(bytes.data, "a & b", 5) == 0;
    }
    host->free_value(&result);
    host->free_request(request);
    return is_good;
}

static const char* meet_encoding(const struct host_functions* host,
                                 RgenReportGenerator* generator) {
    RgenhError error = {0};
    error.size = sizeof error;
    if (host->set_data_dir(generator, "\xFF", &error) >= 0 || error.kind != RGENH_ERROR_ENCODING)
        return "a data directory that is not UTF-8";
    if (generate(host, generator, "html", "o\xFF", &error) >= 0 ||
        error.kind != RGENH_ERROR_ENCODING)
        return "an output path that is not UTF-8";
    if (generate(host, generator, "a\xFF", "", &error) >= 0 || error.kind != RGENH_ERROR_ENCODING)
        return "a format that is not UTF-8";
    return makes_good_report(host, generator) ? 0 : "the report after errors of encoding";
}

static const char* meet_file_system(const struct host_functions* host,
                                    RgenReportGenerator* generator) {
    RgenReportGenerator* const other = host->new_generator(0);
    RgenhError error = {0};
    RgenStatus status;
    error.size = sizeof error;
    status = generate(host, other, "html", "", &error);
    host->free_generator(other, 0);
    if (status >= 0 || error.kind != RGENH_ERROR_FILE_SYSTEM) return "no data directory";
    return makes_good_report(host, generator) ? 0 : "the report after errors of the file system";
}

static const char* meet_failing_job(const struct host_functions* host,
                                    RgenReportGenerator* generator) {
    RgenhRequest* const request = new_request(host, "html", "o\xFF");
    RgenhError error = {0};
    RgenhJob* job;
    RgenStatus status;
    error.size = sizeof error;
    job = host->start(generator, request, 0, 0, &error);
    status = host->take(job, 0, &error);
    host->free_job(job);
    host->free_request(request);
    if (status >= 0 || error.kind != RGENH_ERROR_ENCODING) return "a job";
    return makes_good_report(host, generator) ? 0 : "the report after a job";
}

const char* meet_failures(const struct host_functions* functions, const char* folder) {
    RgenReportGenerator* const generator = functions->new_generator(0);
    const char* problem = 0;
    if (!generator || functions->set_data_dir(generator, folder, 0) < 0)
        return "the data directory";
    if (!makes_good_report(functions, generator)) return "the first report";
    problem = meet_encoding(functions, generator);
    if (!problem) problem = meet_file_system(functions, generator);
    if (!problem) problem = meet_failing_job(functions, generator);
    functions->free_generator(generator, 0);
    return problem;
}
