// Reports of the format pdf, converted by the stand-in converter.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_SUPPORT_CONVERSION_FIXTURE_H
#define RGEN_TESTS_SUPPORT_CONVERSION_FIXTURE_H

#include <string>

#include "support/converter_control.h"
#include "support/report_fixture.h"

namespace rgen_test {

// A pdf template for the first two report types, a stand-in converter in the PATH, and a request
// for the file "report.pdf".
class ConversionTest : public ReportTest {
protected:
    ConversionTest();
    // Lets converters that still wait for release() end.
    ~ConversionTest() override;

    // Prepares a request for that output file of the test's folder.
    void request(InputParams& input, const std::string& name);
    // Commands of a converter that says "started" and then waits for release(), with others between
    // and after the two.
    ConverterCommands waiting(const ConverterCommands& before, const ConverterCommands& after = {});
    // Waits until that many converters have said "started".
    bool waitForStarted(std::size_t count = 1);
    // Lets the waiting converters continue.
    void release();

    ConverterControl converter;
    InputParams input;
    // The output path, and the path of the temporary file beside it.
    const std::string output;
    const std::string html;
    // What the template makes of the request.
    const std::string bytes;
};

}  // namespace rgen_test

#endif
