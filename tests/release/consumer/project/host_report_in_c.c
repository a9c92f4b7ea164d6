/*
 * A host in C99 that uses the host library: a page of one file, by the report type for inventories.
 * The arguments are the folder of the data directory and the file to write.
 *
 * SPDX-License-Identifier: MIT
 */
#include <stdio.h>

#include "strata_repgenlib/rgen_host.h"

static RgenhRequest* newPage(const char* path, RgenhError* error) {
    RgenhValue values[3];
    RgenhRequestParts parts = {0};
    values[0] = rgenh_textValue("Inventory.Folder", "of a host in C & its disk");
    values[1] = rgenh_textValue("File.0001.Path", "first.bin");
    values[2] = rgenh_integerValue("File.0001.Size", 1234567, RGEN_HINT_SIZE);
    parts.size = sizeof parts;
    parts.reportType = "{C1D27A64-90E5-4B0C-8F3A-26B95D41E7F8}";
    parts.format = "html";
    parts.outputPath = path;
    parts.values = values;
    parts.valueCount = sizeof values / sizeof values[0];
    return rgenh_newRequest(&parts, error);
}

int main(int argc, char** argv) {
    RgenhError error = {sizeof(RgenhError), 0, 0, 0, 0, 0, 0, {0}, {0}};
    RgenReportGenerator* generator = rgenh_newReportGenerator(&error);
    RgenhRequest* request = argc == 3 ? newPage(argv[2], &error) : 0;
    RgenCVariant result = {0};
    RgenStatus status = RGEN_E_BAD_PARAMETER;
    if (request) status = rgenh_setDataDirPath(generator, argv[1], &error);
    if (status >= 0)
        status = rgenh_generateReport(generator, rgenh_getRequestInput(request), &result, &error);
    printf("%s\n", status < 0 ? error.message : rgenh_getStatusText(status));
    rgenh_freeRequest(request);
    rgenh_freeReportGenerator(generator, 0);
    return status < 0;
}
