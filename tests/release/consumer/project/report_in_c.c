/*
 * A host in C99: a page of one file, by the report type for inventories. The arguments are the
 * folder of the data directory and the file to write.
 *
 * SPDX-License-Identifier: MIT
 */
#include <stdio.h>

#include "strata_repgenlib/rgen.h"

static const RgenGuid inventoryGuid = {
    0xc1d27a64, 0x90e5, 0x4b0c, {0x8f, 0x3a, 0x26, 0xb9, 0x5d, 0x41, 0xe7, 0xf8}};

static int fillInput(RgenCInputParams* input, const char* path) {
    RgenCVariant* items;
    input->templateGuid = inventoryGuid;
    input->outputMode = RGEN_OUTPUT_FILE;
    if (!rgen_createRgenCVariantSet(&input->variants, 3)) return 0;
    items = input->variants.items;
    return rgen_createRgenCVariantString("Inventory.Folder", "of a host in C", RGEN_HINT_GENERIC,
                                         &items[0]) &&
           rgen_createRgenCVariantString("File.0001.Path", "first.bin", RGEN_HINT_GENERIC,
                                         &items[1]) &&
           rgen_createRgenCVariantInt64("File.0001.Size", 1234567, RGEN_HINT_SIZE, &items[2]) &&
           rgen_createRgenAnsiString("html", &input->outputFormat) &&
           rgen_createRgenAnsiString(path, &input->outputPath);
}

int main(int argc, char** argv) {
    RgenReportGenerator* generator = rgen_newReportGenerator();
    RgenCInputParams input = {0};
    RgenCVariant result = {0};
    RgenStatus status = RGEN_E_BAD_PARAMETER;
    if (argc == 3) status = rgen_setDataDirPath(generator, argv[1]);
    if (status >= 0 && fillInput(&input, argv[2]))
        status = rgen_generateReport(generator, &input, &result);
    printf("%s\n", rgen_getStatusCodeDescription(generator, status));
    rgen_freeRgenCInputParams(&input);
    rgen_freeReportGenerator(generator);
    return status < 0;
}
