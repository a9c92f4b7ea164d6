// Owners and builders for the records of rgen.h, made of nothing but the exported functions.
//
// A builder hands out the record that points into the builder: build first, then call get(), and
// keep the builder alive during the call. Records that the library filled are read with the
// functions at the end.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_SUPPORT_HOST_RECORDS_H
#define RGEN_TESTS_SUPPORT_HOST_RECORDS_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "strata_repgenlib/rgen.h"

namespace rgen_test {

using TextMap = std::map<std::string, std::string>;

// A generator handle for one scope.
class Generator {
public:
    Generator();
    // Also names the data directory's parent; a failure fails the test.
    explicit Generator(const std::string& dataDirPath);
    ~Generator();
    Generator(const Generator&) = delete;
    Generator& operator=(const Generator&) = delete;

    RgenReportGenerator* get() const { return handle_; }

private:
    RgenReportGenerator* handle_;
};

// Typed values. An empty set has a non-null array and the count 0.
class VariantSet {
public:
    VariantSet() = default;
    ~VariantSet();
    VariantSet(const VariantSet&) = delete;
    VariantSet& operator=(const VariantSet&) = delete;

    VariantSet& addInt64(const std::string& name, std::int64_t value,
                         std::uint64_t hint = RGEN_HINT_GENERIC);
    VariantSet& addString(const std::string& name, const std::string& text);
    VariantSet& addBytes(const std::string& name, const std::vector<std::uint8_t>& bytes);
    VariantSet& addHandle(const std::string& name, void* handle);
    // The entry as the create export made it, for cases that change its fields by hand. A changed
    // field must still be one that rgen_freeRgenCVariant accepts.
    RgenCVariant& at(std::size_t index) { return entries_.at(index); }

    const RgenCVariantSet* get();

private:
    std::vector<RgenCVariant> entries_;
    RgenCVariantSet record_{};
};

// Name/text pairs. An empty set has non-null arrays and the count 0.
class PairSet {
public:
    PairSet() = default;
    ~PairSet();
    PairSet(const PairSet&) = delete;
    PairSet& operator=(const PairSet&) = delete;

    PairSet& add(const std::string& name, const std::string& text);

    const RgenCAnsiStringPairSet* get();

private:
    std::vector<RgenAnsiString> keys_;
    std::vector<RgenAnsiString> values_;
    RgenCAnsiStringPairSet record_{};
};

// The input of one report. It starts with the default report type, format "html" and mode 2.
class InputParams {
public:
    InputParams();
    ~InputParams();
    InputParams(const InputParams&) = delete;
    InputParams& operator=(const InputParams&) = delete;

    VariantSet& variants() { return variants_; }
    PairSet& pairs() { return pairs_; }
    InputParams& guid(const RgenGuid& guid);
    InputParams& format(const std::string& format);
    InputParams& output(std::uint64_t mode, const std::string& path = std::string());
    InputParams& skipExternalConversion(std::uint64_t skip);
    InputParams& converterBaseArg(const std::string& argument);

    // The record with everything set so far; its fields may be changed by hand afterwards (the
    // next get() fills variants and pairs again and leaves the other fields alone).
    RgenCInputParams* get();

private:
    VariantSet variants_;
    PairSet pairs_;
    RgenCInputParams record_{};
};

// A result record, freed at the end of the scope.
class Result {
public:
    Result() = default;
    ~Result() { rgen_freeRgenCVariant(&record_); }
    Result(const Result&) = delete;
    Result& operator=(const Result&) = delete;

    RgenCVariant* get() { return &record_; }
    const RgenCVariant& record() const { return record_; }
    // The bytes of a mode 2 result; the empty text for any other content.
    std::string bytes() const;

private:
    RgenCVariant record_{};
};

// A GUID from its 36 character text; any letter case.
RgenGuid guidFromText(const std::string& text);
// The report type of the default configuration.
extern const char* const defaultGuidText;
RgenGuid defaultGuid();

std::string toText(const RgenAnsiString& record);
std::vector<std::uint8_t> toBytes(const RgenByteArray& record);
TextMap toMap(const RgenCAnsiStringPairSet& set);

// The status of rgen_getPersistentData and the pairs (empty when the set was untouched).
struct PersistentData {
    RgenStatus status;
    TextMap pairs;
};
PersistentData persistentData(const Generator& generator, const RgenGuid& guid);

// Stores pairs through rgen_setPersistentDataFromAnsiStringPairSet.
RgenStatus storePairs(const Generator& generator, const RgenGuid& guid, const TextMap& pairs);

// One value that came back from the library, by fields that compare with ==.
struct ReadVariant {
    std::uint64_t type;
    std::uint64_t hint;
    std::int64_t number;
    std::string text;
    std::vector<std::uint8_t> bytes;
};
ReadVariant readVariant(const RgenCVariant& record);

// The result of rgen_getSimulatedRawDataFromFile; entries without a name are under the empty text.
struct SimulatedData {
    std::int32_t result;
    std::uint64_t count;
    std::map<std::string, ReadVariant> values;
};
SimulatedData simulatedData(const Generator& generator, const std::string& path);

}  // namespace rgen_test

#endif
