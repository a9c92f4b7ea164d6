// C++ wrappers for the report library: RAII for handles and records, statuses as CommandErrors.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "base/command_error.h"
#include "values/value.h"

namespace cli {

/// Owns an array of values for the library.
class ValueRecords {
public:
    explicit ValueRecords(const std::vector<Value>& values);
    ~ValueRecords() { rgen_freeRgenCVariantSet(&set_); }
    ValueRecords(const ValueRecords&) = delete;
    ValueRecords& operator=(const ValueRecords&) = delete;

    const RgenCVariantSet& set() const { return set_; }

    /// Releases ownership; the caller frees the array.
    RgenCVariantSet release();

private:
    RgenCVariantSet set_ = {};
};

/// Owns the input parameters of one report.
class LibraryRequest {
public:
    LibraryRequest() = default;
    ~LibraryRequest() { rgen_freeRgenCInputParams(&record); }
    LibraryRequest(const LibraryRequest&) = delete;
    LibraryRequest& operator=(const LibraryRequest&) = delete;

    void setValues(const std::vector<Value>& values);
    void setPairs(const std::vector<Value>& pairs);
    void setTexts(const std::string& format, const std::string& outputPath,
                  const std::string& converterBase);

    RgenCInputParams record = {};
};

class Generator {
public:
    Generator();
    ~Generator() { rgen_freeReportGenerator(handle_); }
    Generator(const Generator&) = delete;
    Generator& operator=(const Generator&) = delete;

    RgenReportGenerator* handle() const { return handle_; }

    /// Throws a CommandError when the folder does not exist.
    void setDataDir(const std::string& folder);

    /// The persistent data that the library returns: texts are XML content. `status` says why there
    /// is none.
    std::vector<Value> persistentData(const RgenGuid& guid, RgenStatus& status) const;

    RgenStatus setPersistentData(const RgenGuid& guid, const std::vector<Value>& values) const;

    RgenStatus dump(const std::vector<Value>& values, const std::string& path) const;

    /// The values that the library reads from a simulated input file; none when it reads none.
    std::vector<Value> simulatedInput(const std::string& path) const;

    /// The library's text for a status.
    std::string statusText(RgenStatus status) const;

    /// "0xC0000009 RGEN_E_TEMPLATE_NOT_FOUND".
    static std::string statusWord(RgenStatus status);
    static std::string statusHex(RgenStatus status);

    /// A failure that the library reported about `subject`.
    CommandError failure(const std::string& subject, RgenStatus status,
                         const std::string& hint) const;

private:
    RgenReportGenerator* handle_;
};

}  // namespace cli
