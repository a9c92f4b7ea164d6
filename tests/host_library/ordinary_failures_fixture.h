// A generator that is to survive failures.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_HOST_LIBRARY_ORDINARY_FAILURES_H
#define RGEN_TESTS_HOST_LIBRARY_ORDINARY_FAILURES_H

#include <exception>
#include <functional>
#include <string>
#include <vector>

#include "host_library/host_library_fixture.h"

namespace rgen_test {

struct FailureCase {
    const char* label;
    std::function<RgenStatus()> call;
    RgenhErrorKind kind;
};

class OrdinaryFailures : public HostLibraryTest {
protected:
    OrdinaryFailures() {
        putTemplate(textStylesheet("works"));
        input.variants().addString("v", "x");
        input.format("html").output(RGEN_OUTPUT_BYTES);
    }

    RgenStatus generate() {
        Result result;
        return rgenh_generateReport(host, input.get(), result.get(), &error);
    }

    RgenStatus generateInto(const std::string& format, const std::string& path) {
        input.format(format).output(RGEN_OUTPUT_FILE, path);
        const RgenStatus status = generate();
        input.format("html").output(RGEN_OUTPUT_BYTES);
        return status;
    }

    // Another generator, whose data directory's parent the case has prepared.
    RgenStatus generateIn(const std::string& parent) {
        RgenReportGenerator* other = rgenh_newReportGenerator(&error);
        RgenStatus status = rgenh_setDataDirPath(other, parent.c_str(), &error);
        Result result;
        if (status >= 0) status = rgenh_generateReport(other, input.get(), result.get(), &error);
        rgenh_freeReportGenerator(other, nullptr);
        return status;
    }

    void putTemplateName(const std::string& name, const std::string& dataFile = "data.xml") {
        putConfig("<type guid=\"" + std::string(defaultGuidText) + "\"><persistDataFile>" +
                  dataFile + "</persistDataFile><reportTypeFile>" + name +
                  "</reportTypeFile></type>");
    }

    void restore() {
        putTemplateName("test_stylesheet.xsl");
        Result result;
        EXPECT_EQ(RGEN_OK, rgenh_generateReport(host, input.get(), result.get(), &error))
            << error.message;
        EXPECT_EQ("works", result.bytes());
    }

    void expectFailures(const std::vector<FailureCase>& cases) {
        for (const FailureCase& each : cases) {
            SCOPED_TRACE(each.label);
            const int uncaught = std::uncaught_exceptions();
            EXPECT_GT(0, each.call());
            EXPECT_EQ(each.kind, error.kind) << error.message;
            EXPECT_STRNE("", error.message);
            EXPECT_EQ(each.kind == RGENH_ERROR_FILE_SYSTEM, error.systemError != 0);
            EXPECT_EQ(uncaught, std::uncaught_exceptions());
            restore();
        }
    }

    static std::string tooLong(std::size_t size) { return std::string(size, 'x'); }

    const std::string badText = "a\xFF";
};

}  // namespace rgen_test

#endif
