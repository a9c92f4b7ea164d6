// The candidate "guarded": a host that uses the host library. Its request is made once, as that of
// the candidate "library".
//
// SPDX-License-Identifier: MIT
#include <deque>
#include <stdexcept>
#include <string>
#include <vector>

#include "report_benchmark.h"
#include "strata_repgenlib/rgen_host.h"

namespace benchmarks {
namespace {

class Guarded : public ReportMaker {
public:
    Guarded(const Options& options, const std::string& outputPath) {
        error_.size = sizeof error_;
        generator_ = rgenh_newReportGenerator(&error_);
        check(error_.status);
        check(rgenh_setDataDirPath(generator_, options.dataParent().c_str(), &error_));
        makeRequest(options, outputPath);
    }

    ~Guarded() override {
        rgenh_freeRequest(request_);
        rgenh_freeReportGenerator(generator_, nullptr);
    }

    void report() override {
        RgenCVariant result = {};
        check(rgenh_generateReport(generator_, rgenh_getRequestInput(request_), &result, &error_));
        rgen_freeRgenCVariant(&result);
    }

private:
    void check(RgenStatus status) const {
        if (status < 0) throw std::runtime_error(error_.message);
    }

    void makeRequest(const Options& options, const std::string& outputPath) {
        std::deque<std::string> texts;
        const auto kept = [&texts](const std::string& text) {
            return texts.emplace_back(text).c_str();
        };
        std::vector<RgenhValue> values;
        readValues(options, [&](const Value& value) {
            values.push_back(value.isNumber ? rgenh_integerValue(kept(value.name), value.number,
                                                                 RGEN_HINT_GENERIC)
                                            : rgenh_textValue(kept(value.name), kept(value.text)));
        });
        RgenhRequestParts parts = {};
        parts.size = sizeof parts;
        parts.reportType = wantedGuid;
        parts.format = "html";
        parts.outputPath = outputPath.c_str();
        parts.outputMode = options.mode;
        parts.values = values.data();
        parts.valueCount = values.size();
        request_ = rgenh_newRequest(&parts, &error_);
        check(error_.status);
    }

    RgenhError error_ = {};
    RgenReportGenerator* generator_ = nullptr;
    RgenhRequest* request_ = nullptr;
};

}  // namespace

void prepareCandidate(const Options& options) {
    if (options.allocator != "c") fail("the library chooses its allocator itself");
}

std::unique_ptr<ReportMaker> makeReportMaker(const Options& options,
                                             const std::string& outputPath) {
    return std::make_unique<Guarded>(options, outputPath);
}

}  // namespace benchmarks
