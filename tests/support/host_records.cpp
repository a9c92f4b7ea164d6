// Owners and builders for the records of rgen.h.
//
// SPDX-License-Identifier: MIT
#include "support/host_records.h"

#include <gtest/gtest.h>

#include "support/status_printer.h"

namespace rgen_test {
namespace {

RgenAnsiString textRecord(const std::string& text) {
    RgenAnsiString record{};
    EXPECT_EQ(1, rgen_createRgenAnsiString(text.c_str(), &record));
    return record;
}

void replaceText(RgenAnsiString& record, const std::string& text) {
    rgen_freeRgenAnsiString(&record);
    record = textRecord(text);
}

}  // namespace

const char* const defaultGuidText = "deadbabe-0000-0000-0000-000000000000";

Generator::Generator() : handle_(rgen_newReportGenerator()) {
    EXPECT_NE(nullptr, handle_);
}

Generator::Generator(const std::string& dataDirPath) : Generator() {
    EXPECT_EQ(statusHex(RGEN_OK), statusHex(rgen_setDataDirPath(handle_, dataDirPath.c_str())));
}

Generator::~Generator() {
    rgen_freeReportGenerator(handle_);
}

VariantSet::~VariantSet() {
    for (RgenCVariant& entry : entries_) {
        rgen_freeRgenCVariant(&entry);
    }
}

VariantSet& VariantSet::addInt64(const std::string& name, std::int64_t value, std::uint64_t hint) {
    RgenCVariant entry{};
    EXPECT_EQ(1, rgen_createRgenCVariantInt64(name.c_str(), value, hint, &entry));
    entries_.push_back(entry);
    return *this;
}

VariantSet& VariantSet::addString(const std::string& name, const std::string& text) {
    RgenCVariant entry{};
    EXPECT_EQ(1,
              rgen_createRgenCVariantString(name.c_str(), text.c_str(), RGEN_HINT_GENERIC, &entry));
    entries_.push_back(entry);
    return *this;
}

VariantSet& VariantSet::addBytes(const std::string& name, const std::vector<std::uint8_t>& bytes) {
    static const std::uint8_t none = 0;
    RgenCVariant entry{};
    EXPECT_EQ(1,
              rgen_createRgenCVariantByteArray(name.c_str(), bytes.empty() ? &none : bytes.data(),
                                               bytes.size(), RGEN_HINT_DUMP, &entry));
    entries_.push_back(entry);
    return *this;
}

VariantSet& VariantSet::addHandle(const std::string& name, void* handle) {
    RgenCVariant entry{};
    EXPECT_EQ(1, rgen_createRgenCVariantHandle(name.c_str(), handle, RGEN_HINT_GENERIC, &entry));
    entries_.push_back(entry);
    return *this;
}

const RgenCVariantSet* VariantSet::get() {
    entries_.reserve(1);
    record_.items = entries_.data();
    record_.count = entries_.size();
    return &record_;
}

PairSet::~PairSet() {
    for (RgenAnsiString& key : keys_) {
        rgen_freeRgenAnsiString(&key);
    }
    for (RgenAnsiString& value : values_) {
        rgen_freeRgenAnsiString(&value);
    }
}

PairSet& PairSet::add(const std::string& name, const std::string& text) {
    keys_.push_back(textRecord(name));
    values_.push_back(textRecord(text));
    return *this;
}

const RgenCAnsiStringPairSet* PairSet::get() {
    keys_.reserve(1);
    values_.reserve(1);
    record_.keys = keys_.data();
    record_.values = values_.data();
    record_.count = keys_.size();
    return &record_;
}

InputParams::InputParams() {
    record_.templateGuid = defaultGuid();
    record_.outputMode = RGEN_OUTPUT_BYTES;
    format("html");
}

InputParams::~InputParams() {
    rgen_freeRgenAnsiString(&record_.outputFormat);
    rgen_freeRgenAnsiString(&record_.outputPath);
    rgen_freeRgenAnsiString(&record_.converterBaseArg);
}

InputParams& InputParams::guid(const RgenGuid& guid) {
    record_.templateGuid = guid;
    return *this;
}

InputParams& InputParams::format(const std::string& format) {
    replaceText(record_.outputFormat, format);
    return *this;
}

InputParams& InputParams::output(std::uint64_t mode, const std::string& path) {
    record_.outputMode = mode;
    replaceText(record_.outputPath, path);
    return *this;
}

InputParams& InputParams::skipExternalConversion(std::uint64_t skip) {
    record_.skipExternalConversion = skip;
    return *this;
}

InputParams& InputParams::converterBaseArg(const std::string& argument) {
    replaceText(record_.converterBaseArg, argument);
    return *this;
}

RgenCInputParams* InputParams::get() {
    record_.variants = *variants_.get();
    record_.pairs = *pairs_.get();
    return &record_;
}

std::string Result::bytes() const {
    if (record_.type != RGEN_TYPE_BYTE_ARRAY) {
        return {};
    }
    const std::vector<std::uint8_t> bytes = toBytes(record_.value.byteArrayValue);
    return {bytes.begin(), bytes.end()};
}

RgenGuid guidFromText(const std::string& text) {
    std::string digits;
    for (const char character : text) {
        if (character != '-') {
            digits.push_back(character);
        }
    }
    EXPECT_EQ(32U, digits.size()) << text;
    digits.resize(32, '0');
    const auto number = [&digits](std::size_t from, std::size_t length) {
        return std::stoul(digits.substr(from, length), nullptr, 16);
    };
    RgenGuid guid{};
    guid.data1 = static_cast<std::uint32_t>(number(0, 8));
    guid.data2 = static_cast<std::uint16_t>(number(8, 4));
    guid.data3 = static_cast<std::uint16_t>(number(12, 4));
    for (std::size_t index = 0; index < 8; ++index) {
        guid.data4[index] = static_cast<std::uint8_t>(number(16 + 2 * index, 2));
    }
    return guid;
}

RgenGuid defaultGuid() {
    return guidFromText(defaultGuidText);
}

std::string toText(const RgenAnsiString& record) {
    return record.data == nullptr ? std::string() : std::string(record.data, record.length);
}

std::vector<std::uint8_t> toBytes(const RgenByteArray& record) {
    return record.data == nullptr
               ? std::vector<std::uint8_t>()
               : std::vector<std::uint8_t>(record.data, record.data + record.size);
}

TextMap toMap(const RgenCAnsiStringPairSet& set) {
    TextMap map;
    for (std::uint64_t index = 0; index < set.count; ++index) {
        const bool isNew = map.emplace(toText(set.keys[index]), toText(set.values[index])).second;
        EXPECT_TRUE(isNew) << "given twice: " << toText(set.keys[index]);
    }
    return map;
}

PersistentData persistentData(const Generator& generator, const RgenGuid& guid) {
    RgenCAnsiStringPairSet set{};
    PersistentData data{};
    data.status = rgen_getPersistentData(generator.get(), &guid, &set);
    data.pairs = toMap(set);
    rgen_freeRgenCAnsiStringSet(&set);
    return data;
}

RgenStatus storePairs(const Generator& generator, const RgenGuid& guid, const TextMap& pairs) {
    PairSet set;
    for (const auto& [name, text] : pairs) {
        set.add(name, text);
    }
    return rgen_setPersistentDataFromAnsiStringPairSet(generator.get(), &guid, set.get());
}

ReadVariant readVariant(const RgenCVariant& record) {
    ReadVariant value{};
    value.type = record.type;
    value.hint = record.hint;
    if (record.type == RGEN_TYPE_INT64) {
        value.number = record.value.int64Value;
    } else if (record.type == RGEN_TYPE_STRING) {
        value.text = toText(record.value.stringValue);
    } else if (record.type == RGEN_TYPE_BYTE_ARRAY) {
        value.bytes = toBytes(record.value.byteArrayValue);
    }
    return value;
}

SimulatedData simulatedData(const Generator& generator, const std::string& path) {
    RgenCVariantSet set{};
    SimulatedData data{};
    data.result = rgen_getSimulatedRawDataFromFile(generator.get(), path.c_str(), &set);
    data.count = set.count;
    for (std::uint64_t index = 0; index < set.count; ++index) {
        const RgenCVariant& record = set.items[index];
        data.values.emplace(toText(record.name), readVariant(record));
    }
    rgen_freeRgenCVariantSet(&set);
    return data;
}

}  // namespace rgen_test
