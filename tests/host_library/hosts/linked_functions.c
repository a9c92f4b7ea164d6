/*
 * SPDX-License-Identifier: MIT
 */
#include "host_library/hosts/linked_functions.h"

struct host_functions linked_functions(void) {
    struct host_functions functions;
    functions.new_generator = rgenh_newReportGenerator;
    functions.free_generator = rgenh_freeReportGenerator;
    functions.set_data_dir = rgenh_setDataDirPath;
    functions.generate = rgenh_generateReport;
    functions.new_request = rgenh_newRequest;
    functions.request_input = rgenh_getRequestInput;
    functions.free_request = rgenh_freeRequest;
    functions.start = rgenh_startReport;
    functions.take = rgenh_takeJobResult;
    functions.free_job = rgenh_freeJob;
    functions.free_value = rgen_freeRgenCVariant;
    return functions;
}
