// Records of the library become values.
//
// SPDX-License-Identifier: MIT
#include "library/library_calls.h"

#include <cstdio>

#include "base/host_system.h"

namespace cli {
namespace {

std::string textOf(const RgenAnsiString& record) {
    return record.data == nullptr ? std::string() : std::string(record.data, record.length);
}

repgen::Value contentOf(const RgenCVariant& record) {
    if (record.type == RGEN_TYPE_STRING) {
        return repgen::Text::markup(textOf(record.value.stringValue));
    }
    if (record.type == RGEN_TYPE_INT64) {
        return {record.value.int64Value, static_cast<repgen::Hint>(record.hint)};
    }
    const RgenByteArray& bytes = record.value.byteArrayValue;
    return repgen::Bytes(bytes.data, bytes.data + bytes.size);
}

}  // namespace

void setDataDir(repgen::Generator& generator, const std::string& folder) {
    try {
        generator.setDataDir(folder);
    } catch (const repgen::StatusError& failure) {
        CommandError error =
            statusFailure(folder, failure.status(), "make it with: rgen init \"" + folder + "\"");
        error.exitCode = ExitCode::Environment;
        throw error;
    }
}

std::vector<Value> persistentValues(const repgen::Generator& generator, const repgen::Guid& type,
                                    RgenStatus& status) {
    repgen::Owned<RgenCAnsiStringPairSet> pairs;
    try {
        status =
            repgen::call(rgenh_getPersistentData, generator.handle(), &type.record(), pairs.get());
    } catch (const repgen::StatusError& failure) {
        status = failure.status();
    }
    std::vector<Value> values;
    for (std::uint64_t i = 0; i < pairs->count; ++i) {
        values.push_back({textOf(pairs->keys[i]), repgen::Text::markup(textOf(pairs->values[i])),
                          "persistent data"});
    }
    return values;
}

std::vector<Value> simulatedValues(const repgen::Generator& generator, const std::string& path) {
    repgen::Owned<RgenCVariantSet> set;
    {
        // The library prints a remark about byte dumps to standard output.
        const StdoutToStderr redirected;
        repgen::call(rgenh_getSimulatedRawDataFromFile, generator.handle(), path.c_str(),
                     set.get());
    }
    std::vector<Value> values;
    for (std::uint64_t i = 0; i < set->count; ++i)
        values.push_back({textOf(set->items[i].name), contentOf(set->items[i]), path});
    return values;
}

RgenhVersions loadedLibraries() {
    RgenhVersions versions = {};
    versions.size = sizeof versions;
    repgen::call(rgenh_getVersions, &versions);
    return versions;
}

std::string statusHex(RgenStatus status) {
    char text[11] = {};
    std::snprintf(text, sizeof text, "0x%08X", static_cast<unsigned>(status));
    return text;
}

std::string statusWord(RgenStatus status) {
    const std::string_view name = repgen::statusName(status);
    return statusHex(status) + (name.empty() ? "" : " ") + std::string(name);
}

std::string statusSentence(RgenStatus status) {
    return std::string(repgen::statusText(status)) + " (" + statusWord(status) + ")";
}

CommandError statusFailure(const std::string& subject, RgenStatus status, const std::string& hint) {
    CommandError error(ExitCode::Refused, subject + ": " + statusSentence(status), hint);
    error.status = status;
    return error;
}

}  // namespace cli
