// The part that is the same on both systems.
//
// SPDX-License-Identifier: MIT
#include "process/guardian.h"

#include <chrono>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

namespace tools {
namespace {

namespace fs = std::filesystem;

/// Tries for five seconds: programs that were just killed may keep a file open, or create one more,
/// for a moment.
void removePersistently(const fs::path& path) {
    constexpr std::chrono::milliseconds pause{20};
    for (int round = 0; round < 250; ++round) {
        std::error_code failure;
        fs::remove_all(path, failure);
        if (!fs::exists(fs::symlink_status(path, failure))) return;
        std::this_thread::sleep_for(pause);
    }
}

}  // namespace

void removeWhenOwnerEnds(long (*readSome)(char* buffer, unsigned long size)) {
    std::vector<fs::path> paths;
    std::string path;
    char buffer[4096];
    for (long size = readSome(buffer, sizeof buffer); size > 0;
         size = readSome(buffer, sizeof buffer)) {
        for (long i = 0; i < size; ++i) {
            if (buffer[i] != '\0') {
                path += buffer[i];
                continue;
            }
            if (path.empty()) return;
            paths.push_back(fs::u8path(path));
            path.clear();
        }
    }
    for (const fs::path& leftover : paths)
        removePersistently(leftover);
}

}  // namespace tools
