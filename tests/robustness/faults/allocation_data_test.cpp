// Settings, persistent data, dump, simulated input and cancellation with each allocation failing in
// turn.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstdint>
#include <numeric>
#include <set>
#include <string>

#include "robustness/faults/allocation_sweep.h"

namespace rgen_test {
namespace {

// What the host's records hold before a call; memory that ends during the call leaves them so.
constexpr std::uint64_t oldCount = 77;
const RgenCAnsiStringPairSet oldPairs = {nullptr, nullptr, oldCount};
const RgenCVariantSet oldValues = {nullptr, oldCount};

// One line for each pair; nothing when the record was left alone.
std::string takePairs(FaultSubject& subject) {
    const bool isOld = subject.pairs.keys == nullptr && subject.pairs.values == nullptr;
    if (isOld) return subject.pairs.count == oldCount ? "" : "overwritten with nothing";
    std::set<std::string> lines;
    for (std::uint64_t i = 0; i < subject.pairs.count; ++i) {
        const RgenAnsiString& name = subject.pairs.keys[i];
        const RgenAnsiString& text = subject.pairs.values[i];
        const bool isWhole = name.data != nullptr && text.data != nullptr;
        lines.insert(isWhole ? std::string(name.data) + "=" + text.data + "\n" : "half a pair\n");
    }
    rgen_freeRgenCAnsiStringSet(&subject.pairs);
    return std::accumulate(lines.begin(), lines.end(), std::string());
}

// What a value shows; empty without memory for it.
std::string valueText(const RgenCVariant& record) {
    if (record.type == RGEN_TYPE_INT64) return std::to_string(record.value.int64Value);
    if (record.type == RGEN_TYPE_BYTE_ARRAY) {
        const RgenByteArray& bytes = record.value.byteArrayValue;
        return std::string(bytes.data, bytes.data + bytes.size);
    }
    return record.value.stringValue.data == nullptr ? "" : record.value.stringValue.data;
}

// One line for each value; nothing when the record was left alone.
std::string takeValues(FaultSubject& subject) {
    if (subject.values.items == nullptr)
        return subject.values.count == oldCount ? "" : "overwritten with nothing";
    std::set<std::string> lines;
    for (std::uint64_t i = 0; i < subject.values.count; ++i) {
        const RgenCVariant& record = subject.values.items[i];
        const std::string text = valueText(record);
        const bool isWhole = record.name.data != nullptr && !text.empty();
        lines.insert(isWhole ? record.name.data + ("=" + text + "\n") : "half a value\n");
    }
    rgen_freeRgenCVariantSet(&subject.values);
    return std::accumulate(lines.begin(), lines.end(), std::string());
}

void fillPairs(FaultSubject& subject) {
    subject.input.pairs()
        .add("first", "a text that does not fit into the inside of a string")
        .add("second", "2")
        .add("third", "3");
}

void fillValues(FaultSubject& subject) {
    subject.input.variants()
        .addInt64("size", 4096, RGEN_HINT_SIZE)
        .addString("text", "a text that does not fit into the inside of a string")
        .addBytes("bytes", {1, 2, 3});
}

FaultScenario storing(const std::string& name) {
    FaultScenario scenario = storingPersistentData(name);
    scenario.mayLoseLines = true;
    return scenario;
}

class FailingAllocationsInData : public testing::Test {
protected:
    FaultFolder files;
};

TEST_F(FailingAllocationsInData, SetDataDirPath) {
    FaultScenario scenario;
    scenario.name = "data directory path";
    scenario.call = [](FaultSubject& subject) {
        return rgen_setDataDirPath(subject.generator(), subject.files.folder().path().c_str());
    };
    sweepAllocations(files, scenario);
}

TEST_F(FailingAllocationsInData, GetPersistentData) {
    files.putPersistentData();
    FaultScenario scenario;
    scenario.name = "reading persistent data";
    scenario.call = [](FaultSubject& subject) {
        subject.pairs = oldPairs;
        return rgen_getPersistentData(subject.generator(), &subject.guid, &subject.pairs);
    };
    scenario.take = takePairs;
    scenario.failures = configurationFailures() +
                        std::vector<RgenStatus>{RGEN_E_OPEN_PERSIST, RGEN_E_NO_PERSIST_VALUES,
                                                RGEN_E_NO_VALID_PERSIST_VALUES};
    scenario.mayLoseLines = true;
    sweepAllocations(files, scenario);
}

TEST_F(FailingAllocationsInData, SetPersistentDataFromPairs) {
    FaultScenario scenario = storing("storing pairs");
    scenario.prepare = fillPairs;
    scenario.call = [](FaultSubject& subject) {
        return rgen_setPersistentDataFromAnsiStringPairSet(subject.generator(), &subject.guid,
                                                           &subject.input.get()->pairs);
    };
    sweepAllocations(files, scenario);
}

TEST_F(FailingAllocationsInData, SetPersistentDataFromValues) {
    FaultScenario scenario = storing("storing values");
    scenario.prepare = fillValues;
    scenario.call = [](FaultSubject& subject) {
        return rgen_setPersistentDataFromCVariantSet(subject.generator(), &subject.guid,
                                                     &subject.input.get()->variants);
    };
    sweepAllocations(files, scenario);
}

// The data directory and its configuration are made by the call.
TEST_F(FailingAllocationsInData, FreshDataDirectory) {
    FaultScenario scenario = storing("fresh data directory");
    scenario.arrange = [](const FaultFolder& folder) { removeAll(folder.file("main/.rgen")); };
    scenario.prepare = fillPairs;
    scenario.call = [](FaultSubject& subject) {
        return rgen_setPersistentDataFromAnsiStringPairSet(subject.generator(), &subject.guid,
                                                           &subject.input.get()->pairs);
    };
    sweepAllocations(files, scenario);
}

TEST_F(FailingAllocationsInData, Dump) {
    FaultScenario scenario;
    scenario.name = "dump";
    scenario.arrange = [](const FaultFolder& folder) { writeFile(folder.file("dump"), "old"); };
    scenario.prepare = fillValues;
    scenario.call = [](FaultSubject& subject) {
        return rgen_dumpRawInputDataToFile(subject.generator(), subject.input.get(),
                                           subject.files.file("dump").c_str());
    };
    scenario.take = takeFile("dump");
    scenario.productsOfFailure = {"missing", "old"};
    scenario.failures = {RGEN_E_DELETE_DUMP, RGEN_E_CREATE_PERSIST};
    scenario.mayLoseLines = true;
    sweepAllocations(files, scenario);
}

TEST_F(FailingAllocationsInData, SimulatedInput) {
    writeFile(
        files.file("in.xml"),
        "<data><properties>"
        "<property name=\"n\" type=\"int64\" hint=\"Size\">1</property>"
        "<property name=\"s\" type=\"string\" hint=\"Generic\">a text of some length</property>"
        "<property name=\"b\" type=\"byte_array\" hint=\"Dump\">0x01, 0x02</property>"
        "</properties></data>");
    FaultScenario scenario;
    scenario.name = "simulated input";
    scenario.call = [](FaultSubject& subject) {
        subject.values = oldValues;
        return rgen_getSimulatedRawDataFromFile(
            subject.generator(), subject.files.file("in.xml").c_str(), &subject.values);
    };
    scenario.take = takeValues;
    scenario.failures = {0};
    scenario.mayLoseLines = true;
    sweepAllocations(files, scenario);
}

TEST_F(FailingAllocationsInData, Cancel) {
    FaultScenario scenario;
    scenario.name = "cancellation";
    scenario.call = [](FaultSubject& subject) {
        rgen_cancel(subject.generator(), &subject.guid);
        rgen_cancel(subject.generator(), nullptr);
        return RGEN_OK;
    };
    sweepAllocations(files, scenario);
}

TEST_F(FailingAllocationsInData, ANewGenerator) {
    FaultScenario scenario;
    scenario.name = "new generator";
    scenario.call = [](FaultSubject&) {
        RgenReportGenerator* generator = rgen_newReportGenerator();
        rgen_freeReportGenerator(generator);
        return generator != nullptr ? 1 : 0;
    };
    scenario.failures = {0};
    sweepAllocations(files, scenario);
}

}  // namespace
}  // namespace rgen_test
