// Part file, rename, error text.
//
// SPDX-License-Identifier: MIT
#include "output_file.h"

#include <cerrno>
#include <fstream>
#include <system_error>

#include "child_process.h"
#include "error_page.h"
#include "failure.h"
#include "pdf_file.h"

namespace vellum {
namespace {

namespace fs = std::filesystem;

Failure unwritable(const fs::path& output, const std::string& why) {
    return {ExitCode::Output, "cannot write \"" + output.u8string() + "\": " + why};
}

fs::path withEnding(fs::path path, const char* ending) {
    path += ending;
    return path;
}

void requirePlace(const fs::path& output) {
    std::error_code ignored;
    if (fs::is_directory(output, ignored)) {
        throw unwritable(output, "it is a folder; name a file");
    }
    if (fs::exists(output, ignored) && !fs::is_regular_file(output, ignored)) {
        throw unwritable(output, "it is no ordinary file; name another");
    }
    const fs::path folder = output.has_parent_path() ? output.parent_path() : fs::path(".");
    if (!fs::is_directory(folder, ignored)) {
        throw unwritable(output, "the folder \"" + folder.u8string() +
                                     "\" does not exist; make it or name another");
    }
}

void writeText(const fs::path& path, const std::string& text) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << text;
}

}  // namespace

PartFile::PartFile(const fs::path& output)
    : output_(output),
      part_(withEnding(tools::absolutePath(output),
                       (".part-" + std::to_string(tools::processNumber())).c_str())) {
    requirePlace(output_);
    errno = 0;
    if (!std::ofstream(part_, std::ios::binary)) {
        const int reason = errno == 0 ? EIO : errno;
        throw unwritable(
            output_, std::generic_category().message(reason) + "; check the rights of the folder");
    }
    std::error_code ignored;
    fs::remove(part_, ignored);
}

PartFile::~PartFile() {
    std::error_code ignored;
    if (!part_.empty()) fs::remove(part_, ignored);
}

bool PartFile::isComplete() const {
    return tools::isWholePdf(part_);
}

void PartFile::deliver() {
    std::error_code failure;
    // A link stays a link; what it leads to is replaced.
    const fs::path target = fs::is_symlink(output_) ? fs::canonical(output_, failure) : output_;
    if (!failure) fs::rename(part_, target, failure);
    if (failure) {
        throw unwritable(output_, failure.message() + "; check that no other program has it open");
    }
    part_.clear();
}

void reportBeside(const fs::path& output, const std::string& message, bool mayWriteOutput) {
    const std::string wanted = tools::environmentVariable("VELLUM_ON_ERROR").value_or("text");
    if (wanted == "none") return;
    writeText(withEnding(output, ".error.txt"), "vellum: " + message + "\n");
    if (wanted != "page" || !mayWriteOutput) return;
    const fs::path part = withEnding(output, ".part-page");
    writeText(part, errorPage(message));
    std::error_code failure;
    fs::rename(part, output, failure);
    if (failure) fs::remove(part, failure);
}

void removeReport(const fs::path& output) {
    std::error_code ignored;
    fs::remove(withEnding(output, ".error.txt"), ignored);
}

}  // namespace vellum
