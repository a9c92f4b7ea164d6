// The calls that take a generator. Records are made and freed in call_records.cpp.
//
// SPDX-License-Identifier: MIT
#include "call_sequence.h"

#include <cstdint>
#include <cstring>
#include <iterator>
#include <stdexcept>
#include <string_view>

#include "platform/platform.h"

namespace rgen_fuzz {
namespace {

constexpr std::size_t mostCalls = 48;

// Runs a call that may throw one of the exceptions that the header names for files and paths.
template <typename Call>
void attempt(const Call& call) {
    try {
        call();
    } catch (const std::runtime_error&) {
        return;
    }
}

void requireDocumented(RgenReportGenerator* generator, RgenStatus status) {
    if (generator == nullptr) return requireOneOf(status, {RGEN_E_BAD_PARAMETER}, "a null handle");
    const std::string_view text = rgen_getStatusCodeDescription(generator, status);
    require(text != "Unknown code." && text != "Undescribed error", "a status without description");
}

}  // namespace

CallSequence::~CallSequence() {
    freeAllRecords();
    for (RgenReportGenerator* generator : generators_)
        rgen_freeReportGenerator(generator);
}

void CallSequence::run() {
    for (RgenReportGenerator*& generator : generators_)
        generator = rgen_newReportGenerator();
    rgen_setDataDirPath(generators_[0], "a");
    for (std::size_t i = 0; i < mostCalls && !reader_.atEnd(); ++i) {
        switch (reader_.choice(14)) {
            case 0:
                callLifetime();
                break;
            case 1:
                callSettings();
                break;
            case 2:
            case 3:
                callGenerate(generator());
                break;
            case 4:
                callPersistentData(generator());
                break;
            case 5:
                callFiles();
                break;
            case 6:
                callDescription();
                break;
            case 7:
            case 8:
                fillRequest();
                break;
            case 9:
                createSets();
                break;
            case 10:
                createTexts();
                break;
            case 11:
                createValue();
                break;
            default:
                freeRecords();
                break;
        }
    }
}

const RgenGuid* CallSequence::guid() {
    static RgenGuid other = {};
    if (reader_.choice(4) != 0) return &defaultGuid;
    other.data1 = static_cast<std::uint32_t>(reader_.number());
    return &other;
}

// Relative to the work folder, which is the current one.
const char* CallSequence::path() {
    static const char* const paths[] = {
        "a",        "b",        "b/file",         "missing",   "out", "", ".", "missing/file",
        "dump.xml", "\xFF/bad", "simulation.xml", "b/\xD0\xB0"};
    return paths[reader_.choice(std::size(paths))];
}

void CallSequence::callLifetime() {
    RgenReportGenerator*& handle = generator();
    rgen_freeReportGenerator(handle);
    handle = reader_.choice(4) == 0 ? nullptr : rgen_newReportGenerator();
}

void CallSequence::callSettings() {
    RgenReportGenerator* handle = generator();
    switch (reader_.choice(5)) {
        case 0:
            rgen_setTranslateFunction(handle, translate, this);
            break;
        case 1:
            rgen_setTranslateFunction(handle, nullptr, nullptr);
            break;
        case 2:
            rgen_cancel(handle, nullptr);
            break;
        case 3:
            rgen_cancel(handle, guid());
            break;
        default:
            attempt([&] { requireDocumented(handle, rgen_setDataDirPath(handle, path())); });
            requireOneOf(rgen_setDataDirPath(handle, nullptr), {RGEN_E_BAD_PARAMETER},
                         "a null path");
            break;
    }
}

void CallSequence::callGenerate(RgenReportGenerator* handle) {
    rgen_freeRgenCVariant(&value_);
    generating_ = handle;
    attempt([&] {
        const RgenStatus status = rgen_generateReport(handle, &input_, &value_);
        requireDocumented(handle, status);
        if (handle != nullptr) checkResult(status);
    });
    generating_ = nullptr;
    requireOneOf(rgen_generateReport(handle, nullptr, &value_), {RGEN_E_BAD_PARAMETER}, "no input");
}

void CallSequence::checkResult(RgenStatus status) {
    const bool handleExpected =
        status == RGEN_OK && input_.outputMode == RGEN_OUTPUT_DELETE_ON_CLOSE;
    const bool bytesExpected = status == RGEN_OK && input_.outputMode == RGEN_OUTPUT_BYTES;
    require((value_.type == RGEN_TYPE_HANDLE) == handleExpected, "a handle too much or too few");
    require(value_.type != RGEN_TYPE_BYTE_ARRAY || bytesExpected, "bytes that nobody asked for");
    require(!bytesExpected || value_.value.byteArrayValue.size > 0, "a report without bytes");
    if (handleExpected) rgen::platform::closeFile(value_.value.handleValue);
}

void CallSequence::callPersistentData(RgenReportGenerator* handle) {
    const std::size_t operation = reader_.choice(3);
    const RgenGuid* type = guid();
    attempt([&] {
        if (operation == 0) {
            rgen_freeRgenCAnsiStringSet(&pairs_);
            const bool wanted = reader_.choice(4) != 0;
            requireDocumented(handle,
                              rgen_getPersistentData(handle, type, wanted ? &pairs_ : nullptr));
        } else if (handle != nullptr && operation == 1) {
            requireDocumented(handle,
                              rgen_setPersistentDataFromAnsiStringPairSet(handle, type, &pairs_));
        } else if (handle != nullptr) {
            requireDocumented(handle,
                              rgen_setPersistentDataFromCVariantSet(handle, type, &values_));
        }
    });
}

void CallSequence::callFiles() {
    RgenReportGenerator* handle = generator();
    attempt([&] {
        if (reader_.choice(2) == 0) {
            requireDocumented(handle, rgen_dumpRawInputDataToFile(handle, &input_, path()));
        } else {
            rgen_freeRgenCVariantSet(&values_);
            values_ = {};
            const std::int32_t filled = rgen_getSimulatedRawDataFromFile(handle, path(), &values_);
            require((filled == 1) == (values_.count > 0), "result and set do not go together");
        }
    });
}

void CallSequence::callDescription() {
    const auto status = static_cast<RgenStatus>(reader_.number());
    RgenReportGenerator* handle = generator();
    const char* text = rgen_getStatusCodeDescription(handle, status);
    require(std::strlen(text) > 0 && text == rgen_getStatusCodeDescription(handle, status),
            "a description changed");
}

const char* RGEN_CALL CallSequence::translate(const char* text, void* sequence) {
    auto& self = *static_cast<CallSequence*>(sequence);
    // One order of the two locks, as a host with two threads has to keep.
    if (self.insideCallback_ || self.generating_ != self.generators_[0]) return text;
    self.insideCallback_ = true;
    self.useOther(self.generators_[1]);
    self.insideCallback_ = false;
    static const char* const texts[] = {"", "plain", "<b/>", "<broken",
                                        "QT_TRANSLATE_NOOP(\"QObject\", \"first\")"};
    const std::size_t chosen = self.reader_.choice(6);
    return chosen < std::size(texts) ? texts[chosen] : text;
}

void CallSequence::useOther(RgenReportGenerator*& other) {
    switch (reader_.choice(7)) {
        case 0:
            rgen_cancel(other, nullptr);
            break;
        case 1:
            rgen_cancel(other, guid());
            break;
        case 2:
            rgen_freeReportGenerator(other);
            other = nullptr;
            break;
        case 3:
            attempt([&] { rgen_setDataDirPath(other, path()); });
            break;
        case 4:
            attempt([&] {
                RgenCVariant result = {};
                const RgenStatus status = rgen_generateReport(other, &input_, &result);
                requireDocumented(other, status);
                if (result.type == RGEN_TYPE_HANDLE) {
                    rgen::platform::closeFile(result.value.handleValue);
                }
                rgen_freeRgenCVariant(&result);
            });
            break;
        case 5:
            callPersistentData(other);
            break;
        default:
            break;
    }
}

}  // namespace rgen_fuzz
