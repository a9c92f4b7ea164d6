// Every error of reading and writing is checked: half a page would become half a report.
//
// SPDX-License-Identifier: MIT
#include "page/page_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fstream>
#include <memory>
#include <system_error>

#include "base/failure.h"

namespace vellum {
namespace {

namespace fs = std::filesystem;

Failure unreadable(const fs::path& path, const std::string& why) {
    return {ExitCode::Input,
            "cannot read \"" + path.u8string() + "\": " + why + "; check the path given to -i"};
}

std::string errorText(int reason) {
    return std::generic_category().message(reason == 0 ? EIO : reason);
}

/// On purpose: a pipe or a device is not opened, since that could block forever.
void requireOrdinaryFile(const fs::path& path) {
    std::error_code failure;
    const fs::file_status status = fs::status(path, failure);
    if (fs::is_directory(status)) throw unreadable(path, errorText(EISDIR));
    if (fs::exists(status) && !fs::is_regular_file(status))
        throw unreadable(path, "it is no ordinary file");
}

}  // namespace

std::string readPage(const fs::path& path, Checkpoint& checkpoint) {
    requireOrdinaryFile(path);
    errno = 0;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(openDeletable(path), std::fclose);
    if (!file) throw unreadable(path, errorText(errno));
    std::string content;
    std::string piece(Checkpoint::interval, '\0');
    while (const std::size_t size = std::fread(piece.data(), 1, piece.size(), file.get())) {
        content.append(piece, 0, size);
        checkpoint.processed(size);
    }
    if (std::ferror(file.get()) == 0) return content;
    throw Failure(ExitCode::Input,
                  "cannot read \"" + path.u8string() + "\" to its end; check the disk");
}

void writePage(const fs::path& path, const std::string& content, Checkpoint& checkpoint) {
    errno = 0;
    std::ofstream file(path, std::ios::binary);
    for (std::size_t at = 0; at < content.size() && file; at += Checkpoint::interval) {
        const std::size_t size = std::min(Checkpoint::interval, content.size() - at);
        file.write(content.data() + at, static_cast<std::streamsize>(size));
        checkpoint.processed(size);
    }
    file.close();
    if (file) return;
    throw Failure(ExitCode::Output, "cannot write \"" + path.u8string() +
                                        "\": " + errorText(errno) +
                                        "; make room in the folder for temporary files");
}

}  // namespace vellum
