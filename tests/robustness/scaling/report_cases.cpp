// Whole reports and dumps of many values, and of one long text.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <memory>

#include "robustness/scaling/scaling_case.h"
#include "support/host_records.h"
#include "support/status_printer.h"
#include "support/temp_folder.h"

namespace rgen_test {
namespace {

const std::string templateStart =
    "<xsl:stylesheet version='1.0' xmlns:xsl='http://www.w3.org/1999/XSL/Transform'>"
    "<xsl:output method='html'/><xsl:template match='/'><html><body>";
const std::string templateEnd = "</body></html></xsl:template></xsl:stylesheet>";
const std::string allValues =
    "<xsl:for-each select='data/properties/property'><p>"
    "<xsl:value-of select='.'/></p></xsl:for-each>";

using InputFiller = std::function<void(InputParams& input, std::size_t count)>;

std::function<void()> reporting(const std::string& body, const InputFiller& fill,
                                std::size_t count) {
    const auto folder = std::make_shared<TempFolder>();
    const auto generator = std::make_shared<Generator>(folder->path());
    writeFile(folder->dataFile("templates/html/test_stylesheet.xsl"),
              templateStart + body + templateEnd);
    const auto input = std::make_shared<InputParams>();
    input->variants().addString("always", "x");
    fill(*input, count);
    return [folder, generator, input] {
        Result result;
        EXPECT_EQ(statusHex(RGEN_OK),
                  statusHex(rgen_generateReport(generator->get(), input->get(), result.get())));
    };
}

void fillNothing(InputParams& /*input*/, std::size_t /*count*/) {}

void addInputCase(std::vector<ScalingCase>& cases, const std::string& name, std::size_t size,
                  const InputFiller& fill) {
    cases.push_back({"report: " + name, size,
                     [fill](std::size_t count) { return reporting(allValues, fill, count); }});
}

void addInputCases(std::vector<ScalingCase>& cases) {
    addInputCase(cases, "many values", usualEntries, [](InputParams& input, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i)
            input.variants().addInt64("n" + std::to_string(i), 7, RGEN_HINT_DATE);
    });
    addInputCase(cases, "values of one name", usualEntries,
                 [](InputParams& input, std::size_t count) {
                     for (std::size_t i = 0; i < count; ++i)
                         input.variants().addString("n", "text");
                 });
    addInputCase(cases, "many pairs", usualEntries, [](InputParams& input, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i)
            input.pairs().add("n" + std::to_string(i), "text");
    });
    addInputCase(cases, "many bytes", usualBytes, [](InputParams& input, std::size_t size) {
        input.variants().addBytes("n", std::vector<std::uint8_t>(size + 1));
    });
    for (const std::string part : {"&<b>;", "&", "&a;", "&amp;", "<", "\xC3\xA4", "\x01"}) {
        const std::string shown = part == "\x01" ? "control characters" : "\"" + part + "\"";
        addInputCase(cases, "a text of " + shown, usualBytes,
                     [part](InputParams& input, std::size_t size) {
                         input.variants().addString("n", repeatedText(part, size));
                     });
    }
}

void addTemplateCases(std::vector<ScalingCase>& cases) {
    for (const std::string part : {"QT_TRANSLATE_NOOP(\"QObject\", \"m\")", "QT_TRANSLATE_NOOP(",
                                   "<p>text</p>", "<xsl:value-of select='data'/>"}) {
        cases.push_back({"template of " + part, usualEntries, [part](std::size_t count) {
                             return reporting(repeatedTimes(part, count), fillNothing, 0);
                         }});
    }
}

ScalingCase dumpOfManyValues() {
    return {"dump of many values", usualEntries, [](std::size_t count) {
                const auto folder = std::make_shared<TempFolder>();
                const auto generator = std::make_shared<Generator>();
                const auto input = std::make_shared<InputParams>();
                for (std::size_t i = 0; i <= count; ++i)
                    input->variants().addString("n" + std::to_string(i), "text");
                return [folder, generator, input] {
                    EXPECT_EQ(statusHex(RGEN_OK),
                              statusHex(rgen_dumpRawInputDataToFile(
                                  generator->get(), input->get(), folder->file("d.xml").c_str())));
                };
            }};
}

}  // namespace

std::vector<ScalingCase> reportCases() {
    std::vector<ScalingCase> cases = {dumpOfManyValues()};
    addInputCases(cases);
    addTemplateCases(cases);
    return cases;
}

}  // namespace rgen_test
