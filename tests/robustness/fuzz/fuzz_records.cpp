// Owners of the public header's records, and the checks of persistent data.
//
// SPDX-License-Identifier: MIT
#include <algorithm>
#include <string_view>

#include "fuzz_support.h"

namespace rgen_fuzz {
namespace {

bool isTrimmed(const std::string& text) {
    constexpr std::string_view whiteSpace = " \t\n\v\f\r";
    return !text.empty() && whiteSpace.find(text.front()) == std::string_view::npos &&
           whiteSpace.find(text.back()) == std::string_view::npos;
}

// Only characters that XML allows.
bool isXmlText(const std::string& text) {
    const bool hasControls = std::any_of(text.begin(), text.end(), [](char character) {
        const auto code = static_cast<unsigned char>(character);
        return code < 0x20 && code != '\t' && code != '\n' && code != '\r';
    });
    return !hasControls && isUtf8(text) && text.find("\xEF\xBF\xBE") == std::string::npos &&
           text.find("\xEF\xBF\xBF") == std::string::npos;
}

void takeOver(const RgenCAnsiStringPairSet& set, TextMap& pairs) {
    for (std::uint64_t i = 0; i < set.count; ++i) {
        const std::string name(set.keys[i].data, set.keys[i].length);
        const std::string text(set.values[i].data, set.values[i].length);
        require(isTrimmed(name), "a name is empty or not trimmed", name);
        require(isTrimmed(text), "a text is empty or not trimmed", text);
        require(pairs.emplace(name, text).second, "a name came back twice", name);
    }
}

// A request for bytes; the values stay those of the caller.
struct Request {
    Request(const char* format, const RgenCVariantSet& values) {
        record.templateGuid = defaultGuid;
        record.outputMode = RGEN_OUTPUT_BYTES;
        rgen_createRgenAnsiString(format, &record.outputFormat);
        record.variants = values;
    }
    ~Request() {
        record.variants = {};
        rgen_freeRgenCInputParams(&record);
    }
    Request(const Request&) = delete;
    Request& operator=(const Request&) = delete;

    RgenCInputParams record{};
};

struct Result {
    Result() = default;
    ~Result() { rgen_freeRgenCVariant(&record); }
    Result(const Result&) = delete;
    Result& operator=(const Result&) = delete;

    RgenCVariant record{};
};

}  // namespace

const RgenGuid defaultGuid = {0xDEADBABE, 0, 0, {0, 0, 0, 0, 0, 0, 0, 0}};

Generator::Generator(const std::string& relativeFolder) : handle_(rgen_newReportGenerator()) {
    require(handle_ != nullptr, "no generator");
    createWorkFolder(relativeFolder);
    requireOneOf(rgen_setDataDirPath(handle_, workPath(relativeFolder).c_str()), {RGEN_OK},
                 "rgen_setDataDirPath");
}

ValueSet::~ValueSet() {
    for (RgenCVariant& item : items_)
        rgen_freeRgenCVariant(&item);
}

RgenCVariant& ValueSet::add() {
    return items_.emplace_back();
}

void ValueSet::addString(const std::string& name, const std::string& text) {
    rgen_createRgenCVariantString(name.c_str(), text.c_str(), RGEN_HINT_GENERIC, &add());
}

RgenCVariantSet ValueSet::record() {
    return {items_.data(), items_.size()};
}

PairSet::PairSet(const TextMap& pairs) {
    if (pairs.empty()) return;
    require(rgen_createRgenCAnsiStringpairSet(&record_, pairs.size()) == 1, "no set of pairs");
    std::size_t i = 0;
    for (const auto& [name, text] : pairs) {
        rgen_createRgenAnsiString(name.c_str(), &record_.keys[i]);
        rgen_createRgenAnsiString(text.c_str(), &record_.values[i]);
        ++i;
    }
}

RgenStatus readPersistentData(const Generator& generator, TextMap& pairs) {
    pairs.clear();
    RgenCAnsiStringPairSet set = {};
    const RgenStatus status = rgen_getPersistentData(generator.get(), &defaultGuid, &set);
    require((status == RGEN_OK) == (set.count > 0), "status and pairs do not go together");
    takeOver(set, pairs);
    rgen_freeRgenCAnsiStringSet(&set);
    return status;
}

void requireStableStorage(const Generator& generator, const TextMap& pairs) {
    if (pairs.empty()) return;
    for (const auto& [name, text] : pairs) {
        if (text.find('&') != std::string::npos || !isXmlText(name) || !isXmlText(text)) return;
    }
    const PairSet stored(pairs);
    requireOneOf(
        rgen_setPersistentDataFromAnsiStringPairSet(generator.get(), &defaultGuid, stored.get()),
        {RGEN_OK}, "rgen_setPersistentDataFromAnsiStringPairSet");
    TextMap again;
    requireOneOf(readPersistentData(generator, again), {RGEN_OK}, "reading the same again");
    if (again == pairs) return;
    for (const auto& [name, text] : pairs) {
        require(again.count(name) != 0, "a name got lost in storage", name);
        require(again[name] == text, "a text changed in storage", text);
    }
    fail("storage has more than was stored");
}

RgenStatus generateBytes(const Generator& generator, const RgenCVariantSet& values,
                         const char* format, std::string& report) {
    Request request(format, values);
    Result result;
    const RgenStatus status = rgen_generateReport(generator.get(), &request.record, &result.record);
    const RgenByteArray& bytes = result.record.value.byteArrayValue;
    if (status == RGEN_OK && result.record.type == RGEN_TYPE_BYTE_ARRAY) {
        report.assign(reinterpret_cast<const char*>(bytes.data), bytes.size);
    }
    return status;
}

}  // namespace rgen_fuzz
