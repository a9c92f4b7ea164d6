// The report library as rgen uses it: handles and records with owners, statuses as CommandErrors.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "base/command_error.h"
#include "values/value.h"

namespace cli {

/// An array of values for the library.
class ValueRecords {
public:
    explicit ValueRecords(const std::vector<Value>& values);
    ~ValueRecords() { rgen_freeRgenCVariantSet(&set_); }
    ValueRecords(const ValueRecords&) = delete;
    ValueRecords& operator=(const ValueRecords&) = delete;

    const RgenCVariantSet& set() const { return set_; }

    /// Gives the array away; the caller frees it.
    RgenCVariantSet release();

private:
    RgenCVariantSet set_ = {};
};

/// One request for a report.
class Request {
public:
    Request() = default;
    ~Request() { rgen_freeRgenCInputParams(&record); }
    Request(const Request&) = delete;
    Request& operator=(const Request&) = delete;

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

    /// Raises a CommandError when the folder does not exist.
    void setDataDir(const std::string& folder);

    /// The persistent data as the library gives it: texts are XML content. `status` tells why there
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
