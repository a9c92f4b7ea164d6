// Bytes as a file of simulated input: what is read from it must be well-formed records, which every
// other operation takes.
//
// SPDX-License-Identifier: MIT
#include <set>

#include "fuzz_support.h"
#include "fuzz_targets.h"

namespace rgen_fuzz {
namespace {

bool isEmptyRecord(const RgenCVariant& record) {
    return record.type == RGEN_TYPE_EMPTY && record.hint == 0 && record.name.data == nullptr;
}

bool hasAllowedHint(const RgenCVariant& record) {
    switch (record.type) {
        case RGEN_TYPE_INT64:
            return record.hint >= RGEN_HINT_GENERIC && record.hint <= RGEN_HINT_SPEED;
        case RGEN_TYPE_STRING:
            return record.hint == RGEN_HINT_GENERIC && record.value.stringValue.length > 0;
        case RGEN_TYPE_BYTE_ARRAY:
            return record.hint == RGEN_HINT_DUMP && record.value.byteArrayValue.size > 0;
        default:
            return false;
    }
}

void checkRecords(const RgenCVariantSet& set) {
    std::set<std::string> names;
    for (std::uint64_t i = 0; i < set.count; ++i) {
        const RgenCVariant& record = set.items[i];
        require(!isEmptyRecord(record) && hasAllowedHint(record), "a record is not well-formed");
        const std::string name(record.name.data, record.name.length);
        require(!name.empty() && names.insert(name).second, "a name is empty or came twice", name);
    }
}

void useRecords(const Generator& target, const RgenCVariantSet& set) {
    RgenCInputParams input = {};
    input.variants = set;
    requireOneOf(rgen_dumpRawInputDataToFile(target.get(), &input, workPath("dump.xml").c_str()),
                 {RGEN_OK}, "rgen_dumpRawInputDataToFile");
    requireOneOf(rgen_setPersistentDataFromCVariantSet(target.get(), &defaultGuid, &set), {RGEN_OK},
                 "rgen_setPersistentDataFromCVariantSet");
    require(
        readWorkFile("dump.xml").size() == readWorkFile("simulation/.rgen/persist_data.xml").size(),
        "dump and persistent data differ");
    TextMap pairs;
    requireOneOf(readPersistentData(target, pairs), {RGEN_OK, RGEN_E_NO_VALID_PERSIST_VALUES},
                 "rgen_getPersistentData");
    // A dump carries no types.
    RgenCVariantSet none = {};
    require(
        rgen_getSimulatedRawDataFromFile(target.get(), workPath("dump.xml").c_str(), &none) == 0 &&
            none.items == nullptr && none.count == 0,
        "a dump was read as simulated input");
}

}  // namespace

void fuzzSimulation(const std::string& input) {
    static const Generator target("simulation");
    writeWorkFile("simulation.xml", input);
    RgenCVariantSet set = {};
    const std::int32_t filled =
        rgen_getSimulatedRawDataFromFile(target.get(), workPath("simulation.xml").c_str(), &set);
    require((filled == 1) == (set.count > 0), "result and set do not go together");
    checkRecords(set);
    if (filled == 1) useRecords(target, set);
    rgen_freeRgenCVariantSet(&set);
}

}  // namespace rgen_fuzz
