// The candidate "library": a host that uses the public header and the shared library.
//
// SPDX-License-Identifier: MIT
#include <stdexcept>

#include "report_benchmark.h"
#include "strata_repgenlib/rgen.h"

namespace benchmarks {
namespace {

constexpr RgenGuid guid = {
    0x7c9e6679, 0x7425, 0x40de, {0x94, 0x4b, 0xe0, 0x7f, 0xc1, 0xf9, 0x0a, 0xe7}};

void require(bool done, const char* what) {
    if (!done) throw std::runtime_error(what);
}

class Library : public ReportMaker {
public:
    Library(const Options& options, const std::string& outputPath)
        : generator_(rgen_newReportGenerator()) {
        require(generator_ != nullptr, "no generator");
        check(rgen_setDataDirPath(generator_, options.dataParent().c_str()));
        input_.templateGuid = guid;
        input_.outputMode = options.mode;
        require(rgen_createRgenAnsiString("html", &input_.outputFormat) != 0, "no format");
        require(rgen_createRgenAnsiString(outputPath.c_str(), &input_.outputPath) != 0, "no path");
        fillValues(options);
    }

    ~Library() override {
        rgen_freeRgenCInputParams(&input_);
        rgen_freeReportGenerator(generator_);
    }

    void report() override {
        RgenCVariant result{};
        check(rgen_generateReport(generator_, &input_, &result));
        if (input_.outputMode == RGEN_OUTPUT_BYTES) rgen_freeRgenCVariant(&result);
    }

private:
    void check(RgenStatus status) const {
        require(status >= 0, rgen_getStatusCodeDescription(generator_, status));
    }

    void fillValues(const Options& options) {
        require(rgen_createRgenCVariantSet(&input_.variants, countValues(options)) != 0,
                "no values");
        RgenCVariant* next = input_.variants.items;
        readValues(options, [&next](const Value& value) {
            const int created =
                value.isNumber
                    ? rgen_createRgenCVariantInt64(value.name.c_str(), value.number,
                                                   RGEN_HINT_GENERIC, next)
                    : rgen_createRgenCVariantString(value.name.c_str(), value.text.c_str(),
                                                    RGEN_HINT_GENERIC, next);
            require(created != 0, "no value");
            ++next;
        });
    }

    RgenReportGenerator* generator_;
    RgenCInputParams input_{};
};

}  // namespace

void prepareCandidate(const Options& options) {
    if (options.allocator != "c") fail("the library chooses its allocator itself");
    if (options.mode != RGEN_OUTPUT_FILE && options.mode != RGEN_OUTPUT_BYTES) {
        fail("the modes are 0 and 2");
    }
}

std::unique_ptr<ReportMaker> makeReportMaker(const Options& options,
                                             const std::string& outputPath) {
    return std::make_unique<Library>(options, outputPath);
}

}  // namespace benchmarks
