// SPDX-License-Identifier: MIT
#include "engine/output_file.h"

#include <fstream>
#include <system_error>

#include "base/failure.h"
#include "engine/error_pdf.h"
#include "engine/temporary_files.h"
#include "pdf/pdf_file.h"
#include "process/this_process.h"
#include "text/utf8.h"

namespace vellum {
namespace {

namespace fs = std::filesystem;

Failure unwritable(const fs::path& output, const std::string& why) {
    return {ExitCode::Output, "cannot write \"" + output.u8string() + "\": " + why};
}

/// The maximum length of a file name: bytes on Linux, UTF-16 units on Windows.
constexpr std::size_t longestName = 255;

fs::path errorTextPath(const fs::path& output) {
    const std::string ending = ".error.txt";
    const std::string name =
        tools::utf8Prefix(output.filename().u8string(), longestName - ending.size());
    return output.parent_path() / fs::u8path(name + ending);
}

fs::path folderOf(const fs::path& output) {
    return output.has_parent_path() ? output.parent_path() : fs::path(".");
}

fs::path partIn(const fs::path& folder) {
    return folder / (".vellum-part-" + randomLetters());
}

void requirePlace(const fs::path& output) {
    std::error_code ignored;
    if (fs::is_directory(output, ignored)) {
        throw unwritable(output, "it is a folder; name a file");
    }
    if (fs::exists(output, ignored) && !fs::is_regular_file(output, ignored)) {
        throw unwritable(output, "it is no ordinary file; name another");
    }
    const fs::path folder = folderOf(output);
    if (!fs::is_directory(folder, ignored)) {
        throw unwritable(output, "the folder \"" + folder.u8string() +
                                     "\" does not exist; make it or name another");
    }
}

void writeText(const fs::path& path, const std::string& text) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
}

/// Replaces the output by a PDF with the message; failures are ignored.
void writeErrorPdf(const std::string& message, const fs::path& output) {
    std::error_code failure;
    try {
        const fs::path part = partIn(folderOf(output));
        createNewFile(part);
        writeText(part, errorPdf(message));
        fs::rename(part, output, failure);
        if (failure) fs::remove(part, failure);
    } catch (const std::system_error&) {
        // The error text contains the message, too.
    }
}

}  // namespace

PartFile::PartFile(const fs::path& output, tools::Guardian& guardian)
    : output_(output), part_(partIn(folderOf(tools::absolutePath(output)))) {
    requirePlace(output_);
    guardian.watch(part_);
    try {
        createNewFile(part_);
    } catch (const std::system_error& error) {
        throw unwritable(output_, error.code().default_error_condition().message() +
                                      "; check the rights of the folder");
    }
}

PartFile::~PartFile() {
    std::error_code ignored;
    if (!part_.empty()) fs::remove(part_, ignored);
}

std::uintmax_t PartFile::size() const {
    std::error_code failure;
    const std::uintmax_t size = fs::file_size(part_, failure);
    return failure ? 0 : size;
}

bool PartFile::isComplete() const {
    return tools::isWholePdf(part_);
}

void PartFile::deliver(const std::function<void()>& lastCheck) {
    std::error_code failure;
    // A symbolic link remains; the file that it points to is replaced.
    const fs::path target = fs::is_symlink(output_) ? fs::canonical(output_, failure) : output_;
    lastCheck();
    if (!failure) fs::rename(part_, target, failure);
    if (failure) {
        throw unwritable(output_, failure.message() + "; check that no other program has it open");
    }
    part_.clear();
}

void writeErrorReport(const fs::path& output, const std::string& message, bool mayWriteOutput) {
    const std::string wanted = tools::environmentVariable("VELLUM_ON_ERROR").value_or("text");
    if (wanted == "none") return;
    writeText(errorTextPath(output), "vellum: " + message + "\n");
    if (wanted != "page" || !mayWriteOutput) return;
    writeErrorPdf(message, output);
}

void removeErrorText(const fs::path& output) {
    std::error_code ignored;
    fs::remove(errorTextPath(output), ignored);
}

}  // namespace vellum
