// SPDX-License-Identifier: MIT
#include "robustness/faults/guarded_scenarios.h"

namespace rgen_test {

std::string textTemplate(const std::string& body) {
    return "<xsl:stylesheet version=\"1.0\" xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\">"
           "<xsl:output method=\"text\"/><xsl:template match=\"/\">" +
           body + "</xsl:template></xsl:stylesheet>";
}

FaultScenario guardedReport(const std::string& format, std::uint64_t mode, ErrorCheck check) {
    FaultScenario scenario;
    scenario.name = "guarded report as " + format + " in mode " + std::to_string(mode);
    scenario.prepare = [format, mode](FaultSubject& subject) {
        subject.input.variants().addString("v", "value");
        subject.input.format(format).output(mode, subject.files.file("report"));
    };
    scenario.call = [check](FaultSubject& subject) {
        RgenhError error = newError();
        const RgenStatus status =
            rgenh_generateReport(subject.generator(), subject.input.get(), &subject.result, &error);
        return check(status, error);
    };
    scenario.failures =
        configurationFailures() + std::vector<RgenStatus>{RGEN_E_UNKNOWN, RGEN_E_XSLT_PARSE,
                                                          RGEN_E_XSLT_APPLY, RGEN_E_XSLT_RESULT};
    return scenario;
}

FaultScenario guardedReading(ErrorCheck check) {
    FaultScenario scenario;
    scenario.name = "guarded reading of persistent data";
    scenario.arrange = [](const FaultFolder& folder) { folder.putPersistentData(); };
    scenario.call = [check](FaultSubject& subject) {
        RgenhError error = newError();
        const RgenStatus status =
            rgenh_getPersistentTexts(subject.generator(), &subject.guid, &subject.pairs, &error);
        return check(status, error);
    };
    scenario.take = [](FaultSubject& subject) {
        const std::string count = std::to_string(subject.pairs.count);
        rgen_freeRgenCAnsiStringSet(&subject.pairs);
        subject.pairs = {};
        return count;
    };
    scenario.failures =
        configurationFailures() +
        std::vector<RgenStatus>{RGEN_E_UNKNOWN, RGEN_E_OPEN_PERSIST, RGEN_E_NO_PERSIST_VALUES};
    scenario.productsOfFailure = {"0"};
    return scenario;
}

FaultScenario guardedStoring(ErrorCheck check) {
    FaultScenario scenario = storingPersistentData("guarded storing of persistent values");
    scenario.call = [check](FaultSubject& subject) {
        RgenhError error = newError();
        const RgenhValue value = rgenh_textValue("a", " text & more ");
        const RgenStatus status =
            rgenh_setPersistentValues(subject.generator(), &subject.guid, &value, 1, &error);
        return check(status, error);
    };
    scenario.failures.push_back(RGEN_E_UNKNOWN);
    return scenario;
}

FaultScenario guardedSimulation(ErrorCheck check) {
    FaultScenario scenario;
    scenario.name = "guarded simulated input";
    scenario.arrange = [](const FaultFolder& folder) {
        writeFile(folder.file("in.xml"),
                  "<data><properties><property name=\"s\" type=\"string\" hint=\"Generic\">a text "
                  "of some length</property></properties></data>");
    };
    scenario.call = [check](FaultSubject& subject) {
        RgenhError error = newError();
        const std::int32_t count = rgenh_getSimulatedRawDataFromFile(
            subject.generator(), subject.files.file("in.xml").c_str(), &subject.values, &error);
        return count < 0 ? check(count, error) : count;
    };
    scenario.take = [](FaultSubject& subject) {
        const std::string count = std::to_string(subject.values.count);
        rgen_freeRgenCVariantSet(&subject.values);
        return count;
    };
    scenario.failures = {0, RGEN_E_UNKNOWN};
    scenario.productsOfFailure = {"0"};
    return scenario;
}

}  // namespace rgen_test
