// rgen init: writes a working data directory from files that are embedded in the program.
//
// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cctype>
#include <filesystem>
#include <memory>
#include <system_error>

#include "base/interruption.h"
#include "base/paths.h"
#include "base/safe_files.h"
#include "commands/commands.h"
#include "commands/embedded_files.h"
#include "data/report_type.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void failToWrite(const std::string& path, const std::error_code& reason) {
    throw CommandError(isFullDisk(reason) ? ExitCode::Unverified : ExitCode::Environment,
                       "cannot write \"" + path + "\": " + reason.message(),
                       "check the rights of the folder and the room on the disk");
}

void requireAbsent(const std::string& path) {
    std::error_code ignored;
    if (!fs::exists(fs::symlink_status(fs::u8path(path), ignored))) return;
    throw usageError("\"" + path + "\" exists; nothing was written");
}

void writeWithFolder(const std::string& path, std::string_view content) {
    std::error_code failure;
    fs::create_directories(fs::u8path(folderOf(path)), failure);
    if (failure) failToWrite(folderOf(path), failure);
    try {
        writeNewFile(path, content);
    } catch (const std::system_error& error) {
        failToWrite(path, error.code());
    }
}

/// Removes what was written unless everything was.
class NewFiles {
public:
    NewFiles() = default;
    ~NewFiles() = default;
    NewFiles(const NewFiles&) = delete;
    NewFiles& operator=(const NewFiles&) = delete;

    void write(const std::string& path, std::string_view content) {
        files_.push_back(std::make_unique<TemporaryFile>(path));
        writeWithFolder(path, content);
    }

    void keep() {
        for (const auto& file : files_)
            file->keep();
    }

private:
    std::vector<std::unique_ptr<TemporaryFile>> files_;
};

/// A path quoted for a command line.
std::string argument(const std::string& path) {
    const bool isPlain = std::all_of(path.begin(), path.end(), [](char letter) {
        constexpr std::string_view plain = "_./\\:-+@%";
        const auto byte = static_cast<unsigned char>(letter);
        return byte >= 0x80 || std::isalnum(byte) != 0 ||
               plain.find(letter) != std::string_view::npos;
    });
    if (isPlain) return path;
    const char quote = path.find_first_of("\"$`!\\") == std::string::npos ? '"' : '\'';
    return quote + path + quote;
}

}  // namespace

ExitCode runInit(const Arguments& arguments, Console& console, JsonDocument& document) {
    const DataDirectory directory = namedDataDirectory(arguments.operands.front());
    const std::string& folder = directory.folder;
    std::vector<std::string> paths;
    for (const EmbeddedFile& file : acquisitionSample()) {
        paths.push_back(joinedPath(folder, std::string(file.path)));
        requireAbsent(paths.back());
    }
    NewFiles files;
    std::size_t next = 0;
    for (const EmbeddedFile& file : acquisitionSample())
        files.write(paths[next++], file.content);
    files.keep();

    const std::string at = " -d " + argument(folder);
    const auto inside = [&folder](const char* name) { return argument(joinedPath(folder, name)); };
    const std::vector<std::string> commands = {
        "rgen persist set" + at + " --data " + inside("acquisition-lab.json"),
        "rgen report" + at + " --data " + inside("acquisition.json") + " -o report.html",
        "rgen report" + at + " --data " + inside("acquisition.json") + " -o bericht.html --lang de",
    };
    document.set("folder", folder);
    document.set("files", paths);
    document.set("next", commands);
    if (arguments.json) return ExitCode::Done;
    for (const std::string& path : paths)
        printLines(path + "\n");
    console.say("made a data directory with the report type acquisition; next:");
    for (const std::string& command : commands)
        console.say("  " + command);
    return ExitCode::Done;
}

}  // namespace cli
