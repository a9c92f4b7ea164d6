/*
 * SPDX-License-Identifier: MIT
 */
#include "robustness/loading/loaded_library.h"

#include <dlfcn.h>
#include <string.h>

static int find(void* handle, const char* name, void* function) {
    void* found = dlsym(handle, name);
    memcpy(function, &found, sizeof found);
    return found != NULL;
}

int load_library(const char* path, struct loaded_library* library) {
    void* handle = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    return handle != NULL && find(handle, "rgen_newReportGenerator", &library->new_generator) &&
           find(handle, "rgen_freeReportGenerator", &library->free_generator) &&
           find(handle, "rgen_setDataDirPath", &library->set_data_dir) &&
           find(handle, "rgen_generateReport", &library->generate) &&
           find(handle, "rgen_getPersistentData", &library->get_persistent) &&
           find(handle, "rgen_getSimulatedRawDataFromFile", &library->simulate) &&
           find(handle, "rgen_getStatusCodeDescription", &library->describe) &&
           find(handle, "rgen_createRgenAnsiString", &library->create_text) &&
           find(handle, "rgen_freeRgenCVariant", &library->free_value) &&
           find(handle, "rgen_freeRgenCVariantSet", &library->free_values) &&
           find(handle, "rgen_freeRgenCAnsiStringSet", &library->free_pairs);
}

RgenStatus make_report(const struct loaded_library* library, RgenReportGenerator* generator,
                       RgenCVariant* result) {
    char name[] = "size";
    char format[] = "html";
    RgenCVariant value = {0};
    value.name.data = name;
    value.value.int64Value = 255;
    value.type = RGEN_TYPE_INT64;
    value.hint = RGEN_HINT_ADDRESS;
    RgenCInputParams input = {0};
    input.variants.items = &value;
    input.variants.count = 1;
    input.templateGuid.data1 = 0xDEADBABEU;
    input.outputMode = RGEN_OUTPUT_BYTES;
    input.outputFormat.data = format;
    return library->generate(generator, &input, result);
}

int report_is_right(const struct loaded_library* library, const char* folder) {
    RgenReportGenerator* generator = library->new_generator();
    if (generator == NULL || library->set_data_dir(generator, folder) != RGEN_OK) return 0;
    RgenCVariant result = {0};
    const RgenStatus status = make_report(library, generator, &result);
    const int is_right = status == RGEN_OK && result.value.byteArrayValue.size == 4 &&
                         memcmp(result.value.byteArrayValue.data, "0xff", 4) == 0;
    library->free_value(&result);
    library->free_generator(generator);
    return is_right;
}
