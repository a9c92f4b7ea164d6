// One call of the library that is repeated with one failure after the other, and what it works on.
//
// SPDX-License-Identifier: MIT
#ifndef RGEN_TESTS_FAULTS_FAULT_SCENARIO_H
#define RGEN_TESTS_FAULTS_FAULT_SCENARIO_H

#include <functional>
#include <string>
#include <vector>

#include "strata_repgenlib/rgen.h"
#include "support/host_records.h"
#include "support/temp_folder.h"

namespace rgen_test {

// A folder with two data directories. "main" has a configuration, templates for all formats and
// persistent data; "plain" is a single template with one property, for the report that is made
// after each failure.
class FaultFolder {
public:
    FaultFolder();

    const TempFolder& folder() const { return folder_; }
    std::string file(const std::string& name) const { return folder_.file(name); }
    // Puts the template of "main" for one format.
    void putTemplate(const std::string& text, const std::string& format) const;
    // Puts the persistent data of "main".
    void putPersistentData() const;
    static const char* const persistentData;

private:
    TempFolder folder_;
};

// What one call works on: a new generator and empty records.
class FaultSubject {
public:
    explicit FaultSubject(const FaultFolder& files, const std::string& dataDirectory = "main");
    ~FaultSubject();
    FaultSubject(const FaultSubject&) = delete;
    FaultSubject& operator=(const FaultSubject&) = delete;

    RgenReportGenerator* generator() const { return generator_.get(); }
    // True when no generation is registered, the lock is free, and a report in another data
    // directory comes with the right bytes.
    bool works();

    const FaultFolder& files;
    InputParams input;
    RgenCVariant result{};
    RgenCAnsiStringPairSet pairs{};
    RgenCVariantSet values{};
    const RgenGuid guid = defaultGuid();

private:
    Generator generator_;
};

struct FaultScenario {
    std::string name;
    // Puts the files before each call; may be empty.
    std::function<void(const FaultFolder&)> arrange;
    // The arguments; may be empty.
    std::function<void(FaultSubject&)> prepare;
    // The call itself, and nothing else. Its number is a status, or a result that counts as one.
    std::function<RgenStatus(FaultSubject&)> call;
    // Everything that the call returned, as lines of text; also releases it. May be empty.
    std::function<std::string(FaultSubject&)> take;
    // The failures that the call documents and that a fault can cause.
    std::vector<RgenStatus> failures;
    // The results that are allowed after a failure.
    std::vector<std::string> productsOfFailure = {""};
    // The product may lack lines.
    bool mayLoseLines = false;
};

// Mode 2: the bytes of the result.
std::string takeBytes(FaultSubject& subject);
// Mode 1: what the file of the handle holds, see takeDeliveredFile(); the handle is closed.
std::string takeHandle(FaultSubject& subject);
// The whole file of that name in the subject's folder, which is removed; "missing" without one.
std::function<std::string(FaultSubject&)> takeFile(const std::string& name);

// The failures of every function that loads the configuration.
std::vector<RgenStatus> configurationFailures();
std::vector<RgenStatus> operator+(std::vector<RgenStatus> left,
                                  const std::vector<RgenStatus>& right);

// A call that replaces the persistent data of "main", except for the call itself and its arguments.
// A failure leaves the old file, or none.
FaultScenario storingPersistentData(const std::string& name);

// True when `product` is `whole` without some of its lines; a stored file still ends as one.
bool lacksLinesOnly(const std::string& whole, const std::string& product);

}  // namespace rgen_test

#endif
