// Where a report goes: a file that appears in one step, standard output, or a file that vanishes.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "base/interruption.h"
#include "library/generator.h"

namespace cli {

/// How --mode delivers.
enum class Delivery {
    /// A file that appears whole.
    File,
    /// The same, and into pipes and devices.
    Bytes,
    /// A file that the library makes and that vanishes when it is closed.
    DeleteOnClose
};

struct OutputPlan {
    /// Where the report is to end up; "-" is standard output.
    std::string target;
    Delivery delivery = Delivery::File;
    /// The report is converted to pdf.
    bool converts = false;
    /// What the converter gets as the base of relative links.
    std::string converterBase;
};

/// One delivery. The library returns the bytes, since it does not notice a full disk when it writes
/// a file itself; every write of rgen is examined. Whatever goes wrong, no file of it is left, and
/// an older target is as it was.
class ReportOutput {
public:
    explicit ReportOutput(OutputPlan plan);
    ~ReportOutput() { rgen_freeRgenCVariant(&result_); }
    ReportOutput(const ReportOutput&) = delete;
    ReportOutput& operator=(const ReportOutput&) = delete;

    /// Calls the library with a request that lacks nothing but its texts.
    RgenStatus generate(const Generator& generator, Request& request, const std::string& format);

    /// Writes what a successful call has returned under a temporary name, and converts it. Returns
    /// the status that the library has for a target that cannot be made or replaced, and for a
    /// missing converter; throws a CommandError for what the library would not notice.
    RgenStatus prepare();

    /// Why the converter did not run, after RGEN_E_RUN_EXTERNAL.
    const std::string& converterFault() const { return converterFault_; }

    /// Brings a prepared report to its target; returns its size in bytes. Throws a CommandError.
    std::uint64_t deliver();

private:
    std::string_view bytes() const;
    RgenStatus makeFolder(const std::string& fileName);
    RgenStatus convert(const std::string& page);
    void verifyPdf(const std::string& said) const;
    [[noreturn]] void failAsConverted(const std::string& what, const std::string& said) const;

    OutputPlan plan_;
    std::unique_ptr<TemporaryFolder> folder_;
    /// The finished file in the folder.
    std::string path_;
    std::string converterFault_;
    RgenCVariant result_ = {};
};

/// Writes a file in one step; a pipe or device is written as it is. Throws a CommandError.
void writeOutputFile(const std::string& path, std::string_view bytes);

/// Writes to standard output for "-", otherwise as writeOutputFile.
void writeOutput(const std::string& path, std::string_view bytes);

}  // namespace cli
