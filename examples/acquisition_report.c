/*
 * Generates the acquisition report as html and txt in three languages and proves that the bytes of
 * mode 2 are the bytes of the file that mode 0 writes. Uses rgen_host.h and the C library only.
 *
 * The first argument is a folder that contains a data directory: copy templates/acquisition there
 * and name it ".rgen". The library reads its configuration and the templates there and stores the
 * persistent data there.
 *
 * SPDX-License-Identifier: MIT
 */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "acquisition_data.h"
#include "acquisition_texts.h"
#include "strata_repgenlib/rgen_host.h"

static const char* const outputFormats[] = {"html", "txt"};

/* The state of the run. */
typedef struct Demo {
    RgenReportGenerator* generator;
    const char* outputDir;
    AcquisitionTranslator translator;
    RgenhError error;
} Demo;

static int fail(const char* what, const char* reason) {
    fprintf(stderr, "acquisition_report: %s: %s\n", what, reason);
    return 0;
}

static int failWithError(const Demo* demo) {
    fprintf(stderr, "acquisition_report: %s\n", demo->error.message);
    return 0;
}

/* "OUTPUT_DIR/acquisition-de.html" */
static int makeOutputPath(const Demo* demo, const char* format, char* path, size_t size) {
    const int length = snprintf(path, size, "%s/acquisition-%s.%s", demo->outputDir,
                                demo->translator.language->code, format);
    if (length > 0 && (size_t)length < size) {
        return 1;
    }
    return fail(demo->outputDir, "the path is too long");
}

/* Generates one report; in mode 2 the caller must free the result. */
static int generate(Demo* demo, const char* format, uint64_t mode, const char* path,
                    RgenCVariant* result) {
    RgenhRequest* request = newAcquisitionRequest(format, mode, path, &demo->error);
    const int done =
        request && rgenh_generateReport(demo->generator, rgenh_getRequestInput(request), result,
                                        &demo->error) >= 0;
    rgenh_freeRequest(request);
    if (!done) {
        return failWithError(demo);
    }
    return demo->translator.missing == 0 || fail(path, "some texts have no translation");
}

/* Returns whether the file has exactly this content. */
static int fileHasBytes(const char* path, const uint8_t* bytes, size_t size) {
    FILE* file = fopen(path, "rb");
    uint8_t* content = malloc(size + 1);
    const size_t length = file && content ? fread(content, 1, size + 1, file) : 0;
    const int same = file && content && length == size && memcmp(content, bytes, size) == 0;
    free(content);
    if (file) {
        fclose(file);
    }
    return same;
}

/* Generates the report as a file and once more in mode 2, and compares them. */
static int generateBoth(Demo* demo, const char* format) {
    char path[1024];
    RgenCVariant result = {0};
    int same = 0;
    if (!makeOutputPath(demo, format, path, sizeof(path)) ||
        !generate(demo, format, RGEN_OUTPUT_FILE, path, &result) ||
        !generate(demo, format, RGEN_OUTPUT_BYTES, NULL, &result)) {
        return 0;
    }
    printf("%s\n", path);
    if (result.type == RGEN_TYPE_BYTE_ARRAY) {
        const RgenByteArray* bytes = &result.value.byteArrayValue;
        same = fileHasBytes(path, bytes->data, bytes->size);
        if (same) {
            printf("mode 2 gives the same %lu bytes as %s\n", (unsigned long)bytes->size, path);
        }
    }
    rgen_freeRgenCVariant(&result);
    return same || fail(path, "the bytes of mode 2 differ from the file");
}

/* All formats in one language. English needs no callback. */
static int generateLanguage(Demo* demo, const AcquisitionLanguage* language) {
    demo->translator.language = language;
    if (language->column > 0 &&
        rgenh_setTranslateFunction(demo->generator, translateAcquisitionText, &demo->translator,
                                   &demo->error) < 0) {
        return failWithError(demo);
    }
    for (size_t i = 0; i < sizeof(outputFormats) / sizeof(outputFormats[0]); ++i) {
        if (!generateBoth(demo, outputFormats[i])) {
            return 0;
        }
    }
    return 1;
}

static int runDemo(Demo* demo, const char* dataDir) {
    if (rgenh_setDataDirPath(demo->generator, dataDir, &demo->error) < 0 ||
        storeAcquisitionData(demo->generator, &demo->error) < 0) {
        return failWithError(demo);
    }
    for (int i = 0; i < AcquisitionLanguageCount; ++i) {
        if (!generateLanguage(demo, &acquisitionLanguages[i])) {
            return 0;
        }
    }
    return 1;
}

static int printUsage(void) {
    fprintf(stderr,
            "usage: acquisition_report DATA_DIR OUTPUT_DIR\n"
            "  DATA_DIR    folder that holds a copy of templates/acquisition named .rgen\n"
            "  OUTPUT_DIR  existing folder for acquisition-{en,de,ru}.{html,txt}\n");
    return 2;
}

int main(int argc, char** argv) {
    Demo demo = {.error = {.size = sizeof(RgenhError)}};
    int done = 0;
    if (argc != 3) {
        return printUsage();
    }
    demo.outputDir = argv[2];
    demo.generator = rgenh_newReportGenerator(&demo.error);
    done = demo.generator ? runDemo(&demo, argv[1]) : failWithError(&demo);
    rgenh_freeReportGenerator(demo.generator, NULL);
    return done ? 0 : 1;
}
