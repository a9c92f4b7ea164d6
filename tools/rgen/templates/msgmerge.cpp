// The program gets copies of both files, since it refuses a catalogue whose header does not name an
// encoding.
//
// SPDX-License-Identifier: MIT
#include "templates/msgmerge.h"

#include <chrono>
#include <filesystem>
#include <system_error>

#include "base/command_error.h"
#include "base/input_file.h"
#include "base/interruption.h"
#include "base/paths.h"
#include "base/safe_files.h"
#include "base/text_functions.h"
#include "data/po_merge.h"
#include "process/child_process.h"
#include "process/this_process.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

constexpr std::chrono::milliseconds pause{50};
constexpr const char* readHint = "check the temporary folder";

std::string firstLineOf(const std::string& path) {
    const std::string text = exists(path) ? trimmed(readInputFile(path, readHint)) : "";
    return trimmed(text.substr(0, text.find('\n')));
}

PoFile copyWithEncoding(const PoFile& catalogue) {
    PoFile copy = catalogue;
    const PoEntry* header = copy.header();
    const bool isClear = header != nullptr && header->hasTranslation() &&
                         header->translations[0].find("charset=UTF-8") != std::string::npos;
    if (isClear) return copy;
    PoFile withHeader;
    withHeader.entries.push_back(newHeader(""));
    for (PoEntry& entry : copy.entries) {
        if (!entry.isHeader()) withHeader.entries.push_back(std::move(entry));
    }
    return withHeader;
}

PoFile templateOf(const std::vector<PoEntry>& wanted) {
    PoFile file;
    file.entries = wanted;
    file.entries.insert(file.entries.begin(), newHeader(""));
    return file;
}

int run(const fs::path& program, const TemporaryFolder& folder) {
    tools::ProcessRequest request;
    request.program = program;
    request.arguments = {"--quiet",
                         "--no-wrap",
                         "--previous",
                         "-o",
                         folder.file("merged.po"),
                         folder.file("old.po"),
                         folder.file("new.pot")};
    request.environment["LC_ALL"] = "C";
    request.outputFile = fs::u8path(folder.file("msgmerge.log"));
    tools::ChildProcess process(request);
    for (;;) {
        if (const auto code = process.wait(pause)) return *code;
        throwIfInterrupted();
    }
}

}  // namespace

MsgmergeResult mergeWithMsgmerge(const PoFile& catalogue, const std::vector<PoEntry>& wanted) {
    MsgmergeResult result;
    const auto program = tools::findProgram("msgmerge");
    if (!program) return result;
    const TemporaryFolder folder;
    try {
        writeNewFile(folder.file("old.po"), poText(copyWithEncoding(catalogue)));
        writeNewFile(folder.file("new.pot"), poText(templateOf(wanted)));
        const OwnerRights rights;
        const int code = run(*program, folder);
        if (code == 0) {
            const std::string text = readInputFile(folder.file("merged.po"), readHint);
            result.merged = completedMerge(readPo(text), catalogue, wanted);
            return result;
        }
        result.fault = firstLineOf(folder.file("msgmerge.log"));
        if (result.fault.empty()) result.fault = "exit code " + std::to_string(code);
    } catch (const CommandError&) {
        throw;
    } catch (const std::runtime_error& error) {
        result.fault = error.what();
    }
    return result;
}

}  // namespace cli
