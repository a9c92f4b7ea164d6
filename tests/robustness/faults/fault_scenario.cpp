// SPDX-License-Identifier: MIT
#include "robustness/faults/fault_scenario.h"

#include <algorithm>
#include <mutex>
#include <sstream>
#include <utility>

#include "report_generator.h"
#include "support/test_platform.h"

namespace rgen_test {
namespace {

constexpr const char* configuration =
    "<config><reportTypes><type guid=\"deadbabe-0000-0000-0000-000000000000\">"
    "<persistDataFile>persist_data.xml</persistDataFile>"
    "<reportTypeFile>test_stylesheet.xsl</reportTypeFile></type></reportTypes></config>";

constexpr const char* plainTemplate =
    "<xsl:stylesheet version=\"1.0\" xmlns:xsl=\"http://www.w3.org/1999/XSL/Transform\">"
    "<xsl:output method=\"text\"/><xsl:template match=\"/\">"
    "<xsl:value-of select=\"//property[@name='plain']\"/></xsl:template></xsl:stylesheet>";

bool isIdle(rgen::ReportGenerator& generator) {
    const std::unique_lock lock(generator.mutex, std::try_to_lock);
    return lock.owns_lock() && generator.cancellationRegistry.empty();
}

bool isWholeFile(const std::string& text) {
    const std::string end = "</data>\n";
    return text.size() >= end.size() &&
           text.compare(text.size() - end.size(), end.size(), end) == 0;
}

}  // namespace

const char* const FaultFolder::persistentData =
    "<data><properties><property name=\"p\">stored</property>"
    "<property name=\"q\">stored, too</property></properties></data>";

FaultFolder::FaultFolder() {
    for (const char* name : {"main", "plain"})
        writeFile(file(std::string(name) + "/.rgen/config.xml"), configuration);
    writeFile(file("plain/.rgen/templates/txt/test_stylesheet.xsl"), plainTemplate);
}

void FaultFolder::putTemplate(const std::string& text, const std::string& format) const {
    replaceFile(file("main/.rgen/templates/" + format + "/test_stylesheet.xsl"), text);
}

void FaultFolder::putPersistentData() const {
    replaceFile(file("main/.rgen/persist_data.xml"), persistentData);
}

FaultSubject::FaultSubject(const FaultFolder& faultFolder, const std::string& dataDirectory)
    : files(faultFolder), generator_(faultFolder.file(dataDirectory)) {}

FaultSubject::~FaultSubject() {
    rgen_freeRgenCVariant(&result);
    rgen_freeRgenCAnsiStringSet(&pairs);
    rgen_freeRgenCVariantSet(&values);
}

bool FaultSubject::works() {
    if (!isIdle(*reinterpret_cast<rgen::ReportGenerator*>(generator()))) return false;
    if (rgen_setDataDirPath(generator(), files.file("plain").c_str()) != RGEN_OK) return false;
    InputParams plain;
    plain.variants().addString("plain", "whole");
    plain.format("txt").output(RGEN_OUTPUT_BYTES);
    Result report;
    const RgenStatus status = rgen_generateReport(generator(), plain.get(), report.get());
    return status == RGEN_OK && report.bytes() == "whole";
}

std::string takeBytes(FaultSubject& subject) {
    std::string text;
    if (subject.result.type == RGEN_TYPE_BYTE_ARRAY) {
        const RgenByteArray& bytes = subject.result.value.byteArrayValue;
        text.assign(bytes.data, bytes.data + bytes.size);
    }
    rgen_freeRgenCVariant(&subject.result);
    return text;
}

std::string takeHandle(FaultSubject& subject) {
    if (subject.result.type != RGEN_TYPE_HANDLE) return {};
    std::string text = takeDeliveredFile(subject.result.value.handleValue);
    rgen_freeRgenCVariant(&subject.result);
    return text;
}

std::function<std::string(FaultSubject&)> takeFile(const std::string& name) {
    return [name](FaultSubject& subject) {
        const std::string path = subject.files.file(name);
        if (!exists(path)) return std::string("missing");
        std::string text = readFile(path);
        removeAll(path);
        return text;
    };
}

std::vector<RgenStatus> configurationFailures() {
    return {RGEN_E_CREATE_DIR,         RGEN_E_CREATE_CONFIG,    RGEN_E_OPEN_CONFIG,
            RGEN_E_GUID_NOT_IN_CONFIG, RGEN_E_XPATH_CONTEXT,    RGEN_E_XPATH_SEARCH,
            RGEN_E_NO_TYPE_MAP,        RGEN_E_NO_VALID_TYPE_MAP};
}

std::vector<RgenStatus> operator+(std::vector<RgenStatus> left,
                                  const std::vector<RgenStatus>& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

FaultScenario storingPersistentData(const std::string& name) {
    FaultScenario scenario;
    scenario.name = name;
    scenario.arrange = [](const FaultFolder& files) { files.putPersistentData(); };
    scenario.take = takeFile("main/.rgen/persist_data.xml");
    scenario.productsOfFailure = {"missing", FaultFolder::persistentData};
    scenario.failures = configurationFailures() +
                        std::vector<RgenStatus>{RGEN_E_DELETE_PERSIST, RGEN_E_CREATE_PERSIST};
    return scenario;
}

bool lacksLinesOnly(const std::string& whole, const std::string& product) {
    if (isWholeFile(whole) && !isWholeFile(product)) return false;
    std::istringstream wholeLines(whole);
    std::istringstream lines(product);
    std::string wholeLine;
    for (std::string line; std::getline(lines, line);) {
        do {
            if (!std::getline(wholeLines, wholeLine)) return false;
        } while (wholeLine != line);
    }
    return true;
}

}  // namespace rgen_test
