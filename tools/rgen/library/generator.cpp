// Records are created and freed only with the functions of the library.
//
// SPDX-License-Identifier: MIT
#include "library/generator.h"

#include <cstdio>
#include <new>

#include "base/host_system.h"
#include "library/status_table.h"

namespace cli {
namespace {

void require(int32_t created) {
    if (created == 0) throw std::bad_alloc();
}

/// The create functions return 1 even when memory for a name is exhausted.
void requireName(const RgenCVariant& record) {
    if (record.name.data == nullptr) throw std::bad_alloc();
}

void createRecord(const Value& value, RgenCVariant& record) {
    const char* const name = value.name.c_str();
    if (value.type == RGEN_TYPE_STRING) {
        require(rgen_createRgenCVariantString(name, value.content.c_str(), value.hint, &record));
    } else if (value.type == RGEN_TYPE_INT64) {
        require(rgen_createRgenCVariantInt64(name, value.number, value.hint, &record));
    } else {
        // The library requires a non-null address even for no bytes.
        static const std::uint8_t nothing = 0;
        const std::uint8_t* const bytes = value.bytes.empty() ? &nothing : value.bytes.data();
        require(
            rgen_createRgenCVariantByteArray(name, bytes, value.bytes.size(), value.hint, &record));
    }
    requireName(record);
}

std::string textOf(const RgenAnsiString& record) {
    return record.data == nullptr ? std::string() : std::string(record.data, record.length);
}

Value valueOf(const RgenCVariant& record) {
    Value value;
    value.name = textOf(record.name);
    value.type = static_cast<ValueType>(record.type);
    value.hint = static_cast<ValueHint>(record.hint);
    if (value.type == RGEN_TYPE_STRING) {
        value.content = textOf(record.value.stringValue);
    } else if (value.type == RGEN_TYPE_INT64) {
        value.number = record.value.int64Value;
    } else if (value.type == RGEN_TYPE_BYTE_ARRAY) {
        const RgenByteArray& bytes = record.value.byteArrayValue;
        value.bytes.assign(bytes.data, bytes.data + bytes.size);
    }
    return value;
}

}  // namespace

ValueRecords::ValueRecords(const std::vector<Value>& values) {
    if (values.empty()) return;
    require(rgen_createRgenCVariantSet(&set_, values.size()));
    try {
        for (std::size_t i = 0; i < values.size(); ++i)
            createRecord(values[i], set_.items[i]);
    } catch (...) {
        rgen_freeRgenCVariantSet(&set_);
        throw;
    }
}

RgenCVariantSet ValueRecords::release() {
    const RgenCVariantSet released = set_;
    set_ = {};
    return released;
}

void LibraryRequest::setValues(const std::vector<Value>& values) {
    record.variants = ValueRecords(values).release();
}

void LibraryRequest::setPairs(const std::vector<Value>& pairs) {
    if (pairs.empty()) return;
    require(rgen_createRgenCAnsiStringpairSet(&record.pairs, pairs.size()));
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        require(rgen_createRgenAnsiString(pairs[i].name.c_str(), &record.pairs.keys[i]));
        require(rgen_createRgenAnsiString(pairs[i].content.c_str(), &record.pairs.values[i]));
    }
}

void LibraryRequest::setTexts(const std::string& format, const std::string& outputPath,
                              const std::string& converterBase) {
    require(rgen_createRgenAnsiString(format.c_str(), &record.outputFormat));
    require(rgen_createRgenAnsiString(outputPath.c_str(), &record.outputPath));
    require(rgen_createRgenAnsiString(converterBase.c_str(), &record.converterBaseArg));
}

Generator::Generator() : handle_(rgen_newReportGenerator()) {
    if (handle_ == nullptr) throw std::bad_alloc();
}

void Generator::setDataDir(const std::string& folder) {
    const RgenStatus status = rgen_setDataDirPath(handle_, folder.c_str());
    if (status >= 0) return;
    CommandError error = failure(folder, status, "make it with: rgen init \"" + folder + "\"");
    error.exitCode = ExitCode::Environment;
    throw error;
}

std::vector<Value> Generator::persistentData(const RgenGuid& guid, RgenStatus& status) const {
    RgenCAnsiStringPairSet pairs = {};
    status = rgen_getPersistentData(handle_, &guid, &pairs);
    std::vector<Value> values;
    for (std::uint64_t i = 0; i < pairs.count; ++i) {
        Value value;
        value.name = textOf(pairs.keys[i]);
        value.content = textOf(pairs.values[i]);
        value.source = "persistent data";
        values.push_back(std::move(value));
    }
    rgen_freeRgenCAnsiStringSet(&pairs);
    return values;
}

RgenStatus Generator::setPersistentData(const RgenGuid& guid,
                                        const std::vector<Value>& values) const {
    const ValueRecords records(values);
    return rgen_setPersistentDataFromCVariantSet(handle_, &guid, &records.set());
}

RgenStatus Generator::dump(const std::vector<Value>& values, const std::string& path) const {
    LibraryRequest request;
    request.setValues(values);
    return rgen_dumpRawInputDataToFile(handle_, &request.record, path.c_str());
}

std::vector<Value> Generator::simulatedInput(const std::string& path) const {
    RgenCVariantSet set = {};
    {
        // The library prints a remark about byte dumps to standard output.
        const StdoutToStderr redirected;
        rgen_getSimulatedRawDataFromFile(handle_, path.c_str(), &set);
    }
    std::vector<Value> values;
    for (std::uint64_t i = 0; i < set.count; ++i)
        values.push_back(valueOf(set.items[i]));
    rgen_freeRgenCVariantSet(&set);
    return values;
}

std::string Generator::statusText(RgenStatus status) const {
    return rgen_getStatusCodeDescription(handle_, status);
}

std::string Generator::statusHex(RgenStatus status) {
    char text[11] = {};
    std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned>(status));
    return text;
}

std::string Generator::statusWord(RgenStatus status) {
    const StatusExplanation* const known = findStatus(status);
    return statusHex(status) + (known == nullptr ? "" : " " + std::string(known->name));
}

CommandError Generator::failure(const std::string& subject, RgenStatus status,
                                const std::string& hint) const {
    CommandError error(ExitCode::Refused,
                       subject + ": " + statusText(status) + " (" + statusWord(status) + ")", hint);
    error.status = status;
    return error;
}

}  // namespace cli
