// The exports that create records, with each allocation failing in turn.
//
// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "robustness/faults/allocation_sweep.h"
#include "support/allocation_faults.h"

namespace rgen_test {
namespace {

const std::uint8_t threeBytes[] = {1, 2, 3};

std::string describe(const RgenAnsiString& text) {
    if (text.data == nullptr) return text.length == 0 ? "none" : "length without a text";
    return toText(text);
}

std::string describe(bool isWhole, bool isEmpty) {
    return isWhole ? "whole" : isEmpty ? "none" : "half";
}

// The present content of the result record: name and value, a line each. What is missing has no
// line.
std::string takeRecord(FaultSubject& subject) {
    std::string lines;
    const RgenCVariant& record = subject.result;
    if (record.name.data != nullptr) lines += "name " + describe(record.name) + "\n";
    lines += "type " + std::to_string(record.type) + "\n";
    lines += "hint " + std::to_string(record.hint) + "\n";
    if (record.type == RGEN_TYPE_STRING) {
        if (record.value.stringValue.data != nullptr) lines += describe(record.value.stringValue);
    } else if (record.type == RGEN_TYPE_BYTE_ARRAY) {
        const RgenByteArray& bytes = record.value.byteArrayValue;
        if (bytes.data != nullptr) lines += std::to_string(bytes.size) + " bytes\n";
    } else {
        lines += std::to_string(record.value.int64Value) + "\n";
    }
    rgen_freeRgenCVariant(&subject.result);
    return lines;
}

// The result for a named value is 1 even when its name cannot be allocated.
FaultScenario namedValue(const std::string& name) {
    FaultScenario scenario;
    scenario.name = name;
    scenario.take = takeRecord;
    scenario.mayLoseLines = true;
    return scenario;
}

// Without its text or bytes the result is 0, and the rest of the record is filled.
FaultScenario namedBuffer(const std::string& name, const std::string& typeAndHint) {
    FaultScenario scenario = namedValue(name);
    scenario.failures = {0};
    scenario.productsOfFailure = {"name name\n" + typeAndHint, typeAndHint};
    return scenario;
}

// A set or a single text either comes whole or not at all, with the result 0.
FaultScenario wholeRecord(const std::string& name) {
    FaultScenario scenario;
    scenario.name = name;
    scenario.failures = {0};
    scenario.productsOfFailure = {"none"};
    return scenario;
}

class FailingAllocationsInRecords : public testing::Test {
protected:
    FaultFolder files;
};

// The only call of this program that describes: it is the first one of the process.
TEST(StatusDescription, TakesNoMemory) {
    const Generator generator;
    const char* text = nullptr;
    std::size_t count = 0;
    {
        const FailingAllocation none(1, FailureForm::AllFrom);
        text = rgen_getStatusCodeDescription(generator.get(), RGEN_E_CREATE_DIR);
        count = none.count();
    }
    EXPECT_STREQ("Cannot create directory", text);
    EXPECT_EQ(0U, count);
}

TEST_F(FailingAllocationsInRecords, NamedValues) {
    FaultScenario number = namedValue("named integer");
    number.call = [](FaultSubject& subject) {
        return rgen_createRgenCVariantInt64("name", 7, RGEN_HINT_SIZE, &subject.result);
    };
    sweepAllocations(files, number);
    FaultScenario handle = namedValue("named handle");
    handle.call = [](FaultSubject& subject) {
        return rgen_createRgenCVariantHandle("name", nullptr, 1, &subject.result);
    };
    sweepAllocations(files, handle);
    FaultScenario text = namedBuffer("named text", "type 2\nhint 1\n");
    text.call = [](FaultSubject& subject) {
        return rgen_createRgenCVariantString("name", "text", 1, &subject.result);
    };
    sweepAllocations(files, text);
    FaultScenario bytes = namedBuffer("named bytes", "type 3\nhint 8\n");
    bytes.call = [](FaultSubject& subject) {
        return rgen_createRgenCVariantByteArray("name", threeBytes, 3, 1, &subject.result);
    };
    sweepAllocations(files, bytes);
}

TEST_F(FailingAllocationsInRecords, Sets) {
    FaultScenario pairs = wholeRecord("set of pairs");
    pairs.call = [](FaultSubject& subject) {
        return rgen_createRgenCAnsiStringpairSet(&subject.pairs, 3);
    };
    pairs.take = [](FaultSubject& subject) {
        const bool whole = subject.pairs.keys != nullptr && subject.pairs.values != nullptr;
        const bool none = subject.pairs.keys == nullptr && subject.pairs.values == nullptr;
        const std::uint64_t count = subject.pairs.count;
        rgen_freeRgenCAnsiStringSet(&subject.pairs);
        return describe(whole && count == 3, none && count == 0);
    };
    sweepAllocations(files, pairs);
    FaultScenario values = wholeRecord("set of values");
    values.call = [](FaultSubject& subject) {
        return rgen_createRgenCVariantSet(&subject.values, 3);
    };
    values.take = [](FaultSubject& subject) {
        const RgenCVariantSet set = subject.values;
        rgen_freeRgenCVariantSet(&subject.values);
        return describe(set.items != nullptr && set.count == 3,
                        set.items == nullptr && set.count == 0);
    };
    sweepAllocations(files, values);
}

TEST_F(FailingAllocationsInRecords, TextAndBytes) {
    FaultScenario text = wholeRecord("text");
    text.call = [](FaultSubject& subject) {
        return rgen_createRgenAnsiString("text", &subject.result.name);
    };
    text.take = [](FaultSubject& subject) {
        const std::string description = describe(subject.result.name);
        rgen_freeRgenAnsiString(&subject.result.name);
        return description;
    };
    sweepAllocations(files, text);
    FaultScenario bytes = wholeRecord("bytes");
    bytes.call = [](FaultSubject& subject) {
        return rgen_createRgenByteArray(threeBytes, 3, &subject.result.value.byteArrayValue);
    };
    bytes.take = [](FaultSubject& subject) {
        RgenByteArray& array = subject.result.value.byteArrayValue;
        const bool isWhole = array.data != nullptr && array.size == 3;
        const bool isEmpty = array.data == nullptr && array.size == 0;
        rgen_freeRgenByteArray(&array);
        return describe(isWhole, isEmpty);
    };
    sweepAllocations(files, bytes);
}

}  // namespace
}  // namespace rgen_test
