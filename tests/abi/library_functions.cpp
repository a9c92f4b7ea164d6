// The functions of a loaded library, found by name.
//
// SPDX-License-Identifier: MIT
#include "abi/library_functions.h"

#include <gtest/gtest.h>

namespace rgen_test {
namespace {

const char* RGEN_CALL inBrackets(const char* text, void* context) {
    auto* translated = static_cast<std::string*>(context);
    *translated = std::string("[") + text + "]";
    return translated->c_str();
}

}  // namespace

const char* const exportedNames[26] = {"rgen_newReportGenerator",
                                       "rgen_freeReportGenerator",
                                       "rgen_setDataDirPath",
                                       "rgen_setTranslateFunction",
                                       "rgen_cancel",
                                       "rgen_generateReport",
                                       "rgen_getPersistentData",
                                       "rgen_setPersistentDataFromAnsiStringPairSet",
                                       "rgen_setPersistentDataFromCVariantSet",
                                       "rgen_dumpRawInputDataToFile",
                                       "rgen_getSimulatedRawDataFromFile",
                                       "rgen_getStatusCodeDescription",
                                       "rgen_createRgenAnsiString",
                                       "rgen_createRgenByteArray",
                                       "rgen_createRgenCAnsiStringpairSet",
                                       "rgen_createRgenCVariantSet",
                                       "rgen_createRgenCVariantInt64",
                                       "rgen_createRgenCVariantHandle",
                                       "rgen_createRgenCVariantString",
                                       "rgen_createRgenCVariantByteArray",
                                       "rgen_freeRgenAnsiString",
                                       "rgen_freeRgenByteArray",
                                       "rgen_freeRgenCVariant",
                                       "rgen_freeRgenCVariantSet",
                                       "rgen_freeRgenCAnsiStringSet",
                                       "rgen_freeRgenCInputParams"};

Functions::Functions(const LoadedLibrary& library)
    : newGenerator(library.function<decltype(&rgen_newReportGenerator)>(exportedNames[0])),
      freeGenerator(library.function<decltype(&rgen_freeReportGenerator)>(exportedNames[1])),
      setDataDirPath(library.function<decltype(&rgen_setDataDirPath)>(exportedNames[2])),
      setTranslate(library.function<decltype(&rgen_setTranslateFunction)>(exportedNames[3])),
      generate(library.function<decltype(&rgen_generateReport)>(exportedNames[5])),
      describe(library.function<decltype(&rgen_getStatusCodeDescription)>(exportedNames[11])),
      createText(library.function<decltype(&rgen_createRgenAnsiString)>(exportedNames[12])),
      createSet(library.function<decltype(&rgen_createRgenCVariantSet)>(exportedNames[15])),
      createInt64(library.function<decltype(&rgen_createRgenCVariantInt64)>(exportedNames[16])),
      freeVariant(library.function<decltype(&rgen_freeRgenCVariant)>(exportedNames[22])),
      freeInput(library.function<decltype(&rgen_freeRgenCInputParams)>(exportedNames[25])) {}

std::string reportThrough(const Functions& functions, const TempFolder& folder) {
    writeFile(folder.dataFile("templates/html/test_stylesheet.xsl"),
              "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform'>"
              "<xsl:output method='text'/><xsl:template match='/'>"
              "QT_TRANSLATE_NOOP(\"QObject\", \"size\") <xsl:value-of "
              "select='/data/properties/property'/>"
              "</xsl:template></xsl:stylesheet>");
    std::string context;
    RgenReportGenerator* generator = functions.newGenerator();
    EXPECT_EQ(RGEN_OK, functions.setDataDirPath(generator, folder.path().c_str()));
    functions.setTranslate(generator, inBrackets, &context);

    RgenCInputParams input{};
    EXPECT_EQ(1, functions.createSet(&input.variants, 1));
    EXPECT_EQ(1, functions.createInt64("size", 255, RGEN_HINT_ADDRESS, &input.variants.items[0]));
    EXPECT_EQ(1, functions.createText("html", &input.outputFormat));
    input.templateGuid.data1 = 0xDEADBABEU;
    input.outputMode = RGEN_OUTPUT_BYTES;
    RgenCVariant result{};
    EXPECT_EQ(RGEN_OK, functions.generate(generator, &input, &result));
    std::string bytes;
    if (result.type == RGEN_TYPE_BYTE_ARRAY) {
        bytes.assign(result.value.byteArrayValue.data,
                     result.value.byteArrayValue.data + result.value.byteArrayValue.size);
    }
    functions.freeVariant(&result);
    functions.freeInput(&input);
    functions.freeGenerator(generator);
    return bytes;
}

}  // namespace rgen_test
