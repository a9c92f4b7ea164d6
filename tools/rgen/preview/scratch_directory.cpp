// Each update is guarded against Ctrl-C: the temporary folder must not be removed while a file is
// written into it, which would leave the file.
//
// SPDX-License-Identifier: MIT
#include "preview/scratch_directory.h"

#include <filesystem>
#include <optional>
#include <system_error>

#include "base/command_error.h"
#include "base/input_file.h"
#include "base/paths.h"
#include "base/safe_files.h"
#include "preview/line_marks.h"

namespace cli {
namespace {

namespace fs = std::filesystem;

/// A name in a configuration may lead out of the data directory; the copy does not follow it.
bool staysInside(const std::string& name) {
    const fs::path path = fs::u8path(name).lexically_normal();
    return !path.empty() && !path.has_root_path() && *path.begin() != fs::u8path("..");
}

/// Nothing when there is no file. The library reports what is missing.
std::optional<std::string> contentOf(const std::string& path) {
    std::error_code ignored;
    if (!fs::is_regular_file(fs::u8path(path), ignored)) return {};
    return readInputFile(path, "check its rights");
}

}  // namespace

void ScratchDirectory::put(const std::string& name, const std::string& content) {
    const auto old = written_.find(name);
    if (old != written_.end() && old->second == content) return;
    const std::string path = copy().path(name);
    try {
        fs::create_directories(fs::u8path(folderOf(path)));
        fs::remove(fs::u8path(path));
        written_.erase(name);
        writeNewFile(path, content);
        written_[name] = content;
    } catch (const std::system_error& error) {
        throw CommandError(ExitCode::Environment,
                           "cannot write \"" + path + "\": " + error.code().message(),
                           "check that the disk has room");
    }
}

void ScratchDirectory::remove(const std::string& name) {
    std::error_code ignored;
    if (written_.erase(name) > 0) fs::remove(fs::u8path(copy().path(name)), ignored);
}

void ScratchDirectory::update(const DataDirectory& original, const ReportType& type,
                              const std::string& format, LineMarks marks, bool withPersistentData) {
    const std::string templateName = "templates/" + format + "/" + type.templateFile;
    const InterruptGuard guard;
    throwIfInterrupted();
    for (const std::string& name :
         {std::string("config.xml"), templateName, type.persistDataFile}) {
        if (!staysInside(name)) continue;
        const bool isLeftOut = name == type.persistDataFile && !withPersistentData;
        std::optional<std::string> content;
        if (!isLeftOut) content = contentOf(original.path(name));
        const bool isMarked = name == templateName && marks == LineMarks::With;
        if (!content) {
            remove(name);
        } else {
            put(name, isMarked ? withLineMarks(*content) : *content);
        }
    }
    throwIfInterrupted();
}

}  // namespace cli
