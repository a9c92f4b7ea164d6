// Everything is written in a temporary folder next to the target; the rename at the end makes the
// report appear.
//
// SPDX-License-Identifier: MIT
#include "report/report_output.h"

#include <filesystem>
#include <fstream>
#include <system_error>

#include "base/console.h"
#include "base/host_system.h"
#include "base/input_file.h"
#include "base/paths.h"
#include "base/safe_files.h"
#include "base/text_functions.h"
#include "pdf/pdf_file.h"
#include "process/this_process.h"
#include "report/converter.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view warningStart = "vellum: warning: ";

bool isWarning(const std::string& line) {
    return line.compare(0, warningStart.size(), warningStart) == 0;
}

/// The first non-blank line of a file that is no warning.
std::string firstLine(const std::string& path) {
    std::ifstream file(fs::u8path(path), std::ios::binary);
    for (std::string line; std::getline(file, line);) {
        if (!trimmed(line).empty() && !isWarning(line)) return trimmed(line);
    }
    return {};
}

std::vector<std::string> warningsIn(const std::string& path) {
    std::vector<std::string> warnings;
    std::ifstream file(fs::u8path(path), std::ios::binary);
    for (std::string line; std::getline(file, line);)
        if (isWarning(line)) warnings.push_back(trimmed(line.substr(warningStart.size())));
    return warnings;
}

CommandError unwritable(const std::string& target, const std::error_code& reason) {
    return {ExitCode::Unverified, "cannot write \"" + target + "\": " + reason.message(),
            "check that the folder exists, may be written and has room"};
}

}  // namespace

ReportOutput::ReportOutput(OutputPlan plan) : plan_(std::move(plan)) {}

RgenStatus ReportOutput::generate(repgen::Generator& generator, const repgen::Request& request) {
    if (plan_.delivery != Delivery::DeleteOnClose) {
        bytes_ = generator.generateBytes(request);
        return RGEN_OK;
    }
    // A folder or device in its place is left to the library.
    path_ = plan_.target;
    const RgenStatus status = isSpecialFile(path_) ? RGEN_OK : makeFolder("report");
    if (status >= 0) file_ = generator.generateOpenFile(request, path_);
    return status;
}

std::string_view ReportOutput::bytes() const {
    return {reinterpret_cast<const char*>(bytes_.data()), bytes_.size()};
}

RgenStatus ReportOutput::prepare() {
    const bool isFile = plan_.delivery != Delivery::DeleteOnClose;
    if (!isFile || (plan_.target == "-" && !plan_.converts)) return RGEN_OK;
    if (isSpecialFile(plan_.target)) {
        return plan_.delivery == Delivery::File ? RGEN_E_OVERWRITE_OUTPUT : RGEN_OK;
    }
    const RgenStatus status = makeFolder(plan_.converts ? "report.pdf" : "report");
    if (status < 0) return status;
    const std::string written = plan_.converts ? path_ + ".html" : path_;
    try {
        writeNewFile(written, bytes());
    } catch (const std::system_error& error) {
        throw unwritable(plan_.target, error.code());
    }
    return plan_.converts ? convert(written) : RGEN_OK;
}

RgenStatus ReportOutput::makeFolder(const std::string& fileName) {
    try {
        folder_ = plan_.target == "-" ? std::make_unique<TemporaryFolder>()
                                      : std::make_unique<TemporaryFolder>(plan_.target);
    } catch (const std::system_error& error) {
        if (plan_.delivery != Delivery::Bytes && !isFullDisk(error.code())) {
            return RGEN_E_CREATE_OUTPUT;
        }
        throw unwritable(plan_.target, error.code());
    }
    path_ = folder_->file(fileName);
    return RGEN_OK;
}

RgenStatus ReportOutput::convert(const std::string& page) {
    Conversion conversion;
    conversion.page = page;
    conversion.output = path_;
    conversion.said = folder_->file("converter.log");
    // The page is in a temporary folder, so relative links would not work without a base.
    conversion.base = plan_.converterBase;
    if (conversion.base.empty() && plan_.target != "-") {
        conversion.base = tools::absolutePath(fs::u8path(folderOf(plan_.target))).u8string();
    }
    converterFault_ = runConverter(conversion);
    if (!converterFault_.empty()) return RGEN_E_RUN_EXTERNAL;
    converterWarnings_ = warningsIn(conversion.said);
    verifyPdf(conversion.said);
    return RGEN_OK;
}

void ReportOutput::failAsConverted(const std::string& what, const std::string& said) const {
    std::string reason = firstLine(path_ + ".error.txt");
    if (reason.empty()) reason = firstLine(said);
    throw CommandError(ExitCode::Unverified, plan_.target + ": " + what,
                       reason.empty() ? "run \"rgen doctor\"" : reason);
}

void ReportOutput::verifyPdf(const std::string& said) const {
    if (!exists(path_)) failAsConverted("the converter made no file", said);
    if (!tools::isWholePdf(fs::u8path(path_))) {
        failAsConverted("the converter's file is not a whole PDF", said);
    }
    // The converter may have written a page about its failure; that is not a report.
    if (exists(path_ + ".error.txt")) failAsConverted("the converter failed", said);
}

std::uint64_t ReportOutput::deliver() {
    if (plan_.delivery == Delivery::DeleteOnClose) {
        return closeDeleteOnCloseFile(file_.release());
    }
    std::error_code ignored;
    const std::uint64_t size =
        plan_.converts ? fs::file_size(fs::u8path(path_), ignored) : bytes().size();
    if (plan_.target == "-") {
        const std::string file = plan_.converts ? readInputFile(path_, "try again") : std::string();
        const ImmediateInterrupt atOnce;
        printData(plan_.converts ? file : bytes());
    } else if (folder_) {
        folder_->deliver(path_, plan_.target);
    } else {
        writeOutputFile(plan_.target, bytes());
    }
    return size;
}

void writeOutputFile(const std::string& path, std::string_view bytes) {
    try {
        if (isSpecialFile(path)) {
            const ImmediateInterrupt atOnce;
            return writeIntoSpecialFile(path, bytes);
        }
        const TemporaryFolder folder(path);
        const std::string part = folder.file("output");
        writeNewFile(part, bytes);
        folder.deliver(part, path);
    } catch (const std::system_error& error) {
        throw unwritable(path, error.code());
    }
}

void writeOutput(const std::string& path, std::string_view bytes) {
    if (path == "-") {
        printData(bytes);
    } else {
        writeOutputFile(path, bytes);
    }
}

}  // namespace cli
