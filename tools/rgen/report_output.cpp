// The library writes under a temporary name beside the target; the rename at the end makes the
// report appear. A target that is no ordinary file is left to the library.
//
// SPDX-License-Identifier: MIT
#include "report_output.h"

#include <cerrno>
#include <filesystem>
#include <fstream>

#include "console.h"
#include "host_system.h"
#include "input_file.h"
#include "pdf_file.h"
#include "xml_content.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

/// The first line that the converter left about its failure.
std::string firstLine(const std::string& path) {
    std::ifstream file(fs::u8path(path), std::ios::binary);
    std::string line;
    std::getline(file, line);
    return trimmed(line);
}

}  // namespace

bool isSpecialFile(const std::string& path) {
    if (path == "-") return false;
    std::error_code ignored;
    const fs::file_status status = fs::status(fs::u8path(path), ignored);
    return fs::exists(status) && !fs::is_regular_file(status);
}

ReportOutput::ReportOutput(OutputPlan plan) : plan_(std::move(plan)) {
    if (plan_.mode == RGEN_OUTPUT_BYTES) return;
    if (plan_.target == "-") {
        folder_ = std::make_unique<TemporaryFolder>();
        path_ = folder_->file("report.pdf");
    } else if (isSpecialFile(plan_.target)) {
        path_ = plan_.target;
    } else {
        path_ = temporaryPathBeside(plan_.target);
        file_ = std::make_unique<TemporaryFile>(path_);
        if (!plan_.converts) return;
        html_ = std::make_unique<TemporaryFile>(path_ + ".html");
        errorText_ = std::make_unique<TemporaryFile>(path_ + ".error.txt");
    }
}

RgenStatus ReportOutput::generate(const Generator& generator, Request& request,
                                  const std::string& format, const std::string& converterBase) {
    request.setTexts(format, path_, converterBase);
    request.record.outputMode = plan_.mode;
    request.record.skipExternalConversion = plan_.converts ? 0 : 1;
    return rgen_generateReport(generator.handle(), &request.record, &result_);
}

std::uint64_t ReportOutput::deliver() {
    if (plan_.mode == RGEN_OUTPUT_BYTES) return deliverBytes();
    if (plan_.mode == RGEN_OUTPUT_DELETE_ON_CLOSE) {
        return closeDeleteOnCloseFile(result_.value.handleValue);
    }
    return deliverFile();
}

std::uint64_t ReportOutput::deliverBytes() {
    std::string_view bytes;
    if (result_.type == RGEN_TYPE_BYTE_ARRAY && result_.value.byteArrayValue.size > 0) {
        const RgenByteArray& array = result_.value.byteArrayValue;
        bytes = {reinterpret_cast<const char*>(array.data), array.size};
    }
    writeOutput(plan_.target, bytes);
    return bytes.size();
}

std::uint64_t ReportOutput::deliverFile() {
    if (plan_.converts) verifyPdf();
    std::error_code failure;
    const fs::path file = fs::u8path(path_);
    const std::uint64_t size = fs::file_size(file, failure);
    if (failure) {
        throw CommandError(ExitCode::Unverified,
                           plan_.target + ": the library wrote no file: " + failure.message(),
                           "check the folder");
    }
    const fs::space_info space = fs::space(file, failure);
    if (!failure && space.available == 0 && !plan_.converts) {
        throw CommandError(ExitCode::Unverified,
                           plan_.target + ": the disk is full, the report may be cut",
                           "make room and try again");
    }
    if (plan_.target == "-") {
        printData(readInputFile(path_, "try again"));
    } else if (file_) {
        file_->renameTo(plan_.target);
    }
    return size;
}

void ReportOutput::failAsConverted(const std::string& what) const {
    const std::string reason = firstLine(path_ + ".error.txt");
    throw CommandError(ExitCode::Unverified, plan_.target + ": " + what,
                       reason.empty() ? "run \"rgen doctor\"" : reason);
}

void ReportOutput::verifyPdf() const {
    if (!exists(path_)) failAsConverted("the converter made no file");
    if (!tools::isWholePdf(fs::u8path(path_))) {
        failAsConverted("the converter's file is not a whole PDF");
    }
    // A page about its failure is no report.
    if (exists(path_ + ".error.txt")) failAsConverted("the converter failed");
}

void writeOutputFile(const std::string& path, std::string_view bytes) {
    const bool isSpecial = isSpecialFile(path);
    std::unique_ptr<TemporaryFile> temporary;
    if (!isSpecial) temporary = std::make_unique<TemporaryFile>(temporaryPathBeside(path));
    errno = 0;
    std::ofstream file(fs::u8path(isSpecial ? path : temporary->path()), std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file) {
        const int reason = errno == 0 ? EIO : errno;
        throw CommandError(
            ExitCode::Unverified,
            "cannot write \"" + path + "\": " + std::generic_category().message(reason),
            "check that the folder exists, may be written and has room");
    }
    if (temporary) temporary->renameTo(path);
}

void writeOutput(const std::string& path, std::string_view bytes) {
    if (path == "-") {
        printData(bytes);
    } else {
        writeOutputFile(path, bytes);
    }
}

}  // namespace cli
