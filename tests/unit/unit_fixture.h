// A generator object of the library with a folder of its own, for cases that call the library's
// functions directly.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_UNIT_UNIT_FIXTURE_H
#define RGEN_TESTS_UNIT_UNIT_FIXTURE_H

#include <gtest/gtest.h>

#include <string>

#include "report_generator.h"
#include "store/base/guid.h"
#include "support/status_printer.h"
#include "support/temp_folder.h"

namespace rgen_test {

// A report type that is not the default one.
constexpr rgen::Guid otherGuid = {
    0x0A1B2C3D, 0x4E5F, 0x6071, {0x82, 0x93, 0xA4, 0xB5, 0xC6, 0xD7, 0xE8, 0xF9}};
extern const char* const otherGuidText;

// The data directory of the generator is set to one inside the folder; it does not exist yet.
class UnitTest : public ::testing::Test {
protected:
    UnitTest();

    // Makes the data directory with a configuration of the default report type and otherGuid,
    // whose files are other_data.xml and other.xsl.
    void putConfig();
    // Writes the template of the default report type for one format; returns its path.
    std::string putTemplate(const std::string& text, const std::string& format = "html");

    TempFolder folder;
    rgen::ReportGenerator generator;
};

// A stylesheet with the output method text and that body of the root template.
std::string textTemplate(const std::string& body);

// True when the calling thread could take the generator's mutex.
bool isUnlocked(rgen::ReportGenerator& generator);

}  // namespace rgen_test

#endif
