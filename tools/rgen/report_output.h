// Where a report goes: a file that appears in one step, standard output, or a file that vanishes.
//
// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "generator.h"
#include "interruption.h"

namespace cli {

struct OutputPlan {
    /// Where the report is to end up; "-" is standard output.
    std::string target;
    /// One of RgenOutputMode.
    std::uint64_t mode = RGEN_OUTPUT_FILE;
    /// The report is converted to pdf.
    bool converts = false;
};

/// One delivery. Whatever goes wrong, no file of it is left, and an older target is as it was.
class ReportOutput {
public:
    explicit ReportOutput(OutputPlan plan);
    ~ReportOutput() { rgen_freeRgenCVariant(&result_); }
    ReportOutput(const ReportOutput&) = delete;
    ReportOutput& operator=(const ReportOutput&) = delete;

    /// Calls the library with a request that lacks nothing but its texts.
    RgenStatus generate(const Generator& generator, Request& request, const std::string& format,
                        const std::string& converterBase);

    /// Verifies what a successful call has made and brings it to its target; returns its size in
    /// bytes. Raises a CommandError.
    std::uint64_t deliver();

private:
    std::uint64_t deliverFile();
    std::uint64_t deliverBytes();
    void verifyPdf() const;
    [[noreturn]] void failAsConverted(const std::string& what) const;

    OutputPlan plan_;
    /// The path that the library writes.
    std::string path_;
    std::unique_ptr<TemporaryFolder> folder_;
    std::unique_ptr<TemporaryFile> file_;
    std::unique_ptr<TemporaryFile> html_;
    std::unique_ptr<TemporaryFile> errorText_;
    RgenCVariant result_ = {};
};

/// Tells whether something is at the path that is no ordinary file: a folder, a pipe, a device.
bool isSpecialFile(const std::string& path);

/// Writes a file in one step; a pipe or device is written as it is. Raises a CommandError.
void writeOutputFile(const std::string& path, std::string_view bytes);

/// Writes to standard output for "-", otherwise as writeOutputFile.
void writeOutput(const std::string& path, std::string_view bytes);

}  // namespace cli
