/*
 * Generates the acquisition report as html and txt in three languages and proves that the bytes of
 * mode 2 are the bytes of the file that mode 0 writes. Uses rgen.h and the C library only.
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
#include "strata_repgenlib/rgen.h"

static const char* const outputFormats[] = {"html", "txt"};

/* The state of the run. */
typedef struct Demo {
    RgenReportGenerator* generator;
    const char* outputDir;
    AcquisitionTranslator translator;
} Demo;

static int fail(const char* what, const char* reason) {
    fprintf(stderr, "acquisition_report: %s: %s\n", what, reason);
    return 0;
}

static int failWithStatus(const Demo* demo, const char* what, RgenStatus status) {
    fprintf(stderr, "acquisition_report: %s: %s (0x%08X)\n", what,
            rgen_getStatusCodeDescription(demo->generator, status), (unsigned)status);
    return 0;
}

/* "OUTPUT_DIR/acquisition-de.html" */
static int makeOutputPath(const Demo* demo, const char* format, char* path, size_t size) {
    const int length = snprintf(path, size, "%s/acquisition-%s.%s", demo->outputDir,
                                demo->translator.language->code, format);
    return length > 0 && (size_t)length < size;
}

static int storePersistentData(const Demo* demo) {
    RgenCAnsiStringPairSet pairs = {0};
    int done = 0;
    if (!fillAcquisitionPersistentData(&pairs)) {
        fail("persistent data", "out of memory");
    } else {
        const RgenStatus status =
            rgen_setPersistentDataFromAnsiStringPairSet(demo->generator, &acquisitionGuid, &pairs);
        done = status >= 0 || failWithStatus(demo, "persistent data", status);
    }
    rgen_freeRgenCAnsiStringSet(&pairs);
    return done;
}

/* Generates one report; in mode 2 the caller must free the result. */
static int generate(Demo* demo, const char* format, uint64_t mode, const char* path,
                    RgenCVariant* result) {
    RgenCInputParams request = {0};
    int done = 0;
    request.outputMode = mode;
    if (!fillAcquisitionRequest(&request) ||
        !rgen_createRgenAnsiString(format, &request.outputFormat) ||
        !rgen_createRgenAnsiString(path, &request.outputPath)) {
        fail(path, "out of memory");
    } else {
        const RgenStatus status = rgen_generateReport(demo->generator, &request, result);
        done = status >= 0 || failWithStatus(demo, path, status);
    }
    rgen_freeRgenCInputParams(&request);
    if (done && demo->translator.missing > 0) {
        done = fail(path, "some texts have no translation");
    }
    return done;
}

static int generateFile(Demo* demo, const char* format) {
    char path[1024];
    RgenCVariant result = {0};
    if (!makeOutputPath(demo, format, path, sizeof(path))) {
        return fail(demo->outputDir, "the path is too long");
    }
    if (!generate(demo, format, RGEN_OUTPUT_FILE, path, &result)) {
        return 0;
    }
    printf("%s\n", path);
    return 1;
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

/* Generates the report again in mode 2 and compares it with the file. */
static int compareBytes(Demo* demo, const char* format) {
    char path[1024];
    RgenCVariant result = {0};
    int same = 0;
    if (!makeOutputPath(demo, format, path, sizeof(path)) ||
        !generate(demo, format, RGEN_OUTPUT_BYTES, path, &result)) {
        return 0;
    }
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
    if (language->column > 0) {
        rgen_setTranslateFunction(demo->generator, translateAcquisitionText, &demo->translator);
    }
    for (size_t i = 0; i < sizeof(outputFormats) / sizeof(outputFormats[0]); ++i) {
        if (!generateFile(demo, outputFormats[i])) {
            return 0;
        }
    }
    return compareBytes(demo, outputFormats[0]) && compareBytes(demo, outputFormats[1]);
}

static int runDemo(Demo* demo, const char* dataDir) {
    const RgenStatus status = rgen_setDataDirPath(demo->generator, dataDir);
    if (status < 0) {
        return failWithStatus(demo, dataDir, status);
    }
    if (!storePersistentData(demo)) {
        return 0;
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
    Demo demo = {0};
    int done = 0;
    if (argc != 3) {
        return printUsage();
    }
    demo.generator = rgen_newReportGenerator();
    if (!demo.generator) {
        fail("generator", "out of memory");
        return 1;
    }
    demo.outputDir = argv[2];
    done = runDemo(&demo, argv[1]);
    rgen_freeReportGenerator(demo.generator);
    return done ? 0 : 1;
}
